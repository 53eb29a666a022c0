#include "platform/qt/qt_window.h"

#include "platform/qt/qt_text.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDeadlineTimer>
#include <QDropEvent>
#include <QMimeData>
#include <QScreen>
#include <QWindow>

#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int LONGEST_OPENING = 1000; ///< ms
constexpr int OPENING_LOOK = 10;      ///< ms

/// Paths of the local files of a list of URLs, in the bytes that the file system has.
std::vector<std::string> local_files(const QMimeData& data) {
    std::vector<std::string> files;
    for (const QByteArray& line : data.data("text/uri-list").split('\n')) {
        const QByteArray url = line.trimmed();
        if (!url.startsWith("file:")) continue;
        const qsizetype path = url.startsWith("file://") ? url.indexOf('/', 7) : 5;
        if (path > 0) files.push_back(QByteArray::fromPercentEncoding(url.mid(path)).toStdString());
    }
    return files;
}

/// With the children; of those that are opaque, a widget's own update leaves the area out.
void update_all(QWidget& widget) {
    widget.update();
    for (QWidget* child : widget.findChildren<QWidget*>()) child->update();
}

} // namespace

void QtWindow::Frame::closeEvent(QCloseEvent* event) {
    event->ignore();
    events_.post_once(Event::Kind::close);
}

void QtWindow::Frame::moveEvent(QMoveEvent*) { events_.post_once(Event::Kind::moved); }

void QtWindow::Frame::resizeEvent(QResizeEvent*) { events_.post_once(Event::Kind::resized); }

/// A window that is maximized or no longer so may hear of it only after its new size.
void QtWindow::Frame::changeEvent(QEvent* event) {
    if (event->type() == QEvent::WindowStateChange) events_.post_once(Event::Kind::resized);
    QMainWindow::changeEvent(event);
}

/// Watches the window of the window system. Under Wayland, what was painted is lost when the
/// decoration comes or goes, and Qt paints only what changes from then on.
bool QtWindow::Frame::eventFilter(QObject* watched, QEvent* event) {
    if (watched == windowHandle()) {
        const QMargins now = windowHandle()->frameMargins();
        if (std::exchange(margins_, now) != now) update_all(*this);
    }
    return QMainWindow::eventFilter(watched, event);
}

void QtWindow::Frame::dragEnterEvent(QDragEnterEvent* event) {
    if (!local_files(*event->mimeData()).empty()) event->acceptProposedAction();
}

void QtWindow::Frame::dropEvent(QDropEvent* event) {
    Event drop;
    drop.kind = Event::Kind::drop;
    drop.more = local_files(*event->mimeData());
    if (drop.more.empty()) return;
    drop.text = drop.more.front();
    drop.more.erase(drop.more.begin());
    event->acceptProposedAction();
    events_.post(drop);
}

QtWindow::QtWindow(QtEvents& events, QtInput& input)
    : events_(events), input_(input), frame_(events), canvas_(events), debugger_(canvas_, events),
      menu_(*frame_.menuBar(), events) {
    frame_.setCentralWidget(&canvas_);
    canvas_.installEventFilter(&input_);
    canvas_.film_bar().widget().installEventFilter(&input_);
    debugger_.widget().installEventFilter(&input_);
}

bool QtWindow::create(const std::string& title) {
    set_title(title);
    frame_.setAcceptDrops(true);
    return true;
}

void QtWindow::show() {
    frame_.show();
    frame_.windowHandle()->installEventFilter(&frame_);
    canvas_.keyboard().show_window(true);
    canvas_.setFocus();
    debugger_.show_window(true);
    // Waits until the window has its place: a dialog that follows at once is placed by it.
    const QDeadlineTimer limit(LONGEST_OPENING);
    while (!frame_.windowHandle()->isExposed() && !limit.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, OPENING_LOOK);
    }
}

void QtWindow::destroy() {
    canvas_.keyboard().show_window(false);
    debugger_.show_window(false);
    frame_.hide();
}

QWidget* QtWindow::owner() {
    if (debugger_.widget().isActiveWindow()) return &debugger_.widget();
    return frame_.isVisible() ? &frame_ : nullptr;
}

void QtWindow::set_title(const std::string& title) {
    title_ = title;
    frame_.setWindowTitle(to_qt(title));
}

std::string QtWindow::title() { return title_; }

int QtWindow::menu_height(int width) const { return frame_.menuBar()->heightForWidth(width); }

QPoint QtWindow::screen_origin() const { return frame_.screen()->geometry().topLeft(); }

