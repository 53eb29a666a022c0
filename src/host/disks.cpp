#include "host/disks.h"

#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "files/name_claim.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "host/autostart.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/hold.h"
#include "host/disk_journal.h"
#include "host/disk_questions.h"
#include "host/downloads.h"
#include "host/loaded_program.h"
#include "host/menu.h"
#include "host/shell_state.h"
#include "media/files/rescue.h"
#include "platform/platform.h"
#include "wall/machine_host.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr uint32_t KILOBYTE = 1024;

/// What keeps the disk of a drive safe.
struct DiskCare {
    std::vector<NameClaim> claims; ///< on the image, while it may be written to
    DiskJournal journal;
    bool is_protected = false;   ///< the disk is write-protected, for whatever reason
    bool user_protects = false;  ///< because the user wants it
    bool journal_failed = false; ///< which has been reported
    /// There may be a journal of an earlier run, about which the user has to be asked.
    bool journal_waits = false;
    bool is_followed = false; ///< the disk belongs to the drive's file, and all is done for it
};
std::array<DiskCare, DISK_DRIVES> cares;
/// Paths of remembered images that could not be put in.
std::array<std::string, DISK_DRIVES> absent;
bool journals_are_offered = false;
bool journals_are_held = false;
int64_t last_kept = 0; ///< in counts of the host's clock

std::string drive_text(unsigned drive, const std::string& content) {
    std::string text = "Drive :&" + std::to_string(drive) + " - ";
    // A single & would mark an access key.
    for (const char c : content) text.append(c == '&' ? 2 : 1, c);
    return text;
}

/// Path and why there is no such image; empty when there is one.
std::string image_problem(const std::string& path) {
    std::string problem = file_problem(path);
    if (!problem.empty()) return problem;
    disk_image disk;
    disk.image = read_whole_file(path).value_or(std::vector<uint8_t>());
    const size_t size = disk.image.size();
    if (size && diskimg_find_geometry(disk)) return {};
    return path + ": its " + std::to_string(size) + " bytes are no layout that is known";
}

std::string drive_name(unsigned drive) { return "drive :" + std::to_string(drive); }

void show_protection(unsigned drive) {
    check_menu_item(COMMAND_PROTECT_DISK + int(drive), wd1771.disks[drive].write_protected != 0);
}

void show_drive(unsigned drive) {
    const bool empty = !diskimg_inserted(wd1771.disks[drive]);
    const std::string& path = drive_files[drive].path;
    const std::string content = empty ? "<no disk>" : path.empty() ? "<no file>" : path;
    modify_menu_text(COMMAND_ATTACH_DISK + int(drive), drive_text(drive, content));
    show_protection(drive);
}

void empty_drive(unsigned drive) {
    diskimg_detach(drive, false);
    cares[drive] = {};
    show_drive(drive);
}

void set_protection(unsigned drive) {
    const bool level = cares[drive].is_protected;
    if ((wd1771.disks[drive].write_protected != 0) == level) return;
    machine_apply(event_kind::disk_protect, int32_t(drive), level);
    show_protection(drive);
}

void protect(unsigned drive, bool level) {
    cares[drive].is_protected = level;
    set_protection(drive);
}

// ---- writing back ------------------------------------------------------------------------------

/// Writes the image to its file, or wherever the user wants it. False when the disk is to stay.
void save_disk(unsigned drive, bool keep_mine, const DiskDone& done) {
    const bool changed = !keep_mine && diskimg_file_changed(drive);
    if (!changed && diskimg_write_back(drive)) {
        program_is_written(drive_files[drive].hash, content_hash(drive_contents[drive].view()));
        return done(true);
    }
    const std::string reason = std::strerror(errno);
    const bool mine_next = keep_mine || changed;
    const auto answered = [=](TroubleAnswer answer) {
        switch (answer) {
        case TroubleAnswer::none: return done(false);
        case TroubleAnswer::theirs: return done(true);
        case TroubleAnswer::mine: return save_disk(drive, mine_next, done);
        case TroubleAnswer::elsewhere: break;
        }
        save_disk_elsewhere(drive_contents[drive], [=](const auto& saved) {
            saved ? done(true) : save_disk(drive, keep_mine, done);
        });
    };
    if (changed) return ask_about_changed_file(drive, answered);
    ask_about_failed_write(drive, reason, answered);
}

