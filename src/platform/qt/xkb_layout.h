#pragma once
/// One layout of an X keyboard map as two tables: the virtual key of every X keycode (the kernel's
/// scan code + 8), and the key of every ASCII character. Letters are where the layout has them; all
/// other keys are named by their place on a US keyboard, whatever they type. Where that place is
/// the one of a letter that the layout has elsewhere, the two keys trade places (a French keyboard
/// has M right of L, so the comma in M's old place counts as the US key right of L).

#include "platform/keyboard.h"

#include <xkbcommon/xkbcommon.h>

#include <array>
#include <map>
#include <memory>
#include <string>

/// A key that selects the layout's third level. It stands for Control and Alt at once.
inline constexpr uint8_t KEY_ALT_GR = 0xFF;

struct XkbLayout {
    std::array<uint8_t, 256> keys{};                           ///< by X keycode
    std::array<std::optional<KeyForCharacter>, 95> characters; ///< from 20 on

    std::map<uint8_t, std::string> labels; ///< of the keys that give a character

    /// Layout number `group` of a map; null gives the US places, and no characters.
    static XkbLayout from_keymap(xkb_keymap* keymap, xkb_layout_index_t group);
    /// The layout of those names; null takes the environment's (XKB_DEFAULT_LAYOUT), else US.
    static XkbLayout from_names(const char* layout, const char* variant);

    /// A HostKey, KEY_ALT_GR, or KEY_NONE.
    uint8_t virtual_key(uint32_t keycode) const;
    /// As in HostKeyboard.
    std::optional<KeyForCharacter> key_for(char character) const;
    /// As in HostKeyboard.
    std::string label(uint8_t key) const;
    bool operator==(const XkbLayout&) const = default;
};

/// Frees what libxkbcommon hands out.
struct XkbDelete {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};
using XkbContextPointer = std::unique_ptr<xkb_context, XkbDelete>;
using XkbKeymapPointer = std::unique_ptr<xkb_keymap, XkbDelete>;
using XkbStatePointer = std::unique_ptr<xkb_state, XkbDelete>;
