#include "platform/qt/xkb_layout.h"

#include "platform/events.h"
#include "platform/learned_layout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr uint8_t ALT_GR = MODIFIER_CONTROL | MODIFIER_ALT;

/// What the keys type alone, with Shift and with AltGr, in the order of PLACES; a space where that
/// is nothing in ASCII, or a character that another key gives more easily.
struct LayoutCase {
    const char* layout;
    bool letters; // each letter is the character of its own key
    std::string_view levels[3];
};

constexpr uint8_t PLACES[] = {
    '1',       '2',       '3',       '4',           '5',          '6',           '7',
    '8',       '9',       '0',       KEY_OEM_MINUS, KEY_OEM_PLUS, KEY_OEM_3,     KEY_OEM_4,
    KEY_OEM_6, KEY_OEM_1, KEY_OEM_7, KEY_OEM_5,     KEY_OEM_102,  KEY_OEM_COMMA, KEY_OEM_PERIOD,
    KEY_OEM_2, 'Q'};

const LayoutCase LAYOUTS[] = {
    {"us", true, {R"(1234567890-=`[];'\ ,./ )", R"(!@#$%^&*()_+~{}:"| <>? )", ""}},
    {"gb", true, {R"(1234567890-=`[];'#\,./ )", R"(!" $%^&*()_+ {}:@~|<>? )", ""}},
    // The accents ^ and ` are dead keys; the acute is not the apostrophe, which has a key.
    {"de",
     true,
     {R"(1234567890  ^ +  #<,.- )", R"(!" $%&/()=?`  *  '>;:_ )", R"(      {[]}\   ~   |   @)"}},
    // M is right of L, and the key in its place counts for the one there.
    {"fr",
     true,
     {R"(& "'(- _  )= ^$, *<;:! )", R"(1234567890 +~  ?% >./  )", R"(  #{[|`\ @]}           )"}},
    {"ru", false, {R"(1234567890-=     \   . )", R"(!" ;%:?*()_+     /|  , )", ""}},
};

std::string name(const std::optional<KeyForCharacter>& key) {
    return key ? std::to_string(key->key) + "+" + std::to_string(key->modifiers) : "none";
}

uint32_t accent_of(xkb_keysym_t symbol) {
    switch (symbol) {
    case XKB_KEY_dead_grave: return '`';
    case XKB_KEY_dead_acute: return '\'';
    case XKB_KEY_dead_circumflex: return '^';
    case XKB_KEY_dead_tilde: return '~';
    case XKB_KEY_dead_diaeresis: return '"';
    default: return 0;
    }
}

/// Types all keys that give a character, alone, with Shift and with AltGr.
void teach(LearnedLayout& learned, const char* layout) {
    const XkbContextPointer context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const xkb_rule_names names{nullptr, nullptr, layout, nullptr, nullptr};
    const XkbKeymapPointer keymap(
        xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    constexpr xkb_keycode_t OFFSET = 8, SHIFT = 42, ALT_GR_KEY = 100;
    for (uint8_t level = 0; level < LearnedLayout::LEVELS; ++level) {
        const XkbStatePointer state(xkb_state_new(keymap.get()));
        if (level & 1) xkb_state_update_key(state.get(), OFFSET + SHIFT, XKB_KEY_DOWN);
        if (level & 2) xkb_state_update_key(state.get(), OFFSET + ALT_GR_KEY, XKB_KEY_DOWN);
        for (uint8_t place = 1; place < 128; ++place) {
            const uint32_t accent =
                accent_of(xkb_state_key_get_one_sym(state.get(), OFFSET + place));
            const uint32_t given =
                accent ? accent : xkb_state_key_get_utf32(state.get(), OFFSET + place);
            learned.learn(place, LearnedLayout::Level(level), given, accent != 0);
        }
    }
}

} // namespace

// A layout that was learned key by key, each of them after another one, is as the system tells it.
TEST(LearnedLayout, BecomesTheOneThatIsTyped) {
    LearnedLayout learned;
    EXPECT_EQ(name(learned.key_for('"')), name(KeyForCharacter{KEY_OEM_7, MODIFIER_SHIFT}));
    EXPECT_TRUE(learned.learn(16, LearnedLayout::plain, 'a')); // the French A, where US has Q
    EXPECT_FALSE(learned.learn(16, LearnedLayout::plain, 'a'));
    EXPECT_TRUE(learned.learn(26, LearnedLayout::plain, '^'));
    EXPECT_TRUE(learned.learn(26, LearnedLayout::plain, '^', true)); // dead, as it turns out
    EXPECT_EQ(learned.host_key(30), 'Q') << "the place of A counts for Q, until it is known";
    for (const char* layout : {"us", "gb", "de", "fr", "ru"}) {
        teach(learned, layout);
        teach(learned, layout); // what was typed before the first contradiction is forgotten
        const XkbLayout xkb = XkbLayout::from_names(layout, nullptr);
        for (char code = ' '; code < 127; ++code)
            EXPECT_EQ(name(learned.key_for(code)), name(xkb.key_for(code))) << layout << code;
        for (uint8_t place = 1; place < 58; ++place) {
            const uint8_t key = learned.host_key(place);
            if (!types_a_character(key)) continue;
            EXPECT_EQ(key, xkb.virtual_key(8U + place)) << layout << int(place);
            if (xkb.label(key) >= "\xD0") continue; // Cyrillic has no capitals here
            EXPECT_EQ(learned.label(key), xkb.label(key)) << layout << int(place);
        }
    }
}

// Every ASCII character of five layouts, read off the keyboards.
TEST(XkbLayout, KeyOfEveryCharacter) {
    constexpr uint8_t LEVELS[] = {0, MODIFIER_SHIFT, ALT_GR};
    for (const LayoutCase& test : LAYOUTS) {
        std::array<std::optional<KeyForCharacter>, 128> expected{};
        expected[' '] = {KEY_SPACE, 0};
        for (uint8_t letter = 'A'; test.letters && letter <= 'Z'; ++letter) {
            expected[letter] = {letter, MODIFIER_SHIFT};
            expected[letter + 32U] = {letter, 0};
        }
        for (size_t level = 0; level < 3; ++level)
            for (size_t i = 0; i < test.levels[level].size(); ++i)
                if (const char character = test.levels[level][i]; character != ' ')
                    expected[size_t(character)] = {PLACES[i], LEVELS[level]};

        const XkbLayout layout = XkbLayout::from_names(test.layout, nullptr);
        for (int code = -128; code < 128; ++code)
            EXPECT_EQ(name(layout.key_for(char(code))),
                      name(code < 0 ? std::nullopt : expected[size_t(code)]))
                << test.layout << " character " << code << " " << char(code);
    }
}

TEST(XkbLayout, LabelsAreWhatIsPrintedOnTheKeys) {
    const XkbLayout german = XkbLayout::from_names("de", nullptr);
    const std::pair<uint8_t, const char*> labels[] = {
        {'Z', "Z"},       {'1', "1"},       {KEY_OEM_4, "Ü"},    {KEY_OEM_MINUS, "ß"},
        {KEY_OEM_2, "-"}, {KEY_OEM_3, "^"}, {KEY_BACKSPACE, ""}, {KEY_OEM_102, ""}};
    for (const auto& [key, label] : labels) EXPECT_EQ(german.label(key), label);
}

// A dead key is preferred to AltGr, and AltGr alone to AltGr with Shift.
TEST(XkbLayout, LastResorts) {
    const XkbLayout international = XkbLayout::from_names("us", "intl");
    EXPECT_EQ(name(international.key_for('\'')), name(KeyForCharacter{KEY_OEM_7, 0}));
    EXPECT_EQ(name(international.key_for('"')), name(KeyForCharacter{KEY_OEM_7, MODIFIER_SHIFT}));
    EXPECT_EQ(name(international.key_for('^')), name(KeyForCharacter{'6', MODIFIER_SHIFT}));
    EXPECT_EQ(name(XkbLayout::from_names("fi", nullptr).key_for('|')),
              name(KeyForCharacter{KEY_OEM_102, ALT_GR}));
    EXPECT_EQ(name(XkbLayout::from_names("ua", nullptr).key_for('{')),
              name(KeyForCharacter{'9', ALT_GR | MODIFIER_SHIFT}));
}

TEST(XkbLayout, VirtualKeyOfEveryPlace) {
    struct Case {
        const char* layout;
        const char* variant;
        uint32_t first_scan;
        std::vector<uint8_t> keys;
    };
    const Case cases[] = {
        {"us", nullptr, 1, {KEY_ESCAPE, '1', '2', '3', '4', '5', '6', '7', '8', '9', '0'}},
        {"fr", nullptr, 1, {KEY_ESCAPE, '1', '2', '3', '4', '5', '6', '7', '8', '9', '0'}},
        {"us", nullptr, 12, {KEY_OEM_MINUS, KEY_OEM_PLUS, KEY_BACKSPACE, KEY_TAB, 'Q', 'W'}},
        {"us", nullptr, 25, {'P', KEY_OEM_4, KEY_OEM_6, KEY_RETURN, KEY_CONTROL, 'A', 'S'}},
        {"us", nullptr, 38, {'L', KEY_OEM_1, KEY_OEM_7, KEY_OEM_3, KEY_SHIFT, KEY_OEM_5, 'Z'}},
        {"us", nullptr, 50, {'M', KEY_OEM_COMMA, KEY_OEM_PERIOD, KEY_OEM_2, KEY_SHIFT, 0}},
        {"us", nullptr, 56, {KEY_ALT, KEY_SPACE, 0, KEY_F1, KEY_F2, KEY_F3, KEY_F4, KEY_F5}},
        {"us", nullptr, 64, {KEY_F6, KEY_F7, KEY_F8, KEY_F9, KEY_F10, 0, 0}},
        {"us", nullptr, 71, {0x67, 0x68, 0x69, 0, 0x64, 0x65, 0x66, 0, 0x61, 0x62, 0x63, 0x60}},
        {"us", nullptr, 86, {KEY_OEM_102, KEY_F11, KEY_F12}},
        {"us", nullptr, 96, {KEY_RETURN, KEY_CONTROL, 0, 0, KEY_ALT}},
        {"us", nullptr, 102, {KEY_HOME, KEY_UP, KEY_PAGE_UP, KEY_LEFT, KEY_RIGHT, KEY_END}},
        {"us", nullptr, 108, {KEY_DOWN, KEY_PAGE_DOWN, KEY_INSERT, KEY_DELETE}},
        {"us", nullptr, 119, {KEY_PAUSE}},
        {"us", nullptr, 127, {KEY_MENU}},
        {"de", nullptr, 100, {KEY_ALT_GR}},
        {"de", nullptr, 20, {'T', 'Z', 'U', 'I', 'O', 'P', KEY_OEM_4, KEY_OEM_6}},
        {"de", nullptr, 44, {'Y', 'X'}},
        {"fr", nullptr, 16, {'A', 'Z', 'E'}},
        {"fr", nullptr, 30, {'Q', 'S'}},
        {"fr", nullptr, 38, {'L', 'M', KEY_OEM_7}},
        {"fr", nullptr, 49, {'N', KEY_OEM_1, KEY_OEM_COMMA}},
        // The apostrophe stands in Q's place, Q in X's, and so on over B, N, L, P, R and O to S,
        // which stands in the semicolon's.
        {"us", "dvorak", 16, {KEY_OEM_1}},
        {"us", "dvorak", 39, {'S', KEY_OEM_7}},
        {"ru", nullptr, 16, {'Q', 'W', 'E', 'R', 'T', 'Y', 'U', 'I', 'O', 'P', KEY_OEM_4}},
        {"ru", nullptr, 30, {'A', 'S', 'D', 'F', 'G', 'H', 'J', 'K', 'L', KEY_OEM_1}},
        {"gr", nullptr, 16, {'Q', 'W', 'E'}},
    };
    for (const Case& test : cases) {
        const XkbLayout layout = XkbLayout::from_names(test.layout, test.variant);
        for (uint32_t i = 0; i < test.keys.size(); ++i)
            EXPECT_EQ(layout.virtual_key(8 + test.first_scan + i), test.keys[i])
                << test.layout << " scan code " << test.first_scan + i;
    }
    const XkbLayout layout = XkbLayout::from_names("us", nullptr);
    EXPECT_EQ(layout.virtual_key(0), KEY_NONE);
    EXPECT_EQ(layout.virtual_key(256 + 8 + 16), KEY_NONE);
}

// Modifiers are what the layout makes of them, and the second layout of a map has its own.
TEST(XkbLayout, LayoutsOfOneMap) {
    const XkbContextPointer context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const xkb_rule_names names{nullptr, nullptr, "us,de", nullptr, "ctrl:swapcaps"};
    const XkbKeymapPointer keymap(
        xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    const XkbLayout us = XkbLayout::from_keymap(keymap.get(), 0);
    const XkbLayout de = XkbLayout::from_keymap(keymap.get(), 1);
    EXPECT_EQ(us.virtual_key(8 + 58), KEY_CONTROL);
    EXPECT_EQ(us.virtual_key(8 + 29), KEY_NONE);
    EXPECT_EQ(us.virtual_key(8 + 100), KEY_ALT);
    EXPECT_EQ(de.virtual_key(8 + 100), KEY_ALT_GR);
    EXPECT_EQ(name(us.key_for('@')), name(KeyForCharacter{'2', MODIFIER_SHIFT}));
    EXPECT_EQ(name(de.key_for('@')), name(KeyForCharacter{'Q', ALT_GR}));
}