/// False when the disk is to stay.
void settle_changes(unsigned drive, const DiskDone& done) {
    if (!wd1771.disks[drive].modified) return done(true);
    if (shell_state.start.save_changed_disks) return save_disk(drive, false, done);
    ask_for_changes(drive, [=](ChangesAnswer answer) {
        if (answer == ChangesAnswer::save) return save_disk(drive, false, done);
        done(answer == ChangesAnswer::discard);
    });
}

void take_out(unsigned drive, const DiskDone& done) {
    settle_changes(drive, [=](bool settled) {
        if (settled) {
            cares[drive].journal.remove();
            empty_drive(drive);
        }
        done(settled);
    });
}

// ---- the same image twice ----------------------------------------------------------------------

/// The names to claim: one made of the file's identity, one of its path, since the file may be
/// replaced while it is in a drive.
std::array<std::string, 2> claimed_names(const disk_file& file) {
    const uint64_t hash = content_hash(canonical_path(file.path));
    const auto& [device, inode] = file.identity;
    return {"disk " + std::to_string(device) + " " + std::to_string(inode),
            "disk " + std::to_string(hash)};
}

std::string other_holder(unsigned drive) {
    const disk_file& file = drive_files[drive];
    for (unsigned other = 0; other < DISK_DRIVES; ++other) {
        const disk_file& held = drive_files[other];
        const bool same = diskimg_inserted(wd1771.disks[other]) &&
                          (held.identity == file.identity ||
                           canonical_path(held.path) == canonical_path(file.path));
        if (other != drive && same) return drive_name(other) + " has the same image";
    }
    return "another running program has the image in a drive";
}

void tell_protected(unsigned drive, const std::string& reason, Severity severity) {
    report({.text = "Drive :" + std::to_string(drive) + " is write-protected",
            .file = drive_files[drive].path,
            .reason = reason,
            .severity = severity});
}

void claim_image(unsigned drive) {
    if (wd1771.disks[drive].write_protected) return;
    const disk_file& file = drive_files[drive];
    bool taken = shell_state.start.keep_disk_journals && journal_is_in_use(file);
    for (const std::string& name : claimed_names(file)) {
        NameClaim claim(name);
        taken = taken || claim.result() == NameClaim::Result::taken;
        cares[drive].claims.push_back(std::move(claim));
    }
    if (!taken) return;
    cares[drive].claims.clear();
    protect(drive, true);
    tell_protected(drive, other_holder(drive), Severity::warning);
}

// ---- journals ----------------------------------------------------------------------------------

void take_journal(unsigned drive, const LeftJournal& left) {
    machine_apply(event_kind::disk_replace, int32_t(drive), 0, shared_bytes(left.image));
    cares[drive].journal.begin(drive_contents[drive]);
    if (cares[drive].journal.resume(left)) return;
    report({.text = "The journal of " + drive_name(drive) + " cannot be written",
            .file = left.path,
            .reason = std::strerror(errno),
            .severity = Severity::warning});
}

/// Asks about the journal that an earlier run has left, if there is one.
void offer_journal(unsigned drive, const std::function<void()>& done) {
    const bool waits = std::exchange(cares[drive].journal_waits, false);
    if (!waits || !diskimg_inserted(wd1771.disks[drive])) return done();
    protect(drive, false);
    const disk_file& file = drive_files[drive];
    auto found = find_left_journal(file);
    if (!found) return done();
    const auto left = std::make_shared<const LeftJournal>(std::move(*found));
    const auto answered = [=](JournalAnswer answer) {
        switch (answer) {
        case JournalAnswer::take: take_journal(drive, *left); break;
        case JournalAnswer::discard: remove_left_journal(*left); break;
        case JournalAnswer::later:
            protect(drive, true);
            tell_protected(drive, "what was not saved before is still to be decided about",
                           Severity::note);
        }
        done();
    };
    // The program was killed just after the image had been written back: the journal has nothing
    // more.
    if (content_hash(left->image) == file.hash) return answered(JournalAnswer::discard);
    ask_about_journal(drive, left, answered);
}

void watch_journal(unsigned drive) {
    if (!shell_state.start.keep_disk_journals || wd1771.disks[drive].write_protected) return;
    cares[drive].journal_waits = true;
    protect(drive, true); // until it is known what the disk holds
}

