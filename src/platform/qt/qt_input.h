#pragma once
#include "platform/qt/qt_canvas.h"
#include "platform/qt/qt_keyboard.h"
#include "platform/window.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QObject>

#include <map>
#include <span>
#include <vector>

/// Keyboard, mouse and focus of the client area and of the debugger's window. While a menu or a
/// dialog has the keyboard, its keys are not seen here.
class QtInput final : public QObject {
public:
    QtInput(QtEvents& events, QtKeyboard& keyboard);

    void claim(std::span<const KeyChord> chords);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool is_claimed(const QKeyEvent& event) const;
    void send_key(Event::Kind kind, uint8_t key, uint8_t modifiers, bool repeat, PaneId pane);
    void key_pressed(QKeyEvent& event, PaneId pane);
    void key_released(QKeyEvent& event, PaneId pane);
    void focus_changed(const QFocusEvent& event, PaneId pane);
    Pointer::Act second_press(const QMouseEvent& event);
    void wheel_turned(PaneId pane, const QWheelEvent& event);

    QtEvents& events_;
    QtKeyboard& keyboard_;
    std::vector<KeyChord> claimed_;
    std::map<quint32, uint8_t> held_; ///< by scan code: what the keys went down as
    quint64 last_press_ = 0;          ///< of the mouse, in ms
    int wheel_angle_ = 0;             ///< less than a notch
};
