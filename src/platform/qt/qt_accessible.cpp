#include "platform/qt/qt_accessible.h"

#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_debugger_window.h"
#include "platform/qt/qt_status_bar.h"
#include "platform/qt/qt_text.h"

#include <QAccessibleWidget>
#include <QPointer>
#include <QWindow>

#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

namespace {

/// A drawn area as a terminal that is only read.
class TerminalReader : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit TerminalReader(QWidget& widget) : QAccessibleWidget(&widget, QAccessible::Terminal) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = state.multiLine = true;
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface) return static_cast<QAccessibleTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    using QAccessibleWidget::text;

    QString text(int start, int end) const override {
        return readable().text.mid(start, end - start);
    }
    int characterCount() const override { return int(readable().text.size()); }
    int cursorPosition() const override { return readable().cursor; }

    // Close enough for a magnifier: as if the cells filled the area above the status bar.
    QRect characterRect(int offset) const override {
        const QStringList before = text(0, offset).split('\n');
        const QSize cell = cell_size();
        return {text_area().topLeft() + QPoint(int(before.back().size()) * cell.width(),
                                               int(before.size() - 1) * cell.height()),
                cell};
    }
    int offsetAtPoint(const QPoint& point) const override {
        const QPoint inside = point - text_area().topLeft();
        const int row = inside.y() / cell_size().height();
        const int column = inside.x() / cell_size().width();
        const QStringList lines = readable().text.split('\n');
        if (inside.x() < 0 || inside.y() < 0 || row >= lines.size()) return -1;
        if (column >= lines[row].size()) return -1;
        return int(lines.first(row).join('\n').size()) + (row > 0 ? 1 : 0) + column;
    }
    QString attributes(int, int* start, int* end) const override {
        *start = 0;
        *end = characterCount();
        return {};
    }

    // Nothing can be marked or changed, and all of it is in view.
    void selection(int, int* start, int* end) const override { *start = *end = 0; }
    int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    void setCursorPosition(int) override {}
    void scrollToSubstring(int, int) override {}

private:
    virtual QtCanvas::Readable readable() const = 0;
    /// Of the text, on the screen.
    virtual QRect text_area() const { return rect(); }
    QSize cell_size() const {
        const QStringList lines = readable().text.split('\n');
        qsizetype columns = 1;
        for (const QString& line : lines) columns = std::max(columns, line.size());
        const qsizetype rows = std::max<qsizetype>(lines.size() - 1, 1);
        return {std::max(text_area().width() / int(columns), 1),
                std::max(text_area().height() / int(rows), 1)};
    }
};

class CanvasReader final : public TerminalReader {
public:
    explicit CanvasReader(QtCanvas& canvas) : TerminalReader(canvas), canvas_(canvas) {}

private:
    QtCanvas::Readable readable() const override { return canvas_.readable(); }
    QRect text_area() const override {
        const Size room = canvas_.room();
        return {rect().topLeft(), QSize(room.width, room.height)};
    }

    QtCanvas& canvas_;
};

/// Its text is its description, too, which readers say without being asked for lines.
class DebuggerReader final : public TerminalReader {
public:
    explicit DebuggerReader(QtDebuggerPane::Widget& widget)
        : TerminalReader(widget), widget_(widget) {}

    using TerminalReader::text;
    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Description) return widget_.text();
        return TerminalReader::text(which);
    }

private:
    QtCanvas::Readable readable() const override { return {.text = widget_.text()}; }

    QtDebuggerPane::Widget& widget_;
};

class StatusBarReader final : public QAccessibleWidget {
public:
    explicit StatusBarReader(QtStatusBarWidget& bar)
        : QAccessibleWidget(&bar, QAccessible::StatusBar, "Status bar") {}
};

/// A button of the status bar, which opens a menu.
class StatusButtonReader final : public QAccessibleWidget {
public:
    explicit StatusButtonReader(QtStatusBarWidget::Button& button)
        : QAccessibleWidget(&button, QAccessible::ButtonMenu), button_(button) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        return state;
    }
    QString text(QAccessible::Text which) const override {
        return which == QAccessible::Description ? button_.tip() : QAccessibleWidget::text(which);
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction()) button_.click();
    }

private:
    QtStatusBarWidget::Button& button_;
};

/// The film bar as a slider that is only read: the keys move it.
class FilmBarReader final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    FilmBarReader(QtStrip::Widget& widget, const QtFilmBar& bar)
        : QAccessibleWidget(&widget, QAccessible::Slider), bar_(bar) {}

    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Name) return to_qt(bar_.reading().name);
        return which == QAccessible::Value ? to_qt(bar_.reading().text) : QString();
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QVariant currentValue() const override { return bar_.reading().value; }
    QVariant minimumValue() const override { return bar_.reading().lowest; }
    QVariant maximumValue() const override { return bar_.reading().highest; }
    QVariant minimumStepSize() const override { return {}; }
    void setCurrentValue(const QVariant&) override {}

