#include "host/media_menu.h"

#include "host/command_table.h"
#include "host/disks.h"
#include "host/menu.h"
#include "host/save_question.h"
#include "host/status.h"
#include "media/files/cassette_files.h"
#include "media/files/drive_files.h"
#include "media/files/tape_sound_files.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"
#include "platform/platform.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

const MenuEntry SEPARATOR = {};
constexpr int CASSETTE = int(DISK_DRIVES); ///< its button

bool has_disk(unsigned drive) { return diskimg_inserted(wd1771.disks[drive]); }

/// Whether a drive's item has nothing to do.
bool is_idle(int command, unsigned drive) {
    switch (command) {
    case COMMAND_DETACH_DISK: return main_disk_image_remembered(drive).empty() && !has_disk(drive);
    case COMMAND_PROTECT_DISK:
    case COMMAND_COPY_DISK:
    case COMMAND_DOWNLOAD_DISK: return !has_disk(drive);
    default: return false;
    }
}

ItemState state_of(int command, unsigned drive) {
    return is_idle(command, drive) ? ItemState::greyed : ItemState::usual;
}

/// The item as the window's menu has it, or with a text that needs no context.
MenuEntry item(int id, const char* text = nullptr) {
    const CommandRow& row = *find_command(id);
    std::string shown = text ? text : row.label;
    if (!text && row.hint) shown += std::string("\t") + row.hint;
    return {id, shown, {}, is_menu_item_checked(id)};
}

MenuEntry drive_item(int command, unsigned drive, const char* text = nullptr) {
    MenuEntry entry = item(command + int(drive), text);
    entry.state = state_of(command, drive);
    return entry;
}

std::vector<MenuEntry> drive_menu(unsigned drive) {
    std::vector<MenuEntry> entries = {
        drive_item(COMMAND_ATTACH_DISK, drive, "&Attach disk image..."),
        drive_item(COMMAND_NEW_DISK_IN, drive),
        drive_item(COMMAND_DETACH_DISK, drive, "D&etach disk image"),
        SEPARATOR,
        drive_item(COMMAND_PROTECT_DISK, drive, "&Write protection"),
        drive_item(COMMAND_COPY_DISK, drive),
        item(COMMAND_DISK_PANEL)};
    entries[0].text += "\tAlt+" + std::to_string(drive);
    if (platform().downloads()) {
        entries.push_back(drive_item(COMMAND_DOWNLOAD_DISK, drive, "D&ownload"));
    }
    return entries;
}

ItemState state_of_cassette() {
    return tape_cas_is_attached() ? ItemState::usual : ItemState::greyed;
}

std::vector<MenuEntry> cassette_menu() {
    std::vector<MenuEntry> entries = {
        item(COMMAND_ATTACH_CAS),  item(COMMAND_NEW_TAPE), item(COMMAND_DETACH_CAS), SEPARATOR,
        item(COMMAND_PLAY_RECORD), item(COMMAND_REWIND),   item(COMMAND_TAPE_PANEL)};
    if (platform().downloads()) {
        entries.push_back(item(COMMAND_DOWNLOAD_TAPE, "D&ownload"));
        entries.back().state = state_of_cassette();
    }
    return entries;
}

std::vector<MenuEntry> all_menus() {
    std::vector<MenuEntry> all;
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
        const std::string text = menu_item_text(COMMAND_ATTACH_DISK + int(drive));
        all.push_back({0, text, drive_menu(drive)});
    }
    all.push_back(SEPARATOR);
    all.push_back({0, "&Cassette", cassette_menu()});
    return all;
}

/// Minutes and seconds.
std::string tape_time() {
    const int64_t seconds = std::max<int64_t>(tape_audio.shown_counter, 0);
    const std::string rest = std::to_string(seconds % 60);
    return std::to_string(seconds / 60) + (rest.size() < 2 ? ":0" : ":") + rest;
}

} // namespace

std::string drive_tip(unsigned drive) {
    const std::string name = "Drive :" + std::to_string(drive);
    if (!has_disk(drive)) return name + " is empty";
    const disk_record& disk = wd1771.disks[drive];
    const std::string& path = drive_files[drive].path;
    return name + ": " + (path.empty() ? "a disk without a file" : path) + "\n" +
           (disk.write_protected ? "Write-protected, " : "Can be written to, ") +
           (disk.modified ? "changed" : "unchanged");
}

std::string cassette_tip() {
    if (tape_audio.recording) return "The cassette's sound is recorded, up to " + tape_time();
    if (tape_audio.playing) {
        return "Cassette: " + tape_sound_played().path + "\nAt " + tape_time();
    }
    if (!tape_cas_is_attached()) {
        const std::string& next = next_save_file();
        return next.empty() ? "There is no cassette" : "Cassette: " + next + "\nStill empty";
    }
    const std::string size = std::to_string(cas.size());
    return "Cassette: " + tape_get_cas_name() + "\n" +
           (cassette.saving ? size + " bytes saved"
                            : "At byte " + std::to_string(cassette.position) + " of " + size);
}

void popup_media_menu(int button) {
    const Rectangle client = platform().window().client_on_screen();
    StatusBar& bar = platform().status_bar();
    const int top = client.bottom - bar.height();
    const auto popup = [top](const std::vector<MenuEntry>& entries, int x) {
        platform().window().popup_menu(entries, x, top);
    };
    if (button == ALL_MEDIA) return popup(all_menus(), client.left);
    const int x = client.left + status_button_left(button);
    popup(button == CASSETTE ? cassette_menu() : drive_menu(unsigned(button)), x);
}

void grey_media_items() {
    Window& window = platform().window();
    for (const int command : {COMMAND_DETACH_DISK, COMMAND_PROTECT_DISK, COMMAND_DOWNLOAD_DISK}) {
        for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
            window.set_item_state(command + int(drive), state_of(command, drive));
        }
    }
    window.set_item_state(COMMAND_DOWNLOAD_TAPE, state_of_cassette());
}
