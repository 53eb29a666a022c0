#include "platform/qt/qt_surface.h"

std::string QtSurface::create(Size /*size*/) {
    exists_ = true; // the pane has room for any picture
    return {};
}

void QtSurface::release() {
    window_.canvas().pane(PaneId::picture).end_stretch();
    exists_ = false;
}

void QtSurface::present(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                        bool clear) {
    if (!exists_) return;
    const Rectangle client = window_.client_on_screen();
    QtCanvas& canvas = window_.canvas();
    canvas.pane(PaneId::picture)
        .stretch_bitmap(picture,
                        {target.left - client.left, target.top - client.top,
                         target.right - client.left, target.bottom - client.top},
                        how);
    if (clear) canvas.update();
}
