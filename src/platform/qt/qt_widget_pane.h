#pragma once
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_pane.h"

class QWidget;

/// A pane that is a widget of its own. What is drawn is kept in the pixels of the screen, so that
/// small text stays sharp; a pane of another size starts black.
class QtWidgetPane : public QtDrawing {
public:
    Size size() override;
    double scale() override;

protected:
    QtWidgetPane(PaneId id, const CellFont& font, QtEvents& events)
        : QtDrawing(font), id_(id), events_(events) {}
    QImage& drawing() override;
    /// Asks the shell for the drawing where it was lost, also on a screen of another scale.
    void draw_if_lost();

private:
    virtual QWidget& widget_of() = 0;
    void drawn(const QRect& area) override;
    QSize pixels();

    const PaneId id_;
    QtEvents& events_;
    QImage drawing_;
};
