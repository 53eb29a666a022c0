#include "platform/qt/xkb_layout.h"

#include "platform/events.h"
#include "platform/key_places.h"

#include <algorithm>

namespace {

constexpr uint32_t SCAN_OFFSET = 8; // X keycode of scan code 0
constexpr char FIRST_CHARACTER = 0x20;

/// The US keyboard, by X keycode.
constexpr KeyPlaces US_KEYBOARD = us_keyboard(SCAN_OFFSET, LINUX_PLACES);

struct Modification {
    xkb_keysym_t symbol;
    uint8_t key;
};

constexpr Modification MODIFIER_SYMBOLS[] = {
    {XKB_KEY_Shift_L, KEY_SHIFT},
    {XKB_KEY_Shift_R, KEY_SHIFT},
    {XKB_KEY_Control_L, KEY_CONTROL},
    {XKB_KEY_Control_R, KEY_CONTROL},
    {XKB_KEY_Alt_L, KEY_ALT},
    {XKB_KEY_Alt_R, KEY_ALT},
    {XKB_KEY_Meta_L, KEY_ALT},
    {XKB_KEY_Meta_R, KEY_ALT},
    {XKB_KEY_ISO_Level3_Shift, KEY_ALT_GR},
};

struct DeadKey {
    xkb_keysym_t symbol;
    char character;
};

constexpr DeadKey DEAD_KEYS[] = {{XKB_KEY_dead_grave, '`'},
                                 {XKB_KEY_dead_acute, '\''},
                                 {XKB_KEY_dead_circumflex, '^'},
                                 {XKB_KEY_dead_tilde, '~'},
                                 {XKB_KEY_dead_diaeresis, '"'}};

/// A keyboard map, and the number of the layout in it that is read.
struct Source {
    xkb_keymap* keymap;
    xkb_layout_index_t group;

    xkb_keysym_t symbol(xkb_keycode_t keycode, xkb_level_index_t level) const {
        const xkb_keysym_t* symbols = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(keymap, keycode, group, level, &symbols);
        return count == 1 ? symbols[0] : xkb_keysym_t(XKB_KEY_NoSymbol);
    }
};

/// The letter of a key as a capital; 0 when it has none.
uint8_t letter_of(const Source& source, xkb_keycode_t keycode) {
    uint32_t code = xkb_keysym_to_utf32(source.symbol(keycode, 0));
    if (code >= 'a' && code <= 'z') code -= 'a' - 'A';
    return is_capital_letter(code) ? uint8_t(code) : 0;
}

/// A dead key stands for the mark that is printed on it.
std::string label_of(const Source& source, xkb_keycode_t keycode) {
    const xkb_keysym_t symbol = source.symbol(keycode, 0);
    const auto* dead = std::ranges::find(DEAD_KEYS, symbol, &DeadKey::symbol);
    if (dead != std::end(DEAD_KEYS)) return {dead->character};
    std::array<char, 8> text{};
    const xkb_keysym_t capital = xkb_keysym_to_upper(symbol); // not every letter has one
    if (xkb_keysym_to_utf8(capital, text.data(), text.size()) <= 1) {
        xkb_keysym_to_utf8(symbol, text.data(), text.size());
    }
    return text.data();
}

/// The HostKey of a key that is no letter. Modifiers follow the layout: AltGr may be anywhere, and
/// keys may be exchanged.
uint8_t other_key(const Source& source, uint8_t keycode) {
    const xkb_keysym_t symbol = source.symbol(keycode, 0);
    for (const Modification& modifier : MODIFIER_SYMBOLS)
        if (modifier.symbol == symbol) return modifier.key;
    const uint8_t place = US_KEYBOARD[keycode];
    const bool modifies = place == KEY_SHIFT || place == KEY_CONTROL || place == KEY_ALT;
    return modifies && symbol != XKB_KEY_NoSymbol ? uint8_t(KEY_NONE) : place;
}

xkb_mod_mask_t shift_mask(xkb_keymap* keymap) {
    const xkb_mod_index_t index = xkb_keymap_mod_get_index(keymap, XKB_MOD_NAME_SHIFT);
    return index == XKB_MOD_INVALID ? 0 : xkb_mod_mask_t(1) << index;
}

/// What the AltGr key sets; 0 in a layout without one.
xkb_mod_mask_t alt_gr_mask(const Source& source, const std::array<uint8_t, 256>& keys) {
    const auto found = std::find(keys.begin(), keys.end(), KEY_ALT_GR);
    if (found == keys.end()) return 0;
    const XkbStatePointer state(xkb_state_new(source.keymap));
    xkb_state_update_mask(state.get(), 0, 0, 0, 0, 0, source.group);
    xkb_state_update_key(state.get(), xkb_keycode_t(found - keys.begin()), XKB_KEY_DOWN);
    return xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_DEPRESSED);
}

