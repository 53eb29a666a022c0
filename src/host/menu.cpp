#include "host/menu.h"

#include "host/command_table.h"
#include "host/examples.h"
#include "host/recent.h"
#include "host/shell_state.h"
#include "platform/pane.h"
#include "platform/platform.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

namespace {

using Entries = std::vector<MenuEntry>;

const MenuEntry SEPARATOR = {};

MenuEntry item(int id) {
    const CommandRow& row = *find_command(id);
    std::string text = row.label;
    if (row.hint) text += std::string("\t") + row.hint;
    return {id, text, {}, row.flag && row.setting.initial == 1U};
}
MenuEntry submenu(const char* text, Entries children) {
    return {0, text, std::move(children), false};
}

MenuEntry attach_disk_menu() {
    return submenu("Attach &disk image...\tAlt+Nmbr",
                   {item(COMMAND_ATTACH_DISK), item(COMMAND_ATTACH_DISK + 1),
                    item(COMMAND_ATTACH_DISK + 2), item(COMMAND_ATTACH_DISK + 3)});
}

MenuEntry detach_disk_menu() {
    return submenu("D&etach disk image",
                   {item(COMMAND_DETACH_DISK), item(COMMAND_DETACH_DISK + 1),
                    item(COMMAND_DETACH_DISK + 2), item(COMMAND_DETACH_DISK + 3), SEPARATOR,
                    item(COMMAND_DETACH_ALL)});
}

MenuEntry protect_disk_menu() {
    return submenu("&Write protection",
                   {item(COMMAND_PROTECT_DISK), item(COMMAND_PROTECT_DISK + 1),
                    item(COMMAND_PROTECT_DISK + 2), item(COMMAND_PROTECT_DISK + 3)});
}

MenuEntry media_snapshots_menu() {
    return submenu("&Media snapshots", {item(COMMAND_SCREENSHOT), item(COMMAND_SCREENSHOT_AS),
                                        item(COMMAND_SAVE_VIDEO_RAM), SEPARATOR,
                                        item(COMMAND_SAVE_VIDEO), item(COMMAND_SAVE_WAV)});
}

MenuEntry examples_menu() {
    Entries children;
    for (size_t n = 0; n < examples.size(); ++n) children.push_back(item(COMMAND_EXAMPLE + int(n)));
    return submenu("Exam&ples", std::move(children));
}

MenuEntry recent_menu() {
    Entries children;
    for (int n = 0; n < RECENT_FILES; ++n) {
        children.push_back(item(COMMAND_RECENT + n));
        children.back().state = ItemState::hidden;
    }
    children.insert(children.end(), {SEPARATOR, item(COMMAND_CLEAR_RECENT)});
    return submenu("&Recent", std::move(children));
}

MenuEntry download_menu() {
    return submenu("D&ownload", {item(COMMAND_DOWNLOAD_DISK), item(COMMAND_DOWNLOAD_DISK + 1),
                                 item(COMMAND_DOWNLOAD_DISK + 2), item(COMMAND_DOWNLOAD_DISK + 3),
                                 SEPARATOR, item(COMMAND_DOWNLOAD_TAPE)});
}

MenuEntry file_menu() {
    Entries entries = {item(COMMAND_AUTOSTART),
                       examples_menu(),
                       recent_menu(),
                       SEPARATOR,
                       item(COMMAND_LOAD_BAS),
                       item(COMMAND_MEMORY_AS_CAS),
                       SEPARATOR,
                       attach_disk_menu(),
                       detach_disk_menu(),
                       protect_disk_menu(),
                       item(COMMAND_DISK_PANEL),
                       item(COMMAND_NEW_DISK),
                       item(COMMAND_NEW_TAPE)};
    if (platform().downloads()) entries.push_back(download_menu());
    if (!shell_state.start.page_address.empty()) {
        entries.push_back(
            submenu("&Share", {item(COMMAND_SHARE_PROGRAM), item(COMMAND_SHARE_REPLAY)}));
    }
    entries.insert(entries.end(), {SEPARATOR, item(COMMAND_LOAD_SNAPSHOT),
                                   item(COMMAND_SAVE_SNAPSHOT), media_snapshots_menu()});
    entries.push_back(item(COMMAND_EXIT));
    return submenu("&File", std::move(entries));
}

MenuEntry time_menu() {
    return submenu("&Time",
                   {item(COMMAND_SAVE_SLOT), item(COMMAND_LOAD_SLOT), item(COMMAND_NEXT_SLOT),
                    item(COMMAND_PREVIOUS_SLOT), SEPARATOR, item(COMMAND_LOAD_STATE),
                    item(COMMAND_SAVE_STATE), SEPARATOR, item(COMMAND_FILM_BAR), SEPARATOR,
                    item(COMMAND_RECORD_REPLAY), item(COMMAND_PLAY_REPLAY), SEPARATOR,
                    item(COMMAND_TURBO), item(COMMAND_SLOW_MOTION)});
}

MenuEntry machine_menu() {
    Entries entries = {item(COMMAND_PAUSE), item(COMMAND_RESET),  item(COMMAND_RESTART),
                       SEPARATOR,           item(COMMAND_COPY),   item(COMMAND_PASTE),
                       SEPARATOR,           item(COMMAND_MONITOR)};
    if (platform().window().has_debugger()) entries.push_back(item(COMMAND_DEBUGGER));
    entries.insert(entries.end(), {SEPARATOR, item(COMMAND_CONFIGURATION), SEPARATOR,
                                   item(COMMAND_STATES), time_menu()});
    return submenu("&Machine", std::move(entries));
}

MenuEntry tape_menu() {
    return submenu("&Tape",
                   {item(COMMAND_ATTACH_CAS), item(COMMAND_DETACH_CAS), SEPARATOR,
                    item(COMMAND_ATTACH_WAV), item(COMMAND_CREATE_WAV), item(COMMAND_CLOSE_WAV),
                    item(COMMAND_PLAY_RECORD), SEPARATOR, item(COMMAND_REWIND),
                    item(COMMAND_TAPE_PANEL), SEPARATOR, item(COMMAND_ADJUST_HEAD)});
}

MenuEntry run_ahead_menu() {
    return submenu("Run &ahead", {item(COMMAND_RUN_AHEAD), item(COMMAND_RUN_AHEAD + 1),
                                  item(COMMAND_RUN_AHEAD + 2), item(COMMAND_RUN_AHEAD + 3),
                                  item(COMMAND_RUN_AHEAD + 4)});
}

MenuEntry tube_menu() {
    return submenu("Picture t&ube", {item(COMMAND_TUBE), item(COMMAND_TUBE + int(TubeLook::soft)),
                                     item(COMMAND_TUBE + int(TubeLook::strong))});
}

MenuEntry picture_size_menu() {
    return submenu("Picture si&ze",
                   {item(COMMAND_SCALE_FILL), item(COMMAND_SCALE_WHOLE), SEPARATOR,
                    item(COMMAND_SCALE_SMOOTH), SEPARATOR, item(COMMAND_FIXED_WINDOW)});
}

MenuEntry keyboard_menu() {
    return submenu("&Keyboard on the screen",
                   {item(COMMAND_KEYBOARD_DOCKED), item(COMMAND_KEYBOARD_FLOATING)});
}

MenuEntry options_menu() {
    return submenu("&Options", {item(COMMAND_50HZ_TIMER),
                                item(COMMAND_SOUND),
                                item(COMMAND_CLEAN_SOUND),
                                item(COMMAND_SYMBOLIC_KEYS),
                                keyboard_menu(),
                                item(COMMAND_PRINTER),
                                item(COMMAND_PAD_KEYS),
                                SEPARATOR,
                                item(COMMAND_DOUBLE_SCAN),
                                item(COMMAND_TV_BLUR),
                                tube_menu(),
                                item(COMMAND_DISPLAY_SETTINGS),
                                SEPARATOR,
                                item(COMMAND_GIANT_SCREEN),
                                item(COMMAND_FULL_SCREEN),
                                picture_size_menu(),
                                SEPARATOR,
                                item(COMMAND_KEEP_HISTORY),
                                run_ahead_menu(),
                                item(COMMAND_FAST_TAPES),
                                item(COMMAND_RESUME),
                                item(COMMAND_ASK_MEMORY_SIZE),
                                item(COMMAND_MONITOR_F12)});
}

/// What the window's menu shows at the moment, and the marks of ids that it does not hold.
struct MenuState {
    std::map<int, std::string> texts, tips;
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

std::vector<KeyChord> all_accelerator_keys() {
    std::vector<KeyChord> keys;
    for (const CommandRow& row : command_table()) {
        std::ranges::copy_if(row.keys, std::back_inserter(keys), &KeyChord::key);
    }
    return keys;
}

} // namespace

std::vector<MenuEntry> main_menu() {
    return {file_menu(), machine_menu(), tape_menu(), options_menu(),
            submenu("&Help", {item(COMMAND_WELCOME), item(COMMAND_MANUAL), item(COMMAND_KEYS),
                              SEPARATOR, item(COMMAND_ABOUT), item(COMMAND_MESSAGES)})};
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

void set_menu_tip(int id, const std::string& tip) { menu_state().tips[id] = tip; }

std::string menu_tip(int id) {
    const auto own = menu_state().tips.find(id);
    if (own != menu_state().tips.end()) return own->second;
    const CommandRow* row = find_command(id);
    return row && row->tip ? row->tip : "";
}

int accelerator_command(int key, uint8_t modifiers) {
    for (const CommandRow& row : command_table()) {
        for (const KeyChord& chord : row.keys) {
            if (chord.key && chord.key == key && chord.modifiers == modifiers) return row.id;
        }
    }
    return 0;
}

std::span<const KeyChord> accelerator_keys() {
    static const std::vector<KeyChord> keys = all_accelerator_keys();
    return keys;
}
