#pragma once
#include "platform/qt/qt_strip.h"

/// The film bar, over the lowest lines.
class QtFilmBar final : public QtStrip {
public:
    QtFilmBar(QtCanvas& canvas, QtEvents& events);

    void set_reading(const SliderReading& reading) override;
    const SliderReading& reading() const { return reading_; }

private:
    QRect place() override;

    SliderReading reading_;
};