/// Finds the best key of every character.
class CharacterSearch {
public:
    CharacterSearch(const Source& source, XkbLayout& layout)
        : source_(source), layout_(layout), shift_(shift_mask(source.keymap)),
          alt_gr_(alt_gr_mask(source, layout.keys)) {
        ranks_.fill(UINT8_MAX);
    }

    void look_at(xkb_keycode_t keycode) {
        const auto levels = xkb_keymap_num_levels_for_key(source_.keymap, keycode, source_.group);
        for (xkb_level_index_t level = 0; level < levels; ++level) look_at(keycode, level);
    }

private:
    void look_at(xkb_keycode_t keycode, xkb_level_index_t level) {
        const xkb_keysym_t symbol = source_.symbol(keycode, level);
        const auto* dead = std::find_if(std::begin(DEAD_KEYS), std::end(DEAD_KEYS),
                                        [=](const DeadKey& key) { return key.symbol == symbol; });
        const bool is_dead = dead != std::end(DEAD_KEYS);
        const uint32_t code = is_dead ? uint32_t(dead->character) : xkb_keysym_to_utf32(symbol);
        const uint32_t index = code - uint32_t(FIRST_CHARACTER);
        if (index >= ranks_.size()) return;

        std::array<xkb_mod_mask_t, 16> masks{};
        const size_t count = xkb_keymap_key_get_mods_for_level(
            source_.keymap, keycode, source_.group, level, masks.data(), masks.size());
        for (size_t i = 0; i < count; ++i) offer(index, keycode, masks[i], is_dead);
    }

    void offer(uint32_t index, xkb_keycode_t keycode, xkb_mod_mask_t mask, bool is_dead) {
        if ((mask & ~(shift_ | alt_gr_)) != 0) return;
        const bool shift = (mask & shift_) != 0;
        const bool alt_gr = (mask & alt_gr_) != 0;
        const uint8_t rank =
            key_rank(is_on_some_keyboards(US_KEYBOARD[keycode]), is_dead, shift, alt_gr);
        if (rank >= ranks_[index]) return;
        ranks_[index] = rank;
        const int modifiers =
            (shift ? MODIFIER_SHIFT : 0) | (alt_gr ? MODIFIER_CONTROL | MODIFIER_ALT : 0);
        layout_.characters[index] = KeyForCharacter{layout_.keys[keycode], uint8_t(modifiers)};
    }

    const Source& source_;
    XkbLayout& layout_;
    xkb_mod_mask_t shift_;
    xkb_mod_mask_t alt_gr_;
    std::array<uint8_t, 95> ranks_{};
};

} // namespace

XkbLayout XkbLayout::from_keymap(xkb_keymap* keymap, xkb_layout_index_t group) {
    XkbLayout layout;
    layout.keys = US_KEYBOARD;
    if (keymap == nullptr) return layout;

    const Source source{keymap, group};
    KeyPlaces letters{};
    for (size_t i = 0; i < letters.size(); ++i)
        if (types_a_character(US_KEYBOARD[i])) letters[i] = letter_of(source, xkb_keycode_t(i));
    layout.keys = places_with_letters(US_KEYBOARD, letters);
    for (size_t i = 0; i < layout.keys.size(); ++i)
        if (!types_a_character(US_KEYBOARD[i])) layout.keys[i] = other_key(source, uint8_t(i));
    CharacterSearch search(source, layout);
    for (size_t i = 0; i < layout.keys.size(); ++i)
        if (types_a_character(US_KEYBOARD[i])) search.look_at(xkb_keycode_t(i));
    for (size_t i = 0; i < layout.keys.size(); ++i) {
        if (!types_a_character(US_KEYBOARD[i]) || is_on_some_keyboards(US_KEYBOARD[i])) continue;
        layout.labels.emplace(layout.keys[i], label_of(source, xkb_keycode_t(i)));
    }
    return layout;
}

XkbLayout XkbLayout::from_names(const char* layout, const char* variant) {
    const XkbContextPointer context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!context) return from_keymap(nullptr, 0);
    const xkb_rule_names names{nullptr, nullptr, layout, variant, nullptr};
    const XkbKeymapPointer keymap(
        xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    return from_keymap(keymap.get(), 0);
}

uint8_t XkbLayout::virtual_key(uint32_t keycode) const {
    return keycode < keys.size() ? keys[keycode] : uint8_t(KEY_NONE);
}

std::optional<KeyForCharacter> XkbLayout::key_for(char character) const {
    const uint32_t index = uint32_t(uint8_t(character)) - uint32_t(FIRST_CHARACTER);
    return index < characters.size() ? characters[index] : std::nullopt;
}

std::string XkbLayout::label(uint8_t key) const {
    const auto found = labels.find(key);
    return found == labels.end() ? std::string() : found->second;
}
