#include "host/new_media.h"

#include "files/whole_file.h"
#include "host/dialogs/dialogs.h"
#include "host/disk_rom.h"
#include "host/disks.h"
#include "host/save_question.h"
#include "media/disk_system.h"
#include "media/files/cassette_files.h"
#include "media/files/rescue.h"
#include "wall/machine_host.h"
#include "wall/report.h"

#include <optional>
#include <string>

namespace {

constexpr unsigned TRACKS = 40;

void make_disk(unsigned drive, const std::string& path) {
    std::string problem;
    auto disk = disk_blank(DISK_PLAIN, TRACKS, COMMON_SECTORS, problem);
    if (!disk || !disk_format(*disk, problem)) return report({.text = path, .reason = problem});
    if (!replace_whole_file(path, disk->image)) return report(unwritable(path));
    give_disk(drive, path, [](bool) {});
}

void make_tape(const std::string& path) {
    if (!replace_whole_file(path, std::string_view())) return report(unwritable(path));
    tape_detach_cas();
    save_next_to(path);
    StatusBarText("The next CSAVE goes to %s", path.c_str());
}

} // namespace

void new_disk() {
    if (const auto drive = first_empty_drive(0)) return new_disk_in(*drive);
    report({.text = "There is a disk in every drive",
            .remedy = "Take one out first.",
            .severity = Severity::warning});
}

void new_disk_in(unsigned drive) {
    ui_select_file(DIALOG_NEW_DISK, [drive](const std::optional<std::string>& path) {
        if (path) make_disk(drive, *path);
    });
}

void new_tape() {
    ui_select_file(DIALOG_NEW_TAPE, [](const std::optional<std::string>& path) {
        if (path) make_tape(*path);
    });
}
