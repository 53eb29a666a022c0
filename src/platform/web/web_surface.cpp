#include "platform/web/web_surface.h"

std::string WebSurface::create(Size /*size*/) {
    exists_ = true;
    return {};
}

void WebSurface::present(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                         bool clear) {
    const Size size = picture_.size();
    if (clear) picture_.fill_rectangle({0, 0, size.width, size.height}, 0);
    picture_.stretch_bitmap(picture, target, how);
}
