#include "host/disk_questions.h"

#include "files/whole_file.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "host/disk_journal.h"
#include "media/disk_system.h"
#include "media/files/drive_files.h"
#include "platform/platform.h"
#include "wall/report.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

std::string in_drive(unsigned drive) {
    return drive_files[drive].path + " in drive :" + std::to_string(drive);
}

constexpr const char* ELSEWHERE_EXPLAINED =
    "Save mine elsewhere: the disk in the drive goes into another file.\n";
constexpr const char* CANCEL_EXPLAINED = "Cancel: the disk stays in the drive.";

void ask_about_trouble(const std::string& text, const char* my_answer,
                       const std::function<void(TroubleAnswer)>& done) {
    using enum TroubleAnswer;
    ask("Warning", text, {"&Save mine elsewhere...", my_answer, "Keep t&heirs", "Cancel"},
        [done](int answer) {
            constexpr TroubleAnswer ANSWERS[] = {elsewhere, mine, theirs};
            done(answer >= 0 && answer < 3 ? ANSWERS[answer] : none);
        });
}

/// A line for each file of either disk, with what has become of it: new, changed, damaged or
/// deleted. When the second disk has no directory that can be read, the reason.
std::string differences(const disk_image& before, const disk_image& after) {
    std::string problem;
    const auto old_disk = disk_mount(before, problem);
    const auto new_disk = disk_mount(after, problem);
    if (!new_disk) return "The disk's directory cannot be read: " + problem + ".";
    std::string lines;
    for (const DiskFile& file : disk_files(*new_disk)) {
        const std::string name = disk_name_text(file.name);
        const auto old_file = old_disk ? disk_find(*old_disk, name) : std::nullopt;
        const bool same = old_file && old_file->type == file.type &&
                          disk_contents(*old_disk, *old_file) == disk_contents(*new_disk, file);
        lines += name + std::string(name.size() < 14 ? 14 - name.size() : 1, ' ');
        lines += std::to_string(file.bytes) + " bytes";
        lines += !old_file ? ", new" : same ? "" : ", changed";
        lines += file.whole ? "\n" : ", damaged\n";
    }
    for (const DiskFile& file : old_disk ? disk_files(*old_disk) : std::vector<DiskFile>()) {
        const std::string name = disk_name_text(file.name);
        if (!disk_find(*new_disk, name)) lines += name + ", deleted\n";
    }
    return lines.empty() ? "There are no files on the disk." : lines;
}

void look_at_names(unsigned drive, const LeftJournal& left, std::function<void()> done) {
    const disk_image before = wd1771_disk(drive);
    disk_image after = before;
    after.image = left.image;
    diskimg_find_geometry(after);
    ui_show_text("Files on the disk", differences(before, after), std::move(done));
}

bool journal_fits(unsigned drive, const LeftJournal& left) {
    return left.file_hash == drive_files[drive].hash &&
           left.image.size() == drive_contents[drive].size();
}

} // namespace

void ask_for_changes(unsigned drive, std::function<void(ChangesAnswer)> done) {
    using enum ChangesAnswer;
    ask("Warning",
        "Disk content in drive :" + std::to_string(drive) +
            " has changed. Do you want to save your changes?",
        {"&Yes", "&No", "Cancel"}, [done = std::move(done)](int answer) {
            done(answer == 0 ? save : answer == 1 ? discard : none);
        });
}

void ask_about_changed_file(unsigned drive, const std::function<void(TroubleAnswer)>& done) {
    ask_about_trouble(
        in_drive(drive) + " was changed by another program meanwhile.\n\n" + ELSEWHERE_EXPLAINED +
            "Keep mine: the disk in the drive replaces what the other program has written.\n"
            "Keep theirs: what you have written to the disk is lost.\n" +
            CANCEL_EXPLAINED,
        "Keep &mine", done);
}

void ask_about_failed_write(unsigned drive, const std::string& reason,
                            const std::function<void(TroubleAnswer)>& done) {
    ask_about_trouble(
        in_drive(drive) + " cannot be written: " + reason + ".\n\n" + ELSEWHERE_EXPLAINED +
            "Try again: when there is room, or the folder is there again.\n"
            "Keep theirs: the file stays as it is; what you have written to the disk is lost.\n" +
            CANCEL_EXPLAINED,
        "&Try again", done);
}

void ask_about_journal(unsigned drive, const std::shared_ptr<const LeftJournal>& left,
                       const std::function<void(JournalAnswer)>& done) {
    const bool fits = journal_fits(drive, *left);
    const std::string text =
        fits
            ? "When the program ended, what was written to " + in_drive(drive) +
                  " was not saved. It is still there.\n\n"
                  "Take it: it is on the disk in the drive again. You are asked about saving it "
                  "when the disk is taken out.\n"
                  "Look at the names: shows the files that the disk has then.\n"
                  "Discard it: the disk is as its file is, and what was not saved is lost.\n"
                  "Later: nothing is decided. The disk is write-protected until it is put in again."
            : "When the program ended, what was written to " + in_drive(drive) +
                  " was not saved. It is still there, but the file was changed since, and the two "
                  "do not fit together.\n\n"
                  "Save it elsewhere: the disk as it was then goes into another file.\n"
                  "Look at the names: shows the files that are on that disk.\n"
                  "Discard it: what was not saved is lost.\n"
                  "Later: nothing is decided. The disk is write-protected until it is put in "
                  "again.";
    const char* const first = fits ? "&Take it" : "&Save it elsewhere...";
    const auto again = [=] { ask_about_journal(drive, left, done); };
    const auto answered = [=](int answer) {
        switch (answer) {
        case 0:
            if (fits) return done(JournalAnswer::take);
            return save_disk_elsewhere(shared_bytes(left->image), [=](const auto& saved) {
                saved ? done(JournalAnswer::discard) : again();
            });
        case 1: return look_at_names(drive, *left, again);
        case 2: return done(JournalAnswer::discard);
        default: return done(JournalAnswer::later);
        }
    };
    ask("Warning", text, {first, "&Look at the names...", "&Discard it", "Later"}, answered);
}

void save_disk_elsewhere(const shared_bytes& image,
                         const std::function<void(const std::optional<std::string>&)>& done) {
    ui_select_file(DIALOG_SAVE_DISK, [=](const std::optional<std::string>& path) {
        if (!path) return done({});
        const bool saved = replace_whole_file(*path, image.view());
        if (saved) {
            report({.text = "The disk is saved: " + *path, .severity = Severity::note});
        } else {
            report({.text = *path + " cannot be written", .reason = std::strerror(errno)});
        }
        done(saved ? path : std::nullopt);
    });
}
