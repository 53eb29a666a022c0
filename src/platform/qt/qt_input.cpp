#include "platform/qt/qt_input.h"

#include <algorithm>

namespace {

constexpr int NOTCH = 120; ///< wheel angle, eighths of a degree

uint8_t modifiers_of(const QKeyEvent& event) {
    uint8_t modifiers = 0;
    if (event.modifiers() & Qt::ShiftModifier) modifiers |= MODIFIER_SHIFT;
    if (event.modifiers() & Qt::ControlModifier) modifiers |= MODIFIER_CONTROL;
    if (event.modifiers() & Qt::AltModifier) modifiers |= MODIFIER_ALT;
    return modifiers;
}

/// Stepping and scrolling go on while the key is held; anything else happens once.
bool repeats(uint8_t key, uint8_t modifiers) {
    if (modifiers) return false;
    return (key >= KEY_PAGE_UP && key <= KEY_DOWN) || key == KEY_RETURN;
}

bool is_of_menu(Qt::FocusReason reason) {
    return reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason;
}

} // namespace

QtInput::QtInput(QtEvents& events, QtKeyboard& keyboard) : events_(events), keyboard_(keyboard) {}

void QtInput::claim(std::span<const KeyChord> chords) {
    claimed_.assign(chords.begin(), chords.end());
}

bool QtInput::is_claimed(const QKeyEvent& event) const {
    const uint8_t key = keyboard_.virtual_key(event);
    const uint8_t modifiers = modifiers_of(event);
    return std::ranges::any_of(claimed_, [=](const KeyChord& chord) {
        return chord.key == key && chord.modifiers == modifiers;
    });
}

bool QtInput::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (!is_claimed(*static_cast<QKeyEvent*>(event))) return false;
        event->accept();
        return true;
    case QEvent::KeyPress: key_pressed(*static_cast<QKeyEvent*>(event)); return true;
    case QEvent::KeyRelease: key_released(*static_cast<QKeyEvent*>(event)); return true;
    case QEvent::FocusIn:
    case QEvent::FocusOut: focus_changed(*static_cast<QFocusEvent*>(event)); return false;
    case QEvent::Wheel:
        wheel_turned(static_cast<QWheelEvent*>(event)->angleDelta().y());
        return true;
    case QEvent::MouseButtonDblClick:
        if (static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton) return false;
        events_.post(Event::Kind::double_click);
        return true;
    default: return false;
    }
}

bool QtInput::is_held(const QKeyEvent& event) const {
    return std::ranges::find(held_, event.nativeScanCode()) != held_.end();
}

void QtInput::key_pressed(QKeyEvent& event) {
    // An X server may send the repeats of a held key as presses without releases.
    const bool repeat = event.isAutoRepeat() || is_held(event);
    if (!repeat && event.nativeScanCode()) held_.push_back(event.nativeScanCode());
    // A command's key is not the machine's, not even when its Alt goes up first.
    if (!repeat && !is_claimed(event)) keyboard_.key_event(event, true);
    Event message;
    message.kind = Event::Kind::key_down;
    message.value = keyboard_.virtual_key(event);
    message.modifiers = modifiers_of(event);
    if (message.value == KEY_NONE) return;
    if (repeat && !repeats(uint8_t(message.value), message.modifiers)) return;
    events_.post(message);
}

void QtInput::key_released(QKeyEvent& event) {
    if (event.isAutoRepeat()) return;
    std::erase(held_, event.nativeScanCode());
    keyboard_.key_event(event, false);
}

void QtInput::focus_changed(const QFocusEvent& event) {
    if (event.lostFocus()) {
        keyboard_.release_all();
        held_.clear();
    } else if (!is_of_menu(event.reason())) {
        events_.post(Event::Kind::focus);
    }
}

void QtInput::wheel_turned(int angle) {
    wheel_angle_ += angle;
    const int notches = wheel_angle_ / NOTCH;
    wheel_angle_ -= notches * NOTCH;
    if (notches) events_.post(Event::Kind::wheel, notches * NOTCH);
}
