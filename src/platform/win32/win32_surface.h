#pragma once
#include "platform/surface.h"
#include "platform/win32/win32_panes.h"

#include <memory>

/// The whole screen by DirectDraw, which is loaded when it is first asked for. The pane shows the
/// picture where DirectDraw stretches in another way than is wanted, and while something is in
/// front of it, which DirectDraw would draw over.
class Win32Surface final : public Surface {
public:
    Win32Surface(Win32Context& context, Win32Panes& panes);
    ~Win32Surface() override;

    std::string create(Size size) override;
    bool exists() override { return exists_; }
    void release() override;
    void present(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                 bool clear) override;

private:
    struct DirectDraw;

    Win32Context& context_;
    Win32Panes& panes_;
    std::unique_ptr<DirectDraw> direct_draw_;
    bool exists_ = false;
    bool shown_directly_ = false; ///< the last picture
};
