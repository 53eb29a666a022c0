#pragma once
#include "platform/qt/qt_widget_pane.h"
#include "platform/window.h"

#include <QTimer>
#include <QTouchEvent>
#include <QWidget>

#include <memory>
#include <set>
#include <vector>

class QtCanvas;

/// The pane of the machine's keyboard: a widget in the client area, or in a window of its own.
class QtKeyboardPane final : public QtWidgetPane {
public:
    /// The part that is seen. The mouse and fingers in it are told to the shell.
    class Widget final : public QWidget {
    public:
        Widget(QtKeyboardPane& pane, QtEvents& events);
        const std::vector<PaneButton>& buttons() const { return pane_.buttons_; }
        /// As with the mouse, in its middle.
        void click(const PaneButton& button);

    protected:
        bool event(QEvent* event) override;
        void paintEvent(QPaintEvent* event) override;
        void resizeEvent(QResizeEvent* event) override;

    private:
        void tell_mouse(const QMouseEvent& event, Pointer::Act act);
        void tell_fingers(const QTouchEvent& event);
        void tell_finger(int finger, Pointer::Act act, QPointF place);
        void take_fingers_away();
        void tell(Pointer pointer, QPointF place);

        QtKeyboardPane& pane_;
        QtEvents& events_;
        std::set<int> fingers_; ///< that touch
    };

    QtKeyboardPane(QtCanvas& canvas, QtEvents& events);

    void show(bool on) override { widget_.setVisible(on); }
    void stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                        const Scaling& how) override;

    void set_buttons(const std::vector<PaneButton>& buttons) override { buttons_ = buttons; }

    /// As Window::place_keyboard and keyboard_rectangle say.
    void place(KeyboardPlace place, const Rectangle& wanted, int closed);
    Rectangle rectangle() const;
    /// What it takes of the client area; none of the whole screen.
    int docked_height() const;
    /// Follows the size of the client area.
    void lay_out();
    void set_full_screen(bool on);
    /// The main window appears or goes, and the floating one with it.
    void show_window(bool on);

private:
    /// The window of the floating keyboard. It keeps the proportion of its first size.
    class Frame final : public QWidget {
    public:
        Frame(QtCanvas& canvas, QtEvents& events);
        void keep(QSize proportion) { proportion_ = proportion; }
        void set_closed(int command) { closed_ = command; }

    protected:
        bool event(QEvent* event) override;
        void closeEvent(QCloseEvent* event) override;
        void resizeEvent(QResizeEvent* event) override;

    private:
        void restore_proportion();

        QtCanvas& canvas_;
        QtEvents& events_;
        QSize proportion_;
        QSize corrected_; ///< the size that was to become another; empty while the proportion fits
        QTimer sized_;    ///< the user has not sized it for a while
        int closed_ = 0;
    };

    QWidget& widget_of() override { return widget_; }
    void float_at(const Rectangle& wanted);

    QtCanvas& canvas_;
    QtEvents& events_;
    std::unique_ptr<Frame> frame_;
    Widget widget_; ///< goes before its parent
    KeyboardPlace place_ = KeyboardPlace::hidden;
    int height_ = 0;
    bool full_screen_ = false;
    std::vector<PaneButton> buttons_;
};
