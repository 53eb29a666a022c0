#pragma once
/// The keyboard, as the page tells it: keys by their places, which are Linux's scan codes, and what
/// they give when they are typed.

#include "platform/keyboard.h"
#include "platform/learned_layout.h"
#include "platform/pressed_keys.h"
#include "platform/web/web_context.h"
#include "platform/window.h"

#include <map>
#include <span>
#include <vector>

class WebKeyboard final : public HostKeyboard {
public:
    explicit WebKeyboard(WebContext& context) : context_(context) {}

    bool is_down(uint8_t key) override { return pressed_.is_down(key); }
    /// A page cannot look at the keyboard; it hears of the keys that are pressed in it.
    bool control_is_held() override { return control_; }
    std::optional<KeyForCharacter> key_for(char character) override {
        return layout_.key_for(character);
    }
    std::string label(uint8_t key) override { return layout_.label(key); }
    void release_all() override;
    void release_tapped() override { pressed_.release_tapped(); }

    bool claims(uint8_t key, uint8_t modifiers) const;
    /// Of the key at this place, in the layout as far as it is known.
    uint8_t host_key(uint8_t place) const { return layout_.host_key(place); }
    void claim(std::span<const KeyChord> chords) { claimed_.assign(chords.begin(), chords.end()); }
    /// True for a press that is claimed.
    bool key(uint8_t place, bool down, uint8_t modifiers, bool repeat, bool alt_gr);
    void learn(uint8_t place, LearnedLayout::Level level, uint32_t character, bool dead);
    /// Something else gets the keys from now on: all go up.
    void let_go();
    void set_control(bool held) { control_ = held; }

private:
    void send(Event::Kind kind, uint8_t key, uint8_t modifiers, bool repeat);

    WebContext& context_;
    LearnedLayout layout_;
    PressedKeys pressed_;
    std::map<uint8_t, uint8_t> held_; ///< by place: what the keys went down as
    std::vector<KeyChord> claimed_;
    bool control_ = false;
    int learning_ = 0; ///< messages about what was learned that the shell has not taken yet
};

/// There is one page.
WebKeyboard& web_keyboard();
