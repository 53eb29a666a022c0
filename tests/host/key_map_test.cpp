#include "host/key_map.h"

#include "cgenie/keyboard.h"
#include "support/host_files.h"

#include <array>
#include <map>

namespace {
/// Other layouts: what the keys give alone, with Shift and with AltGr, in the order of KEYS; a
/// space is nothing.
using Levels = std::array<std::string, 3>;
const std::string KEYS = "\xC0"
                         "1234567890\xBD\xBBQWERTYUIOP\xDB\xDD"
                         "ASDFGHJKL\xBA\xDE\xDC\xE2ZXCVBNM\xBC\xBE\xBF";
const Levels GERMAN = {R"(^1234567890  qwertzuiop +asdfghjkl  #<yxcvbnm,.-)",
                       R"( !" $%&/()=?`QWERTZUIOP *ASDFGHJKL  '>YXCVBNM;:_)",
                       R"(       {[]}\ @          ~            |)"};
const Levels FRENCH = {R"( & "'(- _  )=azertyuiop^$qsdfghjklm *<wxcvbn,;:!)",
                       R"( 1234567890 +AZERTYUIOP  QSDFGHJKLM% >WXCVBN?./ )", R"(  ~#{[|`\^@]})"};

HeadlessLayout layout_of(const Levels& levels) {
    HeadlessLayout keys;
    const uint8_t modifiers[] = {0, MODIFIER_SHIFT, MODIFIER_CONTROL | MODIFIER_ALT};
    for (size_t level = 3; level-- > 0;) {
        for (size_t i = 0; i < levels[level].size(); ++i) {
            keys[levels[level][i] - ' '] = KeyForCharacter{uint8_t(KEYS[i]), modifiers[level]};
        }
    }
    keys[0] = KeyForCharacter{KEY_SPACE, 0};
    return keys;
}

class KeyMap : public HostFilesTest {
protected:
    void TearDown() override {
        keyboard_init();
        keyboard_change_mapping(0);
        HostFilesTest::TearDown();
    }
    void hold(const std::vector<int>& keys) {
        host->release_all_keys();
        for (const int key : keys) host->set_key(uint8_t(key), true);
    }
    void hold_chord(const KeyForCharacter& key) {
        hold({key.key});
        host->set_key(KEY_SHIFT, key.modifiers & MODIFIER_SHIFT);
        host->set_key(KEY_CONTROL, key.modifiers & MODIFIER_CONTROL);
        host->set_key(KEY_ALT, key.modifiers & MODIFIER_ALT);
    }
    static uint8_t row(unsigned number) { return keyboard_read(uint8_t(1U << number)); }
    /// The next four reads of row 7.
    static std::vector<int> shifts() { return {row(7), row(7), row(7), row(7)}; }
};
const std::vector<int> NO_SHIFT = {0, 0, 0, 0}, THREE_SHIFTS = {1, 1, 1, 0};

/// The matrix pairs the bits of ASCII: letters by their low five bits, digits and signs by four.
struct Contact {
    int position; ///< -1: the machine has no such key
    bool shift;
};
Contact contact_of(char c) {
    if (c == ' ') return {55, false};
    if (c == '@' || (c >= 'a' && c <= 'z')) return {c & 0x1F, false};
    if (c >= 'A' && c <= 'Z') return {c & 0x1F, true};
    if (c >= '[') return {-1, false};
    return {32 + (c & 0x0F), (c & 0x1F) <= 0x0B ? c < '0' : c >= '<'};
}

TEST_F(KeyMap, SymbolicPressesTheKeyOfTheCharacterInEveryLayout) {
    const std::pair<std::string, HeadlessLayout> layouts[] = {
        {"US", headless_us_layout()}, {"German", layout_of(GERMAN)}, {"French", layout_of(FRENCH)}};
    for (const auto& [name, layout] : layouts) {
        host->keyboard().layout = layout;
        host_keyboard_init();
        for (char c = ' '; c <= '~'; ++c) {
            SCOPED_TRACE(name + " " + c);
            ASSERT_TRUE(layout[c - ' ']);
            hold_chord(*layout[c - ' ']);
            const Contact contact = contact_of(c);
            for (int number = 0; number < 7; ++number) {
                const bool hit = contact.position >= 0 && contact.position / 8 == number;
                ASSERT_EQ(row(unsigned(number)), hit ? 1 << contact.position % 8 : 0)
                    << "row " << number;
            }
            ASSERT_EQ(shifts(), contact.shift ? THREE_SHIFTS : NO_SHIFT);
        }
    }
}

