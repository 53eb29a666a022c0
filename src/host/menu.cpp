#include "host/menu.h"

#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace {

using Entries = std::vector<MenuEntry>;

const MenuEntry SEPARATOR = {};

MenuEntry item(int id, const char* text) { return {id, text, {}, false}; }
MenuEntry checked_item(int id, const char* text) { return {id, text, {}, true}; }
MenuEntry submenu(const char* text, Entries children) {
    return {0, text, std::move(children), false};
}

MenuEntry attach_disk_menu() {
    return submenu("Attach &disk image...\tAlt+Nmbr",
                   {item(COMMAND_ATTACH_DISK, "Drive :&0 - <no disk>"),
                    item(COMMAND_ATTACH_DISK + 1, "Drive :&1 - <no disk>"),
                    item(COMMAND_ATTACH_DISK + 2, "Drive :&2 - <no disk>"),
                    item(COMMAND_ATTACH_DISK + 3, "Drive :&3 - <no disk>")});
}

MenuEntry detach_disk_menu() {
    return submenu("D&etach disk image", {item(COMMAND_DETACH_DISK, "Drive :&0"),
                                          item(COMMAND_DETACH_DISK + 1, "Drive :&1"),
                                          item(COMMAND_DETACH_DISK + 2, "Drive :&2"),
                                          item(COMMAND_DETACH_DISK + 3, "Drive :&3"), SEPARATOR,
                                          item(COMMAND_DETACH_ALL, "&All")});
}

MenuEntry media_snapshots_menu() {
    return submenu("&Media snapshots",
                   {item(COMMAND_SCREENSHOT, "&Save screenshot\tF6"),
                    item(COMMAND_SCREENSHOT_AS, "S&ave screenshot as..."),
                    item(COMMAND_SAVE_VIDEO_RAM, "Save video memory with screenshots (.V80)"),
                    SEPARATOR, item(COMMAND_SAVE_VIDEO, "Sa&ve to video...\tAlt+I"),
                    item(COMMAND_SAVE_WAV, "Sa&ve to WAV...\tAlt+U")});
}

MenuEntry file_menu() {
    return submenu("&File", {item(COMMAND_AUTOSTART, "&Autostart file..."), SEPARATOR,
                             item(COMMAND_LOAD_BAS, "Load or type &BAS/TXT..."),
                             item(COMMAND_MEMORY_AS_CAS, "Save &memory as CAS..."), SEPARATOR,
                             attach_disk_menu(), detach_disk_menu(), SEPARATOR,
                             item(COMMAND_LOAD_SNAPSHOT, "&Load snapshot ..."),
                             item(COMMAND_SAVE_SNAPSHOT, "Sa&ve snapshot as ..."),
                             media_snapshots_menu(), item(COMMAND_EXIT, "E&xit")});
}

MenuEntry machine_menu() {
    return submenu("&Machine",
                   {item(COMMAND_PAUSE, "&Pause\tPause"), item(COMMAND_RESET, "&Reset\tF11"),
                    item(COMMAND_RESTART, "R&estart\tAlt+F1"), SEPARATOR,
                    item(COMMAND_COPY, "C&opy to clipboard\tAlt+C"),
                    item(COMMAND_PASTE, "P&aste from clipboard\tAlt+V"), SEPARATOR,
                    item(COMMAND_MONITOR, "&Monitor\tESC"), SEPARATOR,
                    item(COMMAND_CONFIGURATION, "&Configuration...\tAlt+Q")});
}

MenuEntry tape_menu() {
    return submenu("&Tape", {item(COMMAND_ATTACH_CAS, "&Attach CAS...\tAlt+T"),
                             item(COMMAND_DETACH_CAS, "Detach &CAS"), SEPARATOR,
                             item(COMMAND_ATTACH_WAV, "Attach &WAV..."),
                             item(COMMAND_CREATE_WAV, "&Create WAV..."),
                             item(COMMAND_CLOSE_WAV, "C&lose WAV"),
                             item(COMMAND_PLAY_RECORD, "&Play/Record\tF5"), SEPARATOR,
                             item(COMMAND_REWIND, "&Rewind tape"), SEPARATOR,
                             item(COMMAND_ADJUST_HEAD, "Adj&ust head...")});
}

