#pragma once
#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_debugger_window.h"
#include "platform/qt/qt_input.h"
#include "platform/qt/qt_menu.h"
#include "platform/window.h"

#include <QMainWindow>

/// The main window. Screen coordinates count from the top left corner of the screen that shows it.
/// The outer size is that of menu bar and client area: the frame around them belongs to the window
/// manager, which may put one on, change it or leave it out at any time.
class QtWindow final : public Window {
public:
    QtWindow(QtEvents& events, QtInput& input);

    bool create(const std::string& title) override;
    void show() override;
    void destroy() override;
    void set_title(const std::string& title) override;
    std::string title() override;
    Size outer_size(Size client) override;
    Rectangle outer_rectangle() override;
    Size client_size() override;
    Rectangle client_on_screen() override;
    Size screen_size() override;
    Rectangle available_area() override;
    double pixel_ratio() override { return frame_.devicePixelRatioF(); }
    void move(const Rectangle& outer) override;
    void set_fixed_size(Size outer) override;
    void set_least_size(Size outer) override;
    void set_maximized(bool on) override;
    bool maximized() override { return frame_.windowState().testFlag(Qt::WindowMaximized); }
    void invalidate() override;
    void set_full_screen(bool on) override;
    void show_cursor(bool on) override;
    void set_menu(const std::vector<MenuEntry>& menus) override;
    void check_item(int id, bool checked) override;
    void set_item_text(int id, const std::string& text) override;
    void set_item_state(int id, ItemState state) override;
    void popup_menu(const std::vector<MenuEntry>& entries, int x, int y) override;
    void claim_keys(std::span<const KeyChord> chords) override;
    void place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) override;
    Rectangle keyboard_rectangle() override { return canvas_.keyboard().rectangle(); }
    void place_debugger(bool open, const Rectangle& wanted, int closed) override {
        debugger_.place(open, wanted, closed);
    }
    Rectangle debugger_rectangle() override { return debugger_.rectangle(); }
    bool has_debugger() override { return true; }
    void set_readable(const std::string& name, std::function<ReadableText()> text) override;

    QtCanvas& canvas() { return canvas_; }
    QtDebuggerPane& debugger() { return debugger_; }
    QScreen* screen() const { return frame_.screen(); }
    /// The parent of dialogs: the window while there is one to see, or that of the debugger while
    /// the user is there.
    QWidget* owner();

private:
    /// Reports what happens to the top-level window.
    class Frame final : public QMainWindow {
    public:
        explicit Frame(QtEvents& events) : events_(events) {}

        bool eventFilter(QObject* watched, QEvent* event) override;

    protected:
        void closeEvent(QCloseEvent* event) override;
        void moveEvent(QMoveEvent* event) override;
        void resizeEvent(QResizeEvent* event) override;
        void changeEvent(QEvent* event) override;
        void dragEnterEvent(QDragEnterEvent* event) override;
        void dropEvent(QDropEvent* event) override;

    private:
        QtEvents& events_;
        QMargins margins_; ///< of the decoration
    };

    int menu_height(int width) const;
    QPoint screen_origin() const;
    void place(const QRect& geometry);
    void apply_limits();
    void lift_limits();

    QtEvents& events_;
    QtInput& input_;
    Frame frame_;
    QtCanvas canvas_;
    QtDebuggerPane debugger_;
    QtMenu menu_;
    std::string title_;
    QSize fixed_size_; ///< invalid: the user may size the window
    QSize least_size_;
    QRect windowed_; ///< where the window stood before it became full screen
    bool full_screen_ = false;
};