TEST_F(KeyMap, SymbolicHostKeysAndModifiers) {
    host_keyboard_init();
    struct {
        std::vector<int> keys;
        unsigned row;
        uint8_t expected;
        bool shift;
    } const cases[] = {
        {{KEY_CONTROL, 'A'}, 0, 0x02, false},
        {{KEY_ALT, 'A'}, 0, 0x00, false},
        {{KEY_CONTROL, KEY_SHIFT, 'A'}, 0, 0x00, false},
        {{'A', 'C', 'H'}, 0, 0x0A, false},
        {{KEY_F1, KEY_F4}, 3, 0x90, false},
        {{KEY_SHIFT, KEY_F1}, 3, 0x00, false},
        {{KEY_RETURN, KEY_END, KEY_DOWN, KEY_RIGHT}, 6, 0x55, false},
        {{KEY_SHIFT, KEY_HOME, KEY_UP, KEY_BACKSPACE, KEY_SPACE}, 6, 0xAA, true},
        {{KEY_LEFT}, 6, 0x00, false},
        {{KEY_SHIFT, KEY_CONTROL, KEY_INSERT, KEY_TAB}, 7, 0x00, false},
    };
    for (const auto& c : cases) {
        hold(c.keys);
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        EXPECT_EQ(row(c.row), c.expected);
        EXPECT_EQ(shifts(), c.shift ? THREE_SHIFTS : NO_SHIFT);
    }

    hold({KEY_SHIFT, '1'});
    EXPECT_EQ(keyboard_read(0xF0), 0x02) << "the lowest row of several";
    hold({'1'});
    row(4);
    EXPECT_EQ(shifts(), NO_SHIFT) << "a plain key takes SHIFT back";
    hold({KEY_SHIFT, '1'});
    row(4);
    host_keyboard_reset();
    EXPECT_TRUE(host->keyboard().down.none());
    EXPECT_EQ(shifts(), NO_SHIFT) << "so does a reset";

    host->keyboard().layout['@' - ' '] = {};
    host_keyboard_init();
    for (uint8_t modifiers = 0; modifiers < 8; ++modifiers) {
        hold_chord({0xFF, modifiers});
        for (int key = KEY_SPACE; key < 0xFF; ++key) host->set_key(uint8_t(key), true);
        EXPECT_EQ(row(0) & 0x01, 0) << "a layout without @, modifiers " << int(modifiers);
    }
}

/// Row and column of every key, row x 8 + column.
std::map<int, int> matrix_positions() {
    std::map<int, int> positions = {
        {KEY_OEM_4, 0},      {KEY_F1, 28},         {KEY_F2, 29},    {KEY_F3, 30},
        {KEY_F4, 31},        {KEY_OEM_7, 42},      {KEY_OEM_1, 43}, {KEY_OEM_COMMA, 44},
        {KEY_OEM_MINUS, 45}, {KEY_OEM_PERIOD, 46}, {KEY_OEM_2, 47}, {KEY_RETURN, 48},
        {KEY_HOME, 49},      {KEY_END, 50},        {KEY_UP, 51},    {KEY_DOWN, 52},
        {KEY_LEFT, 53},      {KEY_BACKSPACE, 53},  {KEY_RIGHT, 54}, {KEY_SPACE, 55},
        {KEY_SHIFT, 56},     {KEY_INSERT, 57},     {KEY_TAB, 59},   {KEY_CONTROL, 60}};
    for (int letter = 'A'; letter <= 'Z'; ++letter) positions[letter] = letter - 'A' + 1;
    for (int digit = '0'; digit <= '9'; ++digit) positions[digit] = digit - '0' + 32;
    return positions;
}

TEST_F(KeyMap, EveryHostKeyClosesItsOwnContact) {
    keyboard_change_mapping(0);
    const auto positions = matrix_positions();
    for (int key = 0; key < 256; ++key) {
        hold({key});
        const auto position = positions.find(key);
        for (int row = 0; row < 8; ++row) {
            const bool hit = position != positions.end() && position->second / 8 == row;
            EXPECT_EQ(this->row(unsigned(row)), hit ? 1 << position->second % 8 : 0)
                << "key " << std::hex << key << " row " << row;
        }
    }
    hold({'A', 'H', KEY_SHIFT, KEY_CONTROL, KEY_ALT});
    for (unsigned row = 0; row < 8; ++row) EXPECT_EQ(this->row(row), 0) << "Alt hides them all";
}
} // namespace