bool keep_journal(unsigned drive) {
    DiskCare& care = cares[drive];
    if (drive_files[drive].path.empty()) return false; // a disk of a loaded state
    if (care.journal.keep(drive_files[drive], drive_contents[drive])) {
        care.journal_failed = false;
        return true;
    }
    const std::string reason = std::strerror(errno);
    if (!std::exchange(care.journal_failed, true)) {
        report({.text = "The journal of " + drive_name(drive) + " cannot be written",
                .reason = reason,
                .remedy = "What is written to the disk is lost if the program is ended by force.",
                .severity = Severity::warning});
    }
    return false;
}

/// Claims the image again, and asks about its journal again.
void try_to_free(unsigned drive) {
    protect(drive, false);
    if (cares[drive].claims.empty()) claim_image(drive);
    watch_journal(drive);
    offer_journal(drive, [] {});
}

void offer_copy(unsigned drive) {
    const auto copied = [drive](const std::optional<std::string>& copy) {
        if (copy) main_disk_image_attach(drive, *copy);
    };
    ask("Write protection",
        drive_files[drive].path + " in " + drive_name(drive) +
            " cannot be written.\n\n"
            "Save a copy: the disk goes into a file of yours, which takes its place in the drive.",
        {"&Save a copy...", "Cancel"}, [=](int answer) {
            constexpr int SAVE = 0;
            if (answer == SAVE) save_disk_elsewhere(drive_contents[drive], copied);
        });
}

/// Keeps the changes of a disk about which the user has not decided when the program ends.
void leave_unsaved(unsigned drive) {
    const std::string path = drive_files[drive].path;
    const std::string disk_text = "Disk content in " + drive_name(drive) + " has changed";
    if (shell_state.start.save_changed_disks) {
        const bool changed = diskimg_file_changed(drive);
        const auto rescue = diskimg_rescue(drive);
        report({.text = disk_text + " and cannot be saved",
                .file = path,
                .reason =
                    changed ? "another program has changed the file" : "the file cannot be written",
                .remedy = rescue ? "The disk is in " + *rescue + "."
                                 : "No copy of it could be made: the changes are lost."});
    } else if (!shell_state.start.keep_disk_journals) {
        report({.text = disk_text + " and is not saved",
                .file = path,
                .remedy = "--save-disks saves it.",
                .severity = Severity::warning});
    } else if (keep_journal(drive)) {
        report({.text = disk_text + " and is in the journal",
                .file = path,
                .remedy = "It is offered when the image is put into a drive again.",
                .severity = Severity::note});
    } else if (const auto rescue = diskimg_rescue(drive)) {
        report({.text = disk_text + ". The disk is in " + *rescue, .file = path});
    } else {
        report({.text = disk_text + ". No copy of it could be made: the changes are lost",
                .file = path,
                .reason = std::strerror(errno)});
    }
    empty_drive(drive);
}

/// False when there is no such image; the drive is empty then.
bool put_in(unsigned drive, const std::string& path) {
    for (unsigned n = 0; n < DISK_DRIVES; ++n) {
        if (!diskimg_inserted(wd1771.disks[n])) cares[n] = {};
    }
    if (!diskimg_attach(drive, path)) return false;
    absent[drive].clear();
    cares[drive].is_protected = wd1771.disks[drive].write_protected != 0;
    cares[drive].journal.begin(drive_contents[drive]);
    machine_apply(event_kind::disk_controller);
    const disk_record& disk = wd1771.disks[drive];
    StatusBarText("Disk: %u side(s), %u tracks, %u sectors, %u kb.", disk.side_value + 1,
                  disk.tracks, disk.sectors, disk.size / KILOBYTE);
    cares[drive].is_followed = true;
    show_drive(drive);
    claim_image(drive);
    watch_journal(drive);
    return true;
}

// ---- another state of the machine ---------------------------------------------------------------

/// Whether the drive has the file already. A state's disk is no journal's to replace any more.
bool belongs_to(unsigned drive, const disk_file& file) {
    const disk_file& present = drive_files[drive];
    const DiskCare& care = cares[drive];
    return diskimg_inserted(wd1771.disks[drive]) && care.is_followed && !care.journal_waits &&
           lasting_path(present.path) == file.path && present.hash == file.hash;
}

