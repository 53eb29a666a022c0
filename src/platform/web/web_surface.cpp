#include "platform/web/web_surface.h"

#include <algorithm>
#include <cmath>

std::string WebSurface::create(Size /*size*/) {
    exists_ = true;
    return {};
}

/// The shell fits the picture to the screen of the moment in which it asks for all of it. The page
/// gets its place only later, and another one when a phone is turned.
void WebSurface::present(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                         bool /*clear*/) {
    const Size room = picture_.size();
    const Size shape{target.width(), target.height()};
    if (shape.width <= 0 || shape.height <= 0) return;
    const double factor =
        std::min(double(room.width) / shape.width, double(room.height) / shape.height);
    const Size size{int(std::lround(shape.width * factor)),
                    int(std::lround(shape.height * factor))};
    const int left = (room.width - size.width) / 2, top = (room.height - size.height) / 2;
    picture_.stretch_bitmap(picture, {left, top, left + size.width, top + size.height}, how);
}
