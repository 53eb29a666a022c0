#pragma once
#include "platform/win32/win32_pane.h"

/// The overlay, over the top lines. Its font grows with the area.
class Win32Overlay final : public Win32Pane {
public:
    using Win32Pane::Win32Pane;

    /// Takes its place in an area of this size.
    void place_in(Size room_pixels, Size room);
    /// Who moves it when it needs another height.
    void set_grown(std::function<void()> grown) { grown_ = std::move(grown); }
    /// Shows a part of it, seen through it what is behind, which begins at the same place.
    void show_over(Win32Canvas& behind, HDC target, const Rectangle& part);

    void set_message(const std::string& text, int rows) override;

private:
    const Win32CellFont& font() override;

    std::function<void()> grown_;
    Win32CellFont large_font_;
    Win32Canvas mixture_;
    int room_height_ = 0; ///< points
    int rows_ = 1;
};