private:
    const QtFilmBar& bar_;
};

class OverlayReader final : public QAccessibleWidget {
public:
    explicit OverlayReader(QtStrip::Widget& widget)
        : QAccessibleWidget(&widget, QAccessible::AlertMessage) {}
};

/// A key of the keyboard on the screen.
class KeyReader final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    KeyReader(QtKeyboardPane::Widget& keyboard, size_t number)
        : keyboard_(&keyboard), number_(number) {}

    bool isValid() const override { return key() != nullptr; }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override {
        return isValid() ? keyboard_->window()->windowHandle() : nullptr;
    }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(keyboard_);
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::PushButton; }
    QString text(QAccessible::Text which) const override {
        return isValid() && which == QAccessible::Name ? to_qt(key()->name) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override {
        if (!isValid()) return {};
        const Rectangle& area = key()->area;
        return {keyboard_->mapToGlobal(QPoint(area.left, area.top)),
                QSize(area.width(), area.height())};
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.pressed = isValid() && key()->pressed;
        state.invisible = !isValid() || !keyboard_->isVisible();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ActionInterface)
            return static_cast<QAccessibleActionInterface*>(this);
        return nullptr;
    }

    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (isValid() && action == pressAction()) keyboard_->click(*key());
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    const PaneButton* key() const {
        const bool there = keyboard_ && number_ < keyboard_->buttons().size();
        return there ? &keyboard_->buttons()[number_] : nullptr;
    }

    QPointer<QtKeyboardPane::Widget> keyboard_;
    size_t number_;
};

class KeyboardReader final : public QAccessibleWidget {
public:
    explicit KeyboardReader(QtKeyboardPane::Widget& keyboard)
        : QAccessibleWidget(&keyboard, QAccessible::Grouping), keyboard_(keyboard) {}
    ~KeyboardReader() override {
        for (const QAccessible::Id key : keys_) QAccessible::deleteAccessibleInterface(key);
    }

    int childCount() const override { return int(keyboard_.buttons().size()); }
    QAccessibleInterface* child(int number) const override {
        if (number < 0 || number >= childCount()) return nullptr;
        while (keys_.size() <= size_t(number)) { // Qt owns them
            keys_.push_back(QAccessible::registerAccessibleInterface(
                std::make_unique<KeyReader>(keyboard_, keys_.size()).release()));
        }
        return QAccessible::accessibleInterface(keys_[size_t(number)]);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto found = std::ranges::find_if(keys_, [child](QAccessible::Id key) {
            return QAccessible::accessibleInterface(key) == child;
        });
        return found == keys_.end() ? -1 : int(found - keys_.begin());
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        for (int number = 0; number < childCount(); ++number) {
            if (child(number)->rect().contains(x, y)) return child(number);
        }
        return nullptr;
    }

private:
    QtKeyboardPane::Widget& keyboard_;
    mutable std::vector<QAccessible::Id> keys_;
};

/// Qt owns what it gets.
QAccessibleInterface* make_reader(const QString&, QObject* object) {
    if (auto* canvas = dynamic_cast<QtCanvas*>(object)) {
        return std::make_unique<CanvasReader>(*canvas).release();
    }
    if (auto* debugger = dynamic_cast<QtDebuggerPane::Widget*>(object)) {
        return std::make_unique<DebuggerReader>(*debugger).release();
    }
    if (auto* strip = dynamic_cast<QtStrip::Widget*>(object)) {
        if (const auto* bar = dynamic_cast<const QtFilmBar*>(&strip->strip()))
            return std::make_unique<FilmBarReader>(*strip, *bar).release();
        return std::make_unique<OverlayReader>(*strip).release();
    }
    if (auto* button = dynamic_cast<QtStatusBarWidget::Button*>(object)) {
        return std::make_unique<StatusButtonReader>(*button).release();
    }
    if (auto* keyboard = dynamic_cast<QtKeyboardPane::Widget*>(object)) {
        return std::make_unique<KeyboardReader>(*keyboard).release();
    }
    if (auto* bar = dynamic_cast<QtStatusBarWidget*>(object)) {
        return std::make_unique<StatusBarReader>(*bar).release();
    }
    return nullptr;
}

} // namespace

TextChange text_change(const QString& before, const QString& after) {
    const auto [first_before, first_after] = std::ranges::mismatch(before, after);
    const auto [last_before, last_after] =
        std::mismatch(before.rbegin(), std::reverse_iterator(first_before), after.rbegin(),
                      std::reverse_iterator(first_after));
    const qsizetype place = first_after - after.begin();
    return {place, before.mid(place, last_before.base() - first_before),
            after.mid(place, last_after.base() - first_after)};
}

void qt_install_accessibility() { QAccessible::installFactory(make_reader); }