Size QtWindow::outer_size(Size client) {
    return {client.width, client.height + menu_height(client.width)};
}

Rectangle QtWindow::outer_rectangle() {
    const QRect outer = frame_.geometry().translated(-screen_origin());
    return {outer.left(), outer.top(), outer.left() + outer.width(), outer.top() + outer.height()};
}

Size QtWindow::client_size() {
    const int menu = frame_.menuBar()->isHidden() ? 0 : menu_height(frame_.width());
    return {frame_.width(), frame_.height() - menu};
}

Rectangle QtWindow::client_on_screen() {
    const Rectangle outer = outer_rectangle();
    const Size client = client_size();
    return {outer.left, outer.bottom - client.height, outer.right, outer.bottom};
}

Size QtWindow::screen_size() {
    const QSize size = frame_.screen()->size();
    return {size.width(), size.height()};
}

Rectangle QtWindow::available_area() {
    const QRect area = frame_.screen()->availableGeometry().translated(-screen_origin());
    return {area.left(), area.top(), area.left() + area.width(), area.top() + area.height()};
}

void QtWindow::move(const Rectangle& outer) {
    QRect geometry(outer.left, outer.top, outer.width(), outer.height());
    geometry.translate(screen_origin());
    if (full_screen_) {
        windowed_ = geometry;
    } else {
        place(geometry);
    }
}

void QtWindow::place(const QRect& geometry) {
    const QSize size = fixed_size_.isValid() ? fixed_size_ : geometry.size();
    // A window that stays where it is must not ask for that place. Before it is shown, the window
    // manager would take that for the user's wish and not choose a place.
    if (geometry.topLeft() == frame_.geometry().topLeft()) {
        frame_.resize(size);
    } else {
        frame_.setGeometry({geometry.topLeft(), size});
    }
}

void QtWindow::set_fixed_size(Size outer) {
    fixed_size_ = outer == Size() ? QSize() : QSize(outer.width, outer.height);
    if (!full_screen_) apply_limits();
}

void QtWindow::set_least_size(Size outer) {
    least_size_ = {outer.width, outer.height};
    if (!full_screen_) apply_limits();
}

void QtWindow::set_maximized(bool on) {
    if (full_screen_) return;
    frame_.setWindowState(frame_.windowState().setFlag(Qt::WindowMaximized, on));
}

void QtWindow::apply_limits() {
    if (fixed_size_.isValid()) {
        frame_.setFixedSize(fixed_size_);
    } else {
        lift_limits();
        frame_.setMinimumSize(least_size_);
    }
}

void QtWindow::lift_limits() {
    frame_.setMinimumSize(0, 0);
    frame_.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}

void QtWindow::invalidate() {
    canvas_.update();
    events_.post_once(Event::Kind::paint);
}

void QtWindow::set_full_screen(bool on) {
    if (full_screen_ == on) return;
    full_screen_ = on;
    frame_.menuBar()->setVisible(!on);
    canvas_.keyboard().set_full_screen(on);
    if (on) {
        windowed_ = frame_.geometry();
        lift_limits();
        frame_.setWindowState(frame_.windowState() | Qt::WindowFullScreen);
    } else {
        // Before the limits: a size that is set takes Qt's mark of the full screen away, and then
        // a Wayland compositor is never asked to leave it.
        frame_.setWindowState(frame_.windowState() & ~Qt::WindowFullScreen);
        apply_limits();
        if (!maximized()) place(windowed_);
    }
    canvas_.setFocus();
}

void QtWindow::show_cursor(bool on) { frame_.setCursor(on ? Qt::ArrowCursor : Qt::BlankCursor); }

void QtWindow::set_menu(const std::vector<MenuEntry>& menus) { menu_.set(menus); }

void QtWindow::check_item(int id, bool checked) { menu_.check(id, checked); }

void QtWindow::set_item_text(int id, const std::string& text) { menu_.set_text(id, text); }

void QtWindow::set_item_state(int id, ItemState state) { menu_.set_state(id, state); }

void QtWindow::popup_menu(const std::vector<MenuEntry>& entries, int x, int y) {
    menu_.popup(entries, screen_origin() + QPoint(x, y));
}

void QtWindow::claim_keys(std::span<const KeyChord> chords) { input_.claim(chords); }

void QtWindow::place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) {
    canvas_.keyboard().place(place, wanted, closed);
}

void QtWindow::set_readable(const std::string& name, std::function<ReadableText()> text) {
    canvas_.setAccessibleName(to_qt(name));
    canvas_.set_readable(std::move(text));
}