void leave_file(unsigned drive) {
    drive_files[drive] = {};
    cares[drive] = {};
    show_drive(drive);
}

bool differs_from_file(unsigned drive) {
    const auto bytes = read_whole_file(drive_files[drive].path);
    return !bytes || content_hash(*bytes) != content_hash(drive_contents[drive].view());
}

/// The disk's journal goes on from what it holds.
void go_on_with_journal(unsigned drive) {
    const disk_file& file = drive_files[drive];
    DiskJournal& journal = cares[drive].journal;
    // Without a journal, a disk that is not as its file has to get one.
    journal.begin(differs_from_file(drive) ? shared_bytes() : drive_contents[drive]);
    const auto left = find_left_journal(file);
    if (!left) return;
    const uint64_t hash = content_hash(left->image);
    if (hash != file.hash && hash != content_hash(drive_contents[drive].view())) {
        const std::string rescue = rescue_path(file.path);
        if (!replace_whole_file(rescue, left->image)) return report(unwritable(rescue));
        report({.text = "What was written to the disk of " + drive_name(drive) + " is in " + rescue,
                .file = file.path,
                .reason = "the disk is now as it was at another time",
                .severity = Severity::note});
    }
    journal.begin(shared_bytes(left->image));
    journal.resume(*left);
}

void take_file(unsigned drive, const disk_file& file) {
    drive_files[drive] = {file.path, file_identity(file.path), file.hash};
    show_drive(drive);
    if (journals_are_held) return;
    cares[drive].is_followed = true;
    if (file.path.empty()) return;
    // Whoever made the state may have named any file, so that only an image is taken for one.
    const std::string problem = image_problem(file.path);
    if (!problem.empty()) {
        drive_files[drive] = {};
        show_drive(drive);
        return report({.text = "The disk of " + drive_name(drive) + " has no file",
                       .reason = problem,
                       .remedy = "It can be saved when it is taken out.",
                       .severity = Severity::warning});
    }
    if (diskimg_file_changed(drive)) {
        report({.text = "The disk of " + drive_name(drive) + " is another than that in its file",
                .file = file.path,
                .reason = "the file holds something else than before",
                .remedy = "The file stays as it is until the disk is taken out and saved.",
                .severity = Severity::warning});
    }
    cares[drive].is_protected = !may_write(file.path);
    set_protection(drive);
    claim_image(drive);
    if (shell_state.start.keep_disk_journals && !cares[drive].is_protected) {
        go_on_with_journal(drive);
    }
}

/// Takes out this disk and those of the drives after it.
void detach_from(unsigned drive) {
    if (drive == DISK_DRIVES) return StatusBarText("All disks detached.");
    main_disk_image_detach(drive, [drive](bool taken) {
        if (taken) return detach_from(drive + 1);
        StatusBarText("Stopped: the disk in drive :%u stays there.", drive);
    });
}

/// Ends with this disk and those of the drives after it.
void end_drive(unsigned drive, bool all_settled, const std::function<void()>& done) {
    if (drive == DISK_DRIVES) {
        journals_are_offered = false;
        if (all_settled) StatusBarText("All disks detached.");
        return done();
    }
    const auto settled = [=](bool taken) {
        if (diskimg_inserted(wd1771.disks[drive])) {
            if (wd1771.disks[drive].modified) leave_unsaved(drive);
            empty_drive(drive);
        }
        end_drive(drive + 1, taken, done);
    };
    all_settled ? take_out(drive, settled) : settled(false);
}

} // namespace

void main_disk_image_attach(unsigned drive, const std::string& path, DiskDone done) {
    if (!done) done = [](bool) {};
    if (path.empty() || drive >= DISK_DRIVES) return done(false);
    const auto put = [=](bool empty) {
        if (!empty) return done(false);
        if (!put_in(drive, path)) {
            report({.text = "Unsupported disk image.\n", .reason = image_problem(path)});
            return done(false);
        }
        if (!journals_are_offered) return done(true);
        offer_journal(drive, [done] { done(true); });
    };
    if (!diskimg_inserted(wd1771.disks[drive])) return put(true);
    main_disk_image_detach(drive, put);
}

void main_disk_image_remember(unsigned drive, const std::string& path) { absent[drive] = path; }

