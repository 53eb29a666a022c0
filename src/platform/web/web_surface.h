#pragma once
#include "platform/surface.h"
#include "platform/web/web_pane.h"

/// The whole screen is the page's pane of the picture, which then has all of it.
class WebSurface final : public Surface {
public:
    explicit WebSurface(WebPane& picture) : picture_(picture) {}
    std::string create(Size size) override;
    bool exists() override { return exists_; }
    void release() override { exists_ = false; }
    void present(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                 bool clear) override;

private:
    WebPane& picture_;
    bool exists_ = false;
};
