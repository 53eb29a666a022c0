#include "platform/qt/qt_input.h"

#include "platform/qt/qt_debugger_window.h"

#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>
#include <utility>

namespace {

constexpr int NOTCH = 120; ///< wheel angle, eighths of a degree

uint8_t modifiers_of(const QKeyEvent& event) {
    uint8_t modifiers = 0;
    if (event.modifiers() & Qt::ShiftModifier) modifiers |= MODIFIER_SHIFT;
    if (event.modifiers() & Qt::ControlModifier) modifiers |= MODIFIER_CONTROL;
    if (event.modifiers() & Qt::AltModifier) modifiers |= MODIFIER_ALT;
    return modifiers;
}

uint8_t button_of(Qt::MouseButton button) {
    switch (button) {
    case Qt::LeftButton: return BUTTON_LEFT;
    case Qt::RightButton: return BUTTON_RIGHT;
    case Qt::MiddleButton: return BUTTON_MIDDLE;
    default: return 0;
    }
}

uint8_t buttons_of(Qt::MouseButtons held) {
    uint8_t buttons = 0;
    for (const auto button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        if (held & button) buttons |= button_of(button);
    }
    return buttons;
}

bool is_debugger(const QObject& widget) {
    return dynamic_cast<const QtDebuggerPane::Widget*>(&widget);
}

/// Of the widget that the pointer is in, which is the canvas, the film bar or the debugger.
PaneId pane_of(const QObject& widget) {
    if (is_debugger(widget)) return PaneId::debugger;
    const auto* canvas = dynamic_cast<const QtCanvas*>(&widget);
    return canvas ? canvas->front_id() : PaneId::film_bar;
}

Event pointer_event(Pointer::Act act, PaneId pane, const QSinglePointEvent& event) {
    const QPoint place = event.position().toPoint();
    Event message;
    message.kind = Event::Kind::pointer;
    message.pointer = {.act = act,
                       .pane = pane,
                       .x = place.x(),
                       .y = place.y(),
                       .button = button_of(event.button()),
                       .buttons = buttons_of(event.buttons()),
                       .touch = event.deviceType() == QInputDevice::DeviceType::TouchScreen};
    return message;
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

bool QtInput::eventFilter(QObject* watched, QEvent* event) {
    const auto pointer = [&](Pointer::Act act) {
        events_.post(pointer_event(act, pane_of(*watched), *static_cast<QMouseEvent*>(event)));
        return false;
    };
    const PaneId keys = is_debugger(*watched) ? PaneId::debugger : PaneId::picture;
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        if (keys != PaneId::debugger && !is_claimed(*static_cast<QKeyEvent*>(event))) return false;
        event->accept();
        return true;
    case QEvent::KeyPress: key_pressed(*static_cast<QKeyEvent*>(event), keys); return true;
    case QEvent::KeyRelease: key_released(*static_cast<QKeyEvent*>(event), keys); return true;
    case QEvent::FocusIn:
    case QEvent::FocusOut: focus_changed(*static_cast<QFocusEvent*>(event), keys); return false;
    case QEvent::MouseButtonPress:
        last_press_ = static_cast<QMouseEvent*>(event)->timestamp();
        return pointer(Pointer::Act::press);
    case QEvent::MouseMove: return pointer(Pointer::Act::move);
    case QEvent::MouseButtonRelease: return pointer(Pointer::Act::release);
    case QEvent::MouseButtonDblClick:
        return pointer(second_press(*static_cast<QMouseEvent*>(event)));
    case QEvent::Wheel:
        wheel_turned(pane_of(*watched), *static_cast<QWheelEvent*>(event));
        return true;
    default: return false;
    }
}

/// The first press may have closed a window in front of this one; then this is the first here.
Pointer::Act QtInput::second_press(const QMouseEvent& event) {
    const quint64 apart = event.timestamp() - std::exchange(last_press_, event.timestamp());
    const auto longest = quint64(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    return apart <= longest ? Pointer::Act::double_click : Pointer::Act::press;
}

void QtInput::send_key(Event::Kind kind, uint8_t key, uint8_t modifiers, bool repeat, PaneId pane) {
    if (key == KEY_NONE) return;
    Event message;
    message.kind = kind;
    message.value = key;
    message.modifiers = modifiers;
    message.repeat = repeat;
    message.pane = pane;
    events_.post(message);
}

void QtInput::key_pressed(QKeyEvent& event, PaneId pane) {
    const uint8_t key = keyboard_.virtual_key(event);
    const quint32 scan = event.nativeScanCode();
    // An X server may send the repeats of a held key as presses without releases.
    const bool repeat = event.isAutoRepeat() || held_.contains(scan);
    if (!repeat && scan) held_[scan] = key;
    // A command's key is not the machine's, not even when its Alt goes up first.
    const bool of_machine = pane != PaneId::debugger;
    const bool claimed = of_machine && is_claimed(event);
    if (!repeat && !claimed && of_machine) keyboard_.key_event(event, true);
    send_key(Event::Kind::key_down, key, modifiers_of(event), repeat, pane);
    const bool with_alt = event.modifiers() & Qt::AltModifier; // which AltGr is not
    if (claimed || (with_alt && !of_machine)) return;
    if (event.text().isEmpty() || !event.text().front().isPrint()) return;
    Event message;
    message.kind = Event::Kind::text;
    message.text = event.text().toStdString();
    message.pane = pane;
    events_.post(message);
}

void QtInput::key_released(QKeyEvent& event, PaneId pane) {
    if (event.isAutoRepeat()) return;
    const auto held = held_.extract(event.nativeScanCode());
    keyboard_.key_event(event, false);
    send_key(Event::Kind::key_up, held ? held.mapped() : keyboard_.virtual_key(event),
             modifiers_of(event), false, pane);
}

void QtInput::focus_changed(const QFocusEvent& event, PaneId pane) {
    if (event.lostFocus()) {
        keyboard_.release_all();
        for (const auto& [scan, key] : std::exchange(held_, {})) {
            send_key(Event::Kind::key_up, key, 0, false, pane);
        }
    } else if (pane != PaneId::debugger && !is_of_menu(event.reason())) {
        events_.post(Event::Kind::focus);
    }
}

void QtInput::wheel_turned(PaneId pane, const QWheelEvent& event) {
    wheel_angle_ += event.angleDelta().y();
    const int notches = wheel_angle_ / NOTCH;
    wheel_angle_ -= notches * NOTCH;
    if (!notches) return;
    Event message = pointer_event(Pointer::Act::wheel, pane, event);
    message.value = notches * NOTCH;
    events_.post(message);
}
