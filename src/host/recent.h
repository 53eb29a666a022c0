#pragma once
/// The files that the user opened last, newest first, with how each was opened. They are in the
/// setting "RecentFiles", which all running programs share, and only where the shell's options say
/// remembers_files.

#include <string>
#include <vector>

/// How a file was opened.
enum class Opened : char {
    started = 's',
    as_listing = 'b',
    in_drive_0 = '0', ///< the others follow
    in_drive_1,
    in_drive_2,
    in_drive_3,
    as_cassette = 'c',
    as_tape_sound = 'w',
    as_snapshot = 'j',
    as_state = 't',
    as_replay = 'r'
};

struct RecentFile {
    Opened how = Opened::started;
    std::string path;
    bool operator==(const RecentFile&) const = default;
};

constexpr int RECENT_FILES = 10; ///< at most

/// Puts the file in front of the list, and writes it at once. It also tells loaded_program.h, which
/// counts on every host.
void note_opened(Opened how, const std::string& path);
/// Entries that make no sense are left out.
std::vector<RecentFile> recent_files();
void clear_recent_files();

/// Gives the menu's items the present list. Files that are missing are greyed; one whose folder
/// takes long to answer counts as there.
void show_recent_files();
/// Opens the file of the menu's item again, as it was opened.
void open_recent_file(int item);
