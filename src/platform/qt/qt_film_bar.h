#pragma once
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_pane.h"

#include <QWidget>

/// The film bar: a widget over the lowest lines of the panes that fill the client area. What is
/// drawn is kept in the pixels of the screen, so that small text stays sharp.
class QtFilmBar final : public QtDrawing {
public:
    /// The part that is seen.
    class Widget final : public QWidget {
    public:
        explicit Widget(QtFilmBar& bar, QtCanvas& canvas);
        const SliderReading& reading() const { return bar_.reading_; }

    protected:
        void paintEvent(QPaintEvent* event) override;

    private:
        QtFilmBar& bar_;
    };

    QtFilmBar(QtCanvas& canvas, QtEvents& events);

    Size size() override;
    void show(bool on) override;
    void set_reading(const SliderReading& reading) override;

    Widget& widget() { return widget_; }
    /// Follows the size of the client area and of the status bar.
    void lay_out();

private:
    QImage& drawing() override;
    void drawn(const QRect& area) override { widget_.update(area); }
    QSize pixels() const;
    int height() const;

    QtCanvas& canvas_;
    QtEvents& events_;
    Widget widget_;
    SliderReading reading_;
    QImage drawing_;
};