MenuEntry options_menu() {
    return submenu("&Options", {checked_item(COMMAND_50HZ_TIMER, "&50 Hz timer\tAlt+F3"),
                                checked_item(COMMAND_SOUND, "&Sound"),
                                item(COMMAND_CLEAN_SOUND, "&Clean sound"),
                                item(COMMAND_SYMBOLIC_KEYS, "&Symbolic keymapping"),
                                item(COMMAND_PRINTER, "&Enable printer (no joypad)"), SEPARATOR,
                                checked_item(COMMAND_DOUBLE_SCAN, "&Double scan"),
                                item(COMMAND_TV_BLUR, "&TV blur"),
                                item(COMMAND_DISPLAY_SETTINGS, "&Display settings..."), SEPARATOR,
                                item(COMMAND_GIANT_SCREEN, "&Giant screen\tAlt+F2"),
                                item(COMMAND_FULL_SCREEN, "Toggle fullscreen\tAlt+Enter")});
}

/// What the window's menu shows at the moment, and the marks of ids that it does not hold.
struct MenuState {
    std::map<int, std::string> texts;
    std::set<int> checked;
};

void collect(const Entries& entries, MenuState& state) {
    for (const MenuEntry& entry : entries) {
        if (entry.id) state.texts[entry.id] = entry.text;
        if (entry.checked) state.checked.insert(entry.id);
        collect(entry.children, state);
    }
}

MenuState initial_state() {
    MenuState state;
    collect(main_menu(), state);
    return state;
}

MenuState& menu_state() {
    static MenuState state = initial_state();
    return state;
}

struct Accelerator {
    KeyChord chord;
    int command;
};

constexpr std::array<Accelerator, 19> accelerators = {{
    {{'0', MODIFIER_ALT}, COMMAND_ATTACH_DISK},
    {{'1', MODIFIER_ALT}, COMMAND_ATTACH_DISK + 1},
    {{'2', MODIFIER_ALT}, COMMAND_ATTACH_DISK + 2},
    {{'3', MODIFIER_ALT}, COMMAND_ATTACH_DISK + 3},
    {{'C', MODIFIER_ALT}, COMMAND_COPY},
    {{'I', MODIFIER_ALT}, COMMAND_SAVE_VIDEO},
    {{'Q', MODIFIER_ALT}, COMMAND_CONFIGURATION},
    {{'T', MODIFIER_ALT}, COMMAND_ATTACH_CAS},
    {{'U', MODIFIER_ALT}, COMMAND_SAVE_WAV},
    {{'V', MODIFIER_ALT}, COMMAND_PASTE},
    {{'W', MODIFIER_ALT}, COMMAND_ATTACH_WAV},
    {{KEY_F2, MODIFIER_ALT}, COMMAND_GIANT_SCREEN},
    {{KEY_RETURN, MODIFIER_ALT}, COMMAND_FULL_SCREEN},
    {{KEY_PAUSE, 0}, COMMAND_PAUSE},
    {{KEY_F11, 0}, COMMAND_RESET},
    {{KEY_F11, MODIFIER_SHIFT}, COMMAND_RESTART},
    {{KEY_F1, MODIFIER_ALT}, COMMAND_RESTART},
    {{KEY_F3, MODIFIER_ALT}, COMMAND_50HZ_TIMER},
    {{KEY_F5, 0}, COMMAND_PLAY_RECORD},
}};

constexpr auto chords_of_accelerators() {
    std::array<KeyChord, accelerators.size()> chords = {};
    for (size_t n = 0; n < chords.size(); ++n) chords[n] = accelerators[n].chord;
    return chords;
}
constexpr auto accelerator_chords = chords_of_accelerators();

} // namespace

std::vector<MenuEntry> main_menu() {
    return {file_menu(), machine_menu(), tape_menu(), options_menu(),
            submenu("&Help",
                    {item(COMMAND_ABOUT, "&About..."), item(COMMAND_MESSAGES, "&Messages...")})};
}

void create_menu() {
    menu_state() = initial_state();
    platform().window().set_menu(main_menu());
    platform().window().claim_keys(accelerator_keys());
}

void check_menu_item(int id, bool checked) {
    if (checked) {
        menu_state().checked.insert(id);
    } else {
        menu_state().checked.erase(id);
    }
    platform().window().check_item(id, checked);
}

bool is_menu_item_checked(int id) { return menu_state().checked.contains(id); }

void modify_menu_text(int id, const std::string& text) {
    const auto found = menu_state().texts.find(id);
    if (found == menu_state().texts.end()) return;
    found->second = text;
    platform().window().set_item_text(id, text);
}

std::string menu_item_text(int id) {
    const auto found = menu_state().texts.find(id);
    return found == menu_state().texts.end() ? std::string() : found->second;
}

int accelerator_command(int key, uint8_t modifiers) {
    for (const auto& [chord, command] : accelerators) {
        if (chord.key == key && chord.modifiers == modifiers) return command;
    }
    return 0;
}

std::span<const KeyChord> accelerator_keys() { return accelerator_chords; }
