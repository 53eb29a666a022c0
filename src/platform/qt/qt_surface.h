#pragma once
#include "platform/qt/qt_window.h"
#include "platform/surface.h"

class QtSurface final : public Surface {
public:
    explicit QtSurface(QtWindow& window) : window_(window) {}
    std::string create(Size size) override;
    bool exists() override;
    void release() override;
    void present(const BitmapView& picture, const Rectangle& target, bool clear) override;

private:
    QtWindow& window_;
    QImage picture_; ///< null: no surface
};
