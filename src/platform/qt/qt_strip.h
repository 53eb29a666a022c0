#pragma once
#include "platform/qt/qt_widget_pane.h"

#include <QWidget>

/// A pane that is a widget over some lines of those that fill the client area.
class QtStrip : public QtWidgetPane {
public:
    /// The part that is seen.
    class Widget final : public QWidget {
    public:
        Widget(QtStrip& strip, QtCanvas& canvas);
        const QtStrip& strip() const { return strip_; }

    protected:
        void paintEvent(QPaintEvent* event) override;

    private:
        QtStrip& strip_;
    };

    Size size() override;
    void show(bool on) override;

    Widget& widget() { return widget_; }
    /// Follows the size of the client area and of the status bar.
    void lay_out();

protected:
    QtStrip(PaneId id, const CellFont& font, QtCanvas& canvas, QtEvents& events);

    QtCanvas& canvas_;
    Widget widget_;

private:
    virtual QRect place() = 0;
    virtual void paint(QPainter& painter);
    QWidget& widget_of() override { return widget_; }
};
