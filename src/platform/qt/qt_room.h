#pragma once
/// Windows that are never larger than the screen has room for.

#include <QScrollArea>
#include <QWidget>

#include <functional>
#include <vector>

/// The most that the inside of a window can have on its screen; the frame is left out.
QSize room_on_screen(const QWidget& window);

/// Makes a window that is about to be shown smaller, where the screen has less room.
void fit_on_screen(QWidget& window);

/// The window at the nearest place that lies in the room, or at its left top corner where it is
/// too large.
QRect moved_into(const QRect& window, const QRect& room);

/// As large as its contents where there is room; they scroll where there is not.
class QtFittingArea final : public QScrollArea {
public:
    /// `room` tells how large the area may be.
    QtFittingArea(QWidget* parent, std::function<QSize()> room);
    /// Of the contents, without regard to the room.
    QSize wanted() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<QSize()> room_;
};

/// Buttons side by side at the right, in as many rows as it takes.
class QtButtonRows final : public QWidget {
public:
    explicit QtButtonRows(QWidget* parent);
    void add(QWidget& button);
    /// Arranges the buttons for the width.
    void fit(int width);

private:
    std::vector<QWidget*> buttons_;
};
