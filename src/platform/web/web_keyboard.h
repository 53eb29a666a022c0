#pragma once
/// The keys that are down, by their places; what they give is learned while they are typed.

#include "platform/keyboard.h"
#include "platform/web/web_context.h"

#include <bitset>

class WebKeyboard final : public HostKeyboard {
public:
    bool is_down(uint8_t key) override { return down_[key]; }
    bool control_is_held() override { return down_[KEY_CONTROL]; }
    std::optional<KeyForCharacter> key_for(char character) override;
    std::string label(uint8_t key) override;
    void release_all() override { down_.reset(); }
    void release_tapped() override {}

    void set(uint8_t key, bool down) { down_[key] = down; }

private:
    std::bitset<256> down_;
};

/// There is one page.
WebKeyboard& web_keyboard();
