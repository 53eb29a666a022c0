#pragma once
#include "platform/qt/qt_widget_pane.h"

#include <QWidget>

class QtCanvas;

/// The debugger's pane, which is all of a window of its own. It stands beside the main window as
/// another program's would: either can cover the other, and be an icon alone.
class QtDebuggerPane final : public QtWidgetPane {
public:
    /// The window. QtInput watches its keys and the pointer in it.
    class Widget final : public QWidget {
    public:
        Widget(QtDebuggerPane& pane, QtEvents& events);
        void set_closed(int command) { closed_ = command; }
        const QString& text() const { return pane_.text_; } ///< for screen readers

    protected:
        void paintEvent(QPaintEvent* event) override;
        void closeEvent(QCloseEvent* event) override;

    private:
        QtDebuggerPane& pane_;
        QtEvents& events_;
        int closed_ = 0;
    };

    QtDebuggerPane(QtCanvas& canvas, QtEvents& events);

    void show(bool on) override { widget_.setVisible(on); }
    void set_message(const std::string& text, int rows) override;

    /// As Window::place_debugger and debugger_rectangle say.
    void place(bool open, const Rectangle& wanted, int closed);
    Rectangle rectangle() const;
    /// The main window appears or goes, and this one with it.
    void show_window(bool on);
    Widget& widget() { return widget_; }

private:
    QWidget& widget_of() override { return widget_; }
    void place_beside();
    void place_at(const Rectangle& wanted);
    void come_forward();

    QtCanvas& canvas_;
    Widget widget_;
    bool open_ = false;
    QString text_;
};
