#pragma once
/// Disk images of the drives 0 to 3, with the menu's texts, the questions before something is lost,
/// and the journals of what was written.
///
/// Taking a disk out asks whether to keep its changes; putting one in takes out the one before. A
/// question without an answer discards nothing: the disk stays in its drive. An image that is in
/// another drive, or in one of another running program, is write-protected. Other drive numbers,
/// and an empty path, do nothing. The status bar tells the result.

#include "media/files/drive_files.h"

#include <array>
#include <functional>
#include <optional>
#include <string>

/// Gets the result, before the call returns or after the user's answers.
using DiskDone = std::function<void(bool)>;
/// Puts the image into the drive. `done` gets false when it is not in the drive.
void main_disk_image_attach(unsigned drive, const std::string& path, DiskDone done = {});
/// Tells which image the drive had at the end of the last run; an empty path for none.
void main_disk_image_remember(unsigned drive, const std::string& path);
/// Puts the remembered images in. Those that cannot be read are reported together, and their drives
/// remember them until a disk is put in or taken out.
void main_disk_image_attach_remembered();
/// The path of the disk in the drive, or of the one that it remembers.
std::string main_disk_image_remembered(unsigned drive);
/// Takes the disk out. `done` gets false when the disk stays in the drive.
void main_disk_image_detach(unsigned drive, DiskDone done = {});
/// Takes out all disks, drive 0 first, up to the first one that stays.
void main_disk_image_detach_all();

/// The first drive from this one on that has no disk.
std::optional<unsigned> first_empty_drive(unsigned from);
/// Switches the write protection of the disk in the drive. A disk whose file cannot be written
/// stays protected: the user is offered to save a copy, which then takes its place. The same holds
/// for a disk that another drive or program has, as long as that is so.
void main_disk_switch_protection(unsigned drive);
/// Asks for a file, and writes the disk in the drive to it as it is now. The drive keeps its own.
void main_disk_save_copy(unsigned drive);

/// From here on a journal is offered when its image is attached; those of disks attached before are
/// offered now. Until then, and while there is no answer, such a disk is write-protected.
void main_disk_offer_journals();
/// Notes in the journals what was written since the last call. To be called between frames, and
/// before anything that may take long. main_disk_keep_journals_when_due does it once a second at
/// most.
void main_disk_keep_journals();
void main_disk_keep_journals_when_due();
/// While it is on, journals and claims stay as they are: an earlier moment is looked at.
void main_disk_hold_journals(bool on);
/// For another state of the machine, which brings its own disks: the one of each drive belongs to
/// the file of that drive here, or to none without a path. It counts as changed when the file holds
/// anything else. A file that is missing or is no image is none. What was written to a disk that is
/// gone stays in its journal; where a disk comes back that has a journal, what only that one has
/// goes to the rescue folder. The user is told, also of files that are missing or have changed.
void main_disk_follow(const std::array<disk_file, DISK_DRIVES>& files);
/// When the machine is to go on: sees to the journals and claims of the disks that came while they
/// were held.
void main_disk_settle();
/// For the end of the program: takes out all disks as above. From the first one that stays, what
/// was written is left in the journals. When a disk's journal cannot be written, or with
/// save_changed_disks its file, the disk goes to a rescue file; when neither is asked for, its loss
/// is only reported. `done` is called when all drives are empty.
void main_disk_end(const std::function<void()>& done);
/// The same for disks that are in a state to be resumed: nothing is asked, and what was written is
/// left in the journals.
void main_disk_leave(const std::function<void()>& done);
