#pragma once
/// The keyboard, as the main window's messages tell it.

#include "platform/keyboard.h"
#include "platform/pressed_keys.h"
#include "platform/win32/win32_context.h"
#include "platform/win32/win32_layout.h"
#include "platform/window.h"

#include <map>
#include <span>
#include <vector>

class Win32Keyboard final : public HostKeyboard {
public:
    explicit Win32Keyboard(Win32Context& context) : context_(context) {}

    bool is_down(uint8_t key) override { return pressed_.is_down(key); }
    bool control_is_held() override;
    std::optional<KeyForCharacter> key_for(char character) override {
        return layout_.key_for(character);
    }
    std::string label(uint8_t key) override { return layout_.label(key); }
    void release_all() override { pressed_.release_all(); }
    void release_tapped() override { pressed_.release_tapped(); }

    /// HostKey of a key message's two parameters, of any window; KEY_NONE for a key that has none.
    uint8_t host_key(WPARAM virtual_key, LPARAM detail) const {
        return layout_.host_key(virtual_key, detail);
    }
    void claim(std::span<const KeyChord> chords);
    /// Takes a keyboard message of the main window, or of the debugger's, whose keys are none of
    /// the machine's. True when Windows is to do nothing more with it.
    bool handle(PaneId pane, UINT message, WPARAM wparam, LPARAM detail);
    /// Another window, a menu or a move of the window gets the keys from now on: all go up.
    void let_go();
    void layout_changed() { layout_.refresh(); }

private:
    bool key_down(WPARAM virtual_key, LPARAM detail);
    void key_up(int source, uint8_t key);
    void release_shifts();
    void character(wchar_t unit);
    bool is_claimed(uint8_t key, uint8_t modifiers) const;
    void send(Event::Kind kind, uint8_t key, uint8_t modifiers, bool repeat);

    Win32Context& context_;
    Win32Layout layout_;
    PressedKeys pressed_;
    PaneId pane_ = PaneId::picture; ///< the latest message's
    std::map<int, uint8_t> held_;   ///< by source: what the keys went down as
    std::vector<KeyChord> claimed_;
    bool claims_text_ = false; ///< the character of the latest key_down belongs to a claimed key
    wchar_t first_half_ = 0;   ///< of a character that takes two messages
};