void main_disk_image_attach_remembered() {
    std::string missing;
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
        const std::string path = absent[drive];
        if (path.empty() || put_in(drive, path)) continue;
        if (!missing.empty()) missing += "; ";
        missing += drive_name(drive) + ", " + image_problem(path);
    }
    if (missing.empty()) return;
    report({.text = "Disks of the last run are missing",
            .reason = missing,
            .remedy = "Their names are kept for the next run."});
}

std::string main_disk_image_remembered(unsigned drive) {
    return diskimg_inserted(wd1771.disks[drive]) ? drive_files[drive].path : absent[drive];
}

void main_disk_image_detach(unsigned drive, DiskDone done) {
    if (!done) done = [](bool) {};
    if (drive >= DISK_DRIVES) return done(false);
    absent[drive].clear();
    take_out(drive, [=](bool taken) {
        const char* const text =
            taken ? "Disk detached from drive #%u" : "The disk in drive :%u stays there.";
        StatusBarText(text, drive);
        done(taken);
    });
}

void main_disk_image_detach_all() { detach_from(0); }

std::optional<unsigned> first_empty_drive(unsigned from) {
    for (unsigned drive = from; drive < DISK_DRIVES; ++drive) {
        if (!diskimg_inserted(wd1771.disks[drive])) return drive;
    }
    return {};
}

void main_disk_switch_protection(unsigned drive) {
    if (!diskimg_inserted(wd1771.disks[drive])) {
        return StatusBarText("There is no disk in drive :%u.", drive);
    }
    DiskCare& care = cares[drive];
    if (!care.is_protected || care.user_protects) {
        care.user_protects = !care.is_protected;
        protect(drive, care.user_protects);
    } else if (!may_write(drive_files[drive].path)) {
        return offer_copy(drive);
    } else {
        try_to_free(drive);
    }
    if (care.is_protected != care.user_protects) return; // which has been told
    StatusBarText("The disk in drive :%u %s.", drive,
                  care.is_protected ? "is write-protected" : "can be written to");
}

void main_disk_save_copy(unsigned drive) {
    if (!diskimg_inserted(wd1771.disks[drive])) {
        return StatusBarText("There is no disk in drive :%u.", drive);
    }
    save_disk_elsewhere(drive_contents[drive], [](const auto& saved) {
        if (saved) file_is_complete(*saved);
    });
}

void main_disk_offer_journals() {
    journals_are_offered = true;
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
        when_free([drive] { offer_journal(drive, [] {}); });
    }
}

void main_disk_keep_journals() {
    if (!shell_state.start.keep_disk_journals || journals_are_held) return;
    last_kept = platform().clock().counter();
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
        // One that waits for its file (main_disk_settle) would claim its journal from itself.
        const bool has_file = cares[drive].is_followed;
        if (has_file && diskimg_inserted(wd1771.disks[drive])) keep_journal(drive);
    }
}

void main_disk_keep_journals_when_due() {
    // A little less than a second, since frames do not come exactly on time.
    const int64_t interval = pacing.two_seconds / 2 * 9 / 10;
    if (!shell_state.start.keep_disk_journals || pacing.elapsed_counter - last_kept < interval)
        return;
    main_disk_keep_journals();
}

void main_disk_hold_journals(bool on) { journals_are_held = on; }

void main_disk_follow(const std::array<disk_file, DISK_DRIVES>& files) {
    std::array<bool, DISK_DRIVES> stays;
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
        stays[drive] = belongs_to(drive, files[drive]);
        if (!stays[drive]) leave_file(drive); // before any drive claims it
    }
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
        if (!diskimg_inserted(wd1771.disks[drive])) continue;
        absent[drive].clear();
        if (!stays[drive]) take_file(drive, files[drive]);
        set_protection(drive);
        if (!wd1771.disks[drive].modified && differs_from_file(drive)) {
            machine_apply(event_kind::disk_replace, int32_t(drive), 0, drive_contents[drive]);
        }
    }
}

void main_disk_settle() {
    for (unsigned drive = 0; drive < DISK_DRIVES && !journals_are_held; ++drive) {
        const bool waits = diskimg_inserted(wd1771.disks[drive]) && !cares[drive].is_followed;
        if (waits) take_file(drive, disk_file(drive_files[drive]));
    }
}

void main_disk_end(const std::function<void()>& done) { end_drive(0, true, done); }

void main_disk_leave(const std::function<void()>& done) { end_drive(0, false, done); }
