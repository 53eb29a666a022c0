#pragma once
#include "platform/qt/qt_window.h"
#include "platform/surface.h"

class QtSurface final : public Surface {
public:
    explicit QtSurface(QtWindow& window) : window_(window) {}
    std::string create(Size size) override;
    bool exists() override { return exists_; }
    void release() override;
    void present(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                 bool clear) override;

private:
    QtWindow& window_;
    bool exists_ = false;
};
