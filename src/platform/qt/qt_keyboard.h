#pragma once
/// The keyboard of a Qt program. Keys are told apart by scan code, which xcb and wayland deliver as
/// an X keycode. The layout is the one of the X server or the Wayland compositor; on platforms that
/// have none, it is what the environment names.

#include "platform/keyboard.h"
#include "platform/pressed_keys.h"
#include "platform/qt/layout_source.h"

#include <memory>

class QKeyEvent;

/// Which physical key it is: its scan code, or on a platform without scan codes its meaning.
uint64_t key_source(const QKeyEvent& event);

class QtKeyboard final : public HostKeyboard {
public:
    /// The program's QGuiApplication must exist.
    QtKeyboard();

    bool is_down(uint8_t key) override { return pressed_.is_down(key); }
    bool control_is_held() override;
    std::optional<KeyForCharacter> key_for(char character) override;
    std::string label(uint8_t key) override { return layout_.label(key); }
    void release_all() override { pressed_.release_all(); }
    void release_tapped() override { pressed_.release_tapped(); }

    /// Takes a press or a release of any window of the program; repeats are ignored.
    void key_event(const QKeyEvent& event, bool down);
    /// HostKey of the event's key, KEY_NONE for one that has none. AltGr is KEY_ALT.
    uint8_t virtual_key(const QKeyEvent& event) const;
    /// True when the layout has become another one since the last call. Costs next to nothing
    /// while the keyboard map stands still.
    bool refresh();

private:
    uint8_t key_of(const QKeyEvent& event) const;
    void update_layout();
    void press(const QKeyEvent& event);
    void release(const QKeyEvent& event);

    std::unique_ptr<LayoutSource> source_; ///< null when nothing tells the layout
    XkbLayout layout_;
    bool changed_ = false;
    PressedKeys pressed_;
};
