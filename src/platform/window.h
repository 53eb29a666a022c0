#pragma once
#include <cstdint>
#include <string>

/// A picture as the canvas holds it: rows top-down without padding.
struct BitmapView {
    int width = 0;
    int height = 0;
    int bits = 0; ///< 1, 8 or 32 per pixel
    const uint8_t* pixels = nullptr;
    const uint8_t* palette = nullptr; ///< blue, green, red, 0 per entry; none at 32 bits
};

/// The main window.
struct Window {
    virtual ~Window() = default;
    virtual void set_title(const std::string& title) = 0;
    /// Copies the picture 1:1 into the client area.
    virtual void present(const BitmapView& picture) = 0;
    /// Shows a text in a part of the status bar.
    virtual void set_status_text(int part, const std::string& text) = 0;
    /// Lights the lamp of one drive, 0 to 3; any other value lights none.
    virtual void set_lamp(int drive) = 0;
};
