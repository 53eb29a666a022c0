#include "platform/qt/qt_surface.h"

#include "platform/qt/qt_pixels.h"

std::string QtSurface::create(Size size) {
    release();
    picture_ = QImage(size.width, size.height, QImage::Format_RGB32);
    return picture_.isNull() ? "No memory for the full-screen picture" : "";
}

bool QtSurface::exists() { return !picture_.isNull(); }

void QtSurface::release() {
    window_.canvas().pane(PaneId::picture).end_stretch();
    picture_ = QImage();
}

void QtSurface::present(const BitmapView& picture, const Rectangle& target, bool clear) {
    if (!exists()) return;
    copy_bitmap_to(picture_, picture, 0, 0);
    const Rectangle client = window_.client_on_screen();
    const QRect area(target.left - client.left, target.top - client.top, target.width(),
                     target.height());
    QtCanvas& canvas = window_.canvas();
    canvas.pane(PaneId::picture).stretch(picture_, area);
    if (clear) canvas.update();
}
