#pragma once
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_keyboard.h"
#include "platform/window.h"

#include <QKeyEvent>
#include <QObject>

#include <span>
#include <vector>

/// Keyboard, mouse and focus of the client area. While a menu or a dialog has the keyboard, its
/// keys are not seen here.
class QtInput final : public QObject {
public:
    QtInput(QtEvents& events, QtKeyboard& keyboard);

    void claim(std::span<const KeyChord> chords);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool is_claimed(const QKeyEvent& event) const;
    bool is_held(const QKeyEvent& event) const;
    void key_pressed(QKeyEvent& event);
    void key_released(QKeyEvent& event);
    void focus_changed(const QFocusEvent& event);
    void wheel_turned(int angle);

    QtEvents& events_;
    QtKeyboard& keyboard_;
    std::vector<KeyChord> claimed_;
    std::vector<quint32> held_; ///< scan codes of the keys that are down
    int wheel_angle_ = 0;       ///< less than a notch
};
