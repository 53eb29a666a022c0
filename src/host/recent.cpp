#include "host/recent.h"

#include "files/background.h"
#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/zip/zip_folder.h"
#include "host/autostart.h"
#include "host/commands.h"
#include "host/loaded_program.h"
#include "host/menu.h"
#include "host/replays.h"
#include "host/settings/prefs.h"
#include "host/shell_state.h"
#include "host/states.h"
#include "platform/platform.h"
#include "platform/utf8.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>

namespace {

constexpr const char* SETTING = "RecentFiles";
constexpr char BETWEEN = '|';
constexpr char ESCAPE = '%';
constexpr int HEXADECIMAL = 16;
constexpr size_t LONGEST_SHOWN = 32; ///< characters of a name or a folder
constexpr std::chrono::milliseconds LONGEST_LOOK{30};

struct Way {
    Opened how;
    const char* tip;
    void (*open)(const std::string& path);
};

constexpr Way ways[] = {
    {Opened::started, "Starts ", autostart_file},
    {Opened::as_listing, "Loads or types ", main_load_bas_file},
    {Opened::in_drive_0, "Into drive 0: ", [](const std::string& path) { open_disk(0, path); }},
    {Opened::in_drive_1, "Into drive 1: ", [](const std::string& path) { open_disk(1, path); }},
    {Opened::in_drive_2, "Into drive 2: ", [](const std::string& path) { open_disk(2, path); }},
    {Opened::in_drive_3, "Into drive 3: ", [](const std::string& path) { open_disk(3, path); }},
    {Opened::as_cassette, "Into the recorder: ", attach_cas},
    {Opened::as_tape_sound, "Into the recorder: ", attach_wav},
    {Opened::as_snapshot, "Goes on with ", [](const std::string& path) { load_snapshot(path); }},
    {Opened::as_state, "Goes on with ", load_state},
    {Opened::as_replay, "Plays ", [](const std::string& path) { play_replay_file(path); }},
};

const Way* way_of(Opened how) {
    const auto* found = std::ranges::find(ways, how, &Way::how);
    return found == std::end(ways) ? nullptr : found;
}

/// A state or a replay brings its program with it.
bool is_program(Opened how, const std::string& path) {
    const std::string extension = lower_case_extension(path);
    if (extension == "tvs" || extension == "tvr") return false;
    const bool further_disk = how >= Opened::in_drive_1 && how <= Opened::in_drive_3;
    return !further_disk && how != Opened::as_state && how != Opened::as_replay;
}

std::vector<RecentFile> shown; ///< by the menu's items

// ---- as a text: entries of a letter and a path, whose unusual bytes are written as "%41" ------

void put(std::string& text, const RecentFile& file) {
    if (!text.empty()) text += BETWEEN;
    text += char(file.how);
    for (const char c : file.path) {
        if (c > ' ' && c <= '~' && c != BETWEEN && c != ESCAPE) {
            text += c;
            continue;
        }
        constexpr const char* DIGITS = "0123456789ABCDEF";
        text += {ESCAPE, DIGITS[uint8_t(c) >> 4], DIGITS[uint8_t(c) & 0xF]};
    }
}

/// Nothing for an entry that makes no sense.
std::string path_of(const std::string& entry) {
    std::string path;
    for (size_t at = 1; at < entry.size(); ++at) {
        if (entry[at] != ESCAPE) {
            path += entry[at];
            continue;
        }
        uint8_t byte = 0;
        const char* digits = entry.data() + at + 1;
        if (at + 2 >= entry.size()) return {};
        if (std::from_chars(digits, digits + 2, byte, HEXADECIMAL).ptr != digits + 2) return {};
        if (byte == 0) return {};
        path += char(byte);
        at += 2;
    }
    return is_absolute_path(path) ? path : std::string();
}

void store(const std::vector<RecentFile>& files) {
    std::string text;
    for (const RecentFile& file : files) put(text, file);
    SetValueStr(SETTING, text.c_str());
}

// ---- in the menu -------------------------------------------------------------------------------

/// What is found out in the background, since a folder of a network may not answer for minutes.
struct Look {
    std::vector<RecentFile> files;
    std::array<std::atomic<bool>, RECENT_FILES> missing = {};
};

std::array<bool, RECENT_FILES> missing_files(const std::vector<RecentFile>& files) {
    static Background looking;
    std::array<bool, RECENT_FILES> missing = {};
    if (!looking.is_done()) return missing;
    const auto look = std::make_shared<Look>();
    look->files = files;
    looking = Background([look] {
        for (size_t n = 0; n < look->files.size(); ++n) {
            const std::string& path = look->files[n].path;
            const auto inside = zip_path(path);
            look->missing[n] = !path_exists(inside ? inside->archive : path);
        }
    });
    looking.is_done(LONGEST_LOOK);
    std::ranges::copy(look->missing, missing.begin());
    return missing;
}

/// As a menu shows it: its end when it is long, in one line, and without an access key.
std::string menu_text(const std::string& text) {
    size_t start = text.size();
    size_t characters = 0;
    while (start > 0 && characters < LONGEST_SHOWN) {
        if (begins_character(text[--start])) ++characters;
    }
    std::string line = start > 0 ? "…" : "";
    for (const char c : text.substr(start)) {
        if (c == '&') line += c;
        line += uint8_t(c) < ' ' ? ' ' : c;
    }
    return line;
}

} // namespace

void note_opened(Opened how, const std::string& path) {
    if (is_program(how, path)) program_is_loaded(path);
    if (!shell_state.start.remembers_files) return;
    const RecentFile file = {how, lasting_path(path)};
    std::vector<RecentFile> files = recent_files();
    std::erase(files, file);
    files.insert(files.begin(), file);
    if (files.size() > RECENT_FILES) files.resize(RECENT_FILES);
    store(files);
}

std::vector<RecentFile> recent_files() {
    const std::string text = platform().settings().text(SETTING).value_or("");
    std::vector<RecentFile> files;
    for (size_t at = 0; at < text.size() && files.size() < RECENT_FILES;) {
        const size_t end = std::min(text.find(BETWEEN, at), text.size());
        const std::string entry = text.substr(at, end - at);
        at = end + 1;
        if (entry.empty()) continue;
        const RecentFile file = {Opened(entry[0]), path_of(entry)};
        if (way_of(file.how) && !file.path.empty() && !std::ranges::count(files, file)) {
            files.push_back(file);
        }
    }
    return files;
}

void clear_recent_files() { store({}); }

void show_recent_files() {
    shown = recent_files();
    const auto missing = missing_files(shown);
    Window& window = platform().window();
    for (size_t n = 0; n < RECENT_FILES; ++n) {
        const int id = COMMAND_RECENT + int(n);
        if (n >= shown.size()) {
            window.set_item_state(id, ItemState::hidden);
            continue;
        }
        const std::string name = file_name_of(shown[n].path), folder = folder_of(shown[n].path);
        const std::string key = "&" + std::to_string((n + 1) % RECENT_FILES) + " ";
        modify_menu_text(id, key + menu_text(name) + "\t" + menu_text(folder));
        std::string tip = way_of(shown[n].how)->tip;
        tip.append(name).append(", in ").append(folder).append(".");
        set_menu_tip(id, tip);
        window.set_item_state(id, missing[n] ? ItemState::greyed : ItemState::usual);
    }
    window.set_item_state(COMMAND_CLEAR_RECENT,
                          shown.empty() ? ItemState::greyed : ItemState::usual);
}

void open_recent_file(int item) {
    if (size_t(item) >= shown.size()) return;
    const RecentFile file = shown[size_t(item)];
    way_of(file.how)->open(file.path);
}
