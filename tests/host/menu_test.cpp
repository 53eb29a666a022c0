#include "host/menu.h"

#include "support/host_files.h"

#include <cctype>
#include <set>
#include <sstream>

namespace {

/// One line per entry, two blanks per level: the id, "*" where it is checked, the text with "|" for
/// the tab; "-" is a line between entries.
void list(const std::vector<MenuEntry>& entries, const std::string& indent, std::ostream& out) {
    for (const MenuEntry& entry : entries) {
        std::string text = entry.text;
        if (const size_t tab = text.find('\t'); tab != std::string::npos) text[tab] = '|';
        const std::string id = std::to_string(entry.id) + (entry.checked ? "*" : "");
        out << indent << (id == "0" && text.empty() ? "-" : id + " " + text) << "\n";
        list(entry.children, indent + "  ", out);
    }
}

std::string listing(const std::vector<MenuEntry>& entries) {
    std::ostringstream out;
    list(entries, "", out);
    return out.str();
}

class MenuTest : public HostFilesTest {};

TEST_F(MenuTest, WindowGetsTheWholeMenuAtItsStart) {
    create_menu();
    check_menu_item(COMMAND_SOUND, false);
    check_menu_item(COMMAND_VIDEO_CUT, true);
    modify_menu_text(COMMAND_ATTACH_DISK, "full");
    create_menu();
    const std::string expected = read_text(TEST_SOURCE_DIR "/menu.txt");
    EXPECT_EQ(listing(host->window().menu), expected);
    EXPECT_EQ(listing(main_menu()), expected);
    EXPECT_TRUE(is_menu_item_checked(COMMAND_SOUND));
    EXPECT_FALSE(is_menu_item_checked(COMMAND_VIDEO_CUT));
    EXPECT_EQ(menu_item_text(COMMAND_ATTACH_DISK), "Drive :&0 - <no disk>");
}

/// Items whose access key another item of their menu has as well, or that have none.
void find_shared_keys(const std::vector<MenuEntry>& menu, std::string& found) {
    std::set<int> keys = {0};
    for (const MenuEntry& entry : menu) {
        const size_t mark = entry.text.find('&') + 1;
        const bool free = keys.insert(mark ? std::tolower(entry.text[mark]) : 0).second;
        if (!free && entry.text.size() > 1)
            found += entry.text.substr(0, entry.text.find('\t')) + "|";
        find_shared_keys(entry.children, found);
    }
}

TEST_F(MenuTest, OnlyTheOldestItemsShareAccessKeys) {
    std::string found;
    find_shared_keys(main_menu(), found);
    EXPECT_EQ(found, "&Media snapshots|Save video memory with screenshots (.V80)|Sa&ve to WAV...|"
                     "&Create WAV...|&Symbolic keymapping|&Display settings...|Toggle fullscreen|");
}

TEST_F(MenuTest, AcceleratorsNeedTheirModifiersExactly) {
    constexpr uint8_t ALT = MODIFIER_ALT;
    const std::pair<const char*, int> letters[] = {
        {"0", 40018}, {"1", 40019}, {"2", 40020}, {"3", 40021}, {"C", 145},   {"D", 40299},
        {"I", 40054}, {"L", 40202}, {"P", 40200}, {"Q", 141},   {"R", 40207}, {"S", 40201},
        {"T", 123},   {"U", 40120}, {"V", 40040}, {"W", 40034}};
    const struct {
        int key;
        uint8_t modifiers;
        int command;
    } others[] = {{KEY_F2, ALT, 40058},
                  {KEY_F1, ALT, 109},
                  {KEY_F3, ALT, 106},
                  {KEY_RETURN, ALT, 40007},
                  {KEY_PAUSE, 0, 104},
                  {KEY_F11, 0, 105},
                  {KEY_F5, 0, 122},
                  {KEY_F11, MODIFIER_SHIFT, 109},
                  {KEY_OEM_PLUS, ALT, 40203},
                  {KEY_OEM_PLUS, ALT | MODIFIER_SHIFT, 40203},
                  {KEY_OEM_MINUS, ALT, 40204},
                  {KEY_MENU, 0, 40298},
                  {KEY_F10, MODIFIER_SHIFT, 40298}};
    create_menu();
    int wanted[256][8] = {};
    for (const auto& [letter, command] : letters) wanted[int(*letter)][ALT] = command;
    for (const auto& c : others) wanted[c.key][c.modifiers] = c.command;
    constexpr size_t ALL = std::size(letters) + std::size(others);
    for (int key = 0; key < 256; ++key) {
        for (uint8_t modifiers = 0; modifiers < 8; ++modifiers) {
            EXPECT_EQ(accelerator_command(key, modifiers), wanted[key][modifiers])
                << key << " with " << int(modifiers);
        }
    }
    ASSERT_EQ(host->window().claimed.size(), ALL);
    for (const KeyChord& chord : host->window().claimed) {
        EXPECT_NE(wanted[chord.key][chord.modifiers], 0) << int(chord.key);
    }
    EXPECT_EQ(accelerator_keys().size(), ALL);
}

} // namespace
