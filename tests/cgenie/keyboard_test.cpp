#include "cgenie/keyboard.h"
#include "cgenie/typing/typing.h"
#include "media/files/typed_text.h"

#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "media/traps.h"
#include "support/host_files.h"
#include "support/typed_text.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>

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

class Keyboard : public HostFilesTest {
protected:
    void TearDown() override {
        keyboard_type_reset();
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

TEST_F(Keyboard, SymbolicPressesTheKeyOfTheCharacterInEveryLayout) {
    const std::pair<std::string, HeadlessLayout> layouts[] = {
        {"US", headless_us_layout()}, {"German", layout_of(GERMAN)}, {"French", layout_of(FRENCH)}};
    for (const auto& [name, layout] : layouts) {
        host->keyboard().layout = layout;
        keyboard_init();
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

TEST_F(Keyboard, SymbolicHostKeysAndModifiers) {
    keyboard_init();
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
    keyboard_reset();
    EXPECT_TRUE(host->keyboard().down.none());
    EXPECT_EQ(shifts(), NO_SHIFT) << "so does a reset";

    host->keyboard().layout['@' - ' '] = {};
    keyboard_init();
    for (uint8_t modifiers = 0; modifiers < 8; ++modifiers) {
        hold_chord({0xFF, modifiers});
        for (int key = KEY_SPACE; key < 0xFF; ++key) host->set_key(uint8_t(key), true);
        EXPECT_EQ(row(0) & 0x01, 0) << "a layout without @, modifiers " << int(modifiers);
    }
}

TEST_F(Keyboard, TypesTextAndSkipsTheByteBehindACarriageReturn) {
    const std::pair<std::string, std::string> cases[] = {
        {"\x41\x42\x0D\x0A\x43", "AB\rC"},
        {"\rXY", "\rY"},
        {"\r\r\r\rCLOAD\r\r", "\r\rCLOAD\r"},
        {"RUN\r", "RUN\r"},
        {"A\nB", "A\nB"},
        {"2^3`[\x80\xFF", "2[3'[\x80\xFF"},
        {"", ""},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(keyboard_open_from_buffer(text), 1);
        EXPECT_EQ(typed_text(), expected);
        EXPECT_EQ(typed_text(), "") << "stays at the end";
    }
    const std::string with_zero("AB\0CD", 5);
    keyboard_open_from_buffer(with_zero);
    EXPECT_EQ(typed_text(), "AB");
    std::ofstream("text.bas", std::ios::binary) << with_zero;
    EXPECT_EQ(keyboard_open_bas_file("text.bas"), 1);
    EXPECT_EQ(typed_text(), with_zero) << "a file is typed whole";

    host->clipboard().set_text("NEW\r\n");
    gui_paste_from_clipboard();
    int done = 1;
    EXPECT_EQ(keyboard_type_bas_file(&done), 'N');
    EXPECT_EQ(done, 0);
    std::filesystem::create_directory("folder");
    std::ofstream("large") << 'A';
    std::filesystem::resize_file("large", (16 << 20) + 1);
    for (const char* name : {"none", "folder", "large"}) {
        EXPECT_EQ(keyboard_open_bas_file(name), 0) << name;
    }
    EXPECT_EQ(typed_text(), "EW\r") << "a refused file leaves the text alone";
    gui_paste_from_clipboard();
    keyboard_type_bas_file(&done);
    keyboard_open_from_buffer("RUN");
    EXPECT_EQ(typed_text(), "RUN") << "from its first byte";
    gui_paste_from_clipboard();
    keyboard_type_reset();
    EXPECT_EQ(typed_text(), "");
}

TEST_F(Keyboard, TrapStandsInForTheRoutineUntilTheTextEnds) {
    machine_init();
    const std::vector<uint8_t> rom(active_rom, active_rom + BASIC_ROM_SIZE);
    std::vector<uint8_t> patched = rom;
    std::ranges::copy(std::vector<uint8_t>{0xED, 0x06, 0x00, 0x00, 0xC9}, patched.begin() + 0x2B);
    const auto image = [] { return std::vector<uint8_t>(memory, memory + BASIC_ROM_SIZE); };
    keyboard_open_from_buffer("A\r");
    memory_place_bas_trap();
    z80_state.pc = 0x002D;
    for (const int expected : {0x41, 0x0D, 0x00}) {
        EXPECT_EQ(image(), patched) << expected;
        z80_state.af = 0x55D7;
        trap_handle(6);
        EXPECT_EQ(z80_state.af, expected << 8 | 0xD7) << "the flags stay";
        EXPECT_EQ(z80_state.pc, 0x002D);
    }
    EXPECT_EQ(image(), rom);
    for (const int number : {5, 7, 8, 9, 10, 11, 12}) {
        z80_state.af = z80_state.bc = 0x1234;
        trap_handle(number);
        EXPECT_EQ(z80_state.af & z80_state.bc, 0x1234) << number;
        EXPECT_EQ(z80_state.pc, 0x002D) << number;
    }
}

} // namespace
