#pragma once
/// A keyboard whose keys and layout are what the driver sets.

#include "platform/keyboard.h"

#include <array>
#include <bitset>
#include <optional>
#include <string>

/// The key of each character from 20 to 7E.
using HeadlessLayout = std::array<std::optional<KeyForCharacter>, 0x7F - 0x20>;

HeadlessLayout headless_us_layout();

struct HeadlessKeyboard final : public HostKeyboard {
    bool is_down(uint8_t key) override { return down[key]; }
    bool control_is_held() override { return down[KEY_CONTROL]; }
    std::optional<KeyForCharacter> key_for(char character) override;
    std::string label(uint8_t key) override;
    void release_all() override { down.reset(); }
    void release_tapped() override {}

    std::bitset<256> down;
    HeadlessLayout layout = headless_us_layout();
};
