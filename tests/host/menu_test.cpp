#include "host/menu.h"

#include "support/host_files.h"

#include <sstream>

namespace {

/// One line per entry, two blanks per level: the id, "*" where it is checked, the text with "|" for
/// the tab.
void list(const std::vector<MenuEntry>& entries, const std::string& indent, std::ostream& out) {
    for (const MenuEntry& entry : entries) {
        std::string text = entry.text;
        if (const size_t tab = text.find('\t'); tab != std::string::npos) text[tab] = '|';
        out << indent << entry.id << (entry.checked ? "*" : "") << " " << text << "\n";
        list(entry.children, indent + "  ", out);
    }
}

std::string listing(const std::vector<MenuEntry>& entries) {
    std::ostringstream out;
    list(entries, "", out);
    return out.str();
}

constexpr const char* MENU = R"(0 &File
  135 &Autostart file...
  0 
  111 Load or type &BAS/TXT...
  127 Save &memory as CAS...
  0 
  0 Attach &disk image...|Alt+Nmbr
    40018 Drive :&0 - <no disk>
    40019 Drive :&1 - <no disk>
    40020 Drive :&2 - <no disk>
    40021 Drive :&3 - <no disk>
  0 D&etach disk image
    40022 Drive :&0
    40023 Drive :&1
    40024 Drive :&2
    40025 Drive :&3
    0 
    40033 &All
  0 
  131 &Load snapshot ...
  132 Sa&ve snapshot as ...
  0 &Media snapshots
    112 &Save screenshot|F6
    126 S&ave screenshot as...
    40123 Save video memory with screenshots (.V80)
    0 
    40054 Sa&ve to video...|Alt+I
    40120 Sa&ve to WAV...|Alt+U
  102 E&xit
0 &Machine
  104 &Pause|Pause
  105 &Reset|F11
  109 R&estart|Alt+F1
  0 
  145 C&opy to clipboard|Alt+C
  40040 P&aste from clipboard|Alt+V
  0 
  108 &Monitor|ESC
  0 
  141 &Configuration...|Alt+Q
  0 
  40200 &States...|Alt+P
  0 &Time
    40201 &Save state|Alt+S
    40202 &Load state|Alt+L
    40203 &Next slot|Alt++
    40204 &Previous slot|Alt+-
    0 
    40205 &Open state...
    40206 Save state &as...
    0 
    40207 &Rewind...|Alt+R
    0 
    40208 Re&cord replay...
    40209 Pla&y replay...
    0 
    40210 T&urbo|F7
    40211 Slow &motion|F8
0 &Tape
  123 &Attach CAS...|Alt+T
  124 Detach &CAS
  0 
  40034 Attach &WAV...
  120 &Create WAV...
  121 C&lose WAV
  122 &Play/Record|F5
  0 
  125 &Rewind tape
  0 
  40121 Adj&ust head...
0 &Options
  106* &50 Hz timer|Alt+F3
  118* &Sound
  40131 &Clean sound
  40057 &Symbolic keymapping
  40060 &Enable printer (no joypad)
  0 
  134* &Double scan
  40052 &TV blur
  40059 &Display settings...
  0 
  40058 &Giant screen|Alt+F2
  40007 Toggle fullscreen|Alt+Enter
  0 
  40213 Keep &history
  0 Run &ahead
    40214 &0 frames
    40215 &1 frame
    40216 &2 frames
    40217 &3 frames
    40218 &4 frames
  40219 &Fast tapes
  40212 &Resume where I left
  40220 &Wait at MEM SIZE?
0 &Help
  103 &About...
  40130 &Messages...
)";

class MenuTest : public HostFilesTest {};

TEST_F(MenuTest, WindowGetsTheWholeMenuAtItsStart) {
    create_menu();
    check_menu_item(COMMAND_SOUND, false);
    check_menu_item(COMMAND_VIDEO_CUT, true);
    modify_menu_text(COMMAND_ATTACH_DISK, "full");
    create_menu();
    EXPECT_EQ(listing(host->window().menu), MENU);
    EXPECT_EQ(listing(main_menu()), MENU);
    EXPECT_TRUE(is_menu_item_checked(COMMAND_SOUND));
    EXPECT_FALSE(is_menu_item_checked(COMMAND_VIDEO_CUT));
    EXPECT_EQ(menu_item_text(COMMAND_ATTACH_DISK), "Drive :&0 - <no disk>");
}

TEST_F(MenuTest, AcceleratorsNeedTheirModifiersExactly) {
    constexpr uint8_t ALT = MODIFIER_ALT;
    const struct {
        int key;
        uint8_t modifiers;
        int command;
    } cases[] = {
        {'0', ALT, 40018},
        {'1', ALT, 40019},
        {'2', ALT, 40020},
        {'3', ALT, 40021},
        {'C', ALT, 145},
        {'I', ALT, 40054},
        {'Q', ALT, 141},
        {'T', ALT, 123},
        {'U', ALT, 40120},
        {'V', ALT, 40040},
        {'W', ALT, 40034},
        {KEY_F2, ALT, 40058},
        {KEY_F1, ALT, 109},
        {KEY_F3, ALT, 106},
        {KEY_RETURN, ALT, 40007},
        {KEY_PAUSE, 0, 104},
        {KEY_F11, 0, 105},
        {KEY_F11, MODIFIER_SHIFT, 109},
        {KEY_F5, 0, 122},
        {'S', ALT, 40201},
        {'L', ALT, 40202},
        {'P', ALT, 40200},
        {KEY_OEM_PLUS, ALT, 40203},
        {KEY_OEM_PLUS, ALT | MODIFIER_SHIFT, 40203},
        {KEY_OEM_MINUS, ALT, 40204},
        {'R', ALT, 40207},
    };
    create_menu();
    int wanted[256][8] = {};
    for (const auto& c : cases) wanted[c.key][c.modifiers] = c.command;
    for (int key = 0; key < 256; ++key) {
        for (uint8_t modifiers = 0; modifiers < 8; ++modifiers) {
            EXPECT_EQ(accelerator_command(key, modifiers), wanted[key][modifiers])
                << key << " with " << int(modifiers);
        }
    }
    ASSERT_EQ(host->window().claimed.size(), std::size(cases));
    for (const KeyChord& chord : host->window().claimed) {
        EXPECT_NE(wanted[chord.key][chord.modifiers], 0) << int(chord.key);
    }
    EXPECT_EQ(accelerator_keys().size(), std::size(cases));
}

} // namespace
