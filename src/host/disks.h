#pragma once
/// Disk images of the drives 0 to 3, with the menu's texts, the questions before something is lost,
/// and the journals of what was written.
///
/// Taking a disk out asks whether to keep its changes; putting one in takes out the one before.
/// A question without an answer discards nothing: the disk stays in its drive. An image that is in
/// another drive, or in one of another running program, is write-protected. Other drives, and an
/// empty path, do nothing. The status bar tells what came of it.

#include <functional>
#include <string>

/// What came of it, handed over before the call returns or after the user's answers.
using DiskDone = std::function<void(bool)>;
/// False when the drive has not got the image.
void main_disk_image_attach(unsigned drive, const std::string& path, DiskDone done = {});
/// What the drive had at the end of the last run; an empty path for nothing.
void main_disk_image_remember(unsigned drive, const std::string& path);
/// Puts those in. Those that cannot be had are told together, and their drives remember them until
/// a disk is put in or taken out.
void main_disk_image_attach_remembered();
/// The path of the disk in the drive, or of the one that it remembers.
std::string main_disk_image_remembered(unsigned drive);
/// False when the disk stays.
void main_disk_image_detach(unsigned drive, DiskDone done = {});
/// Ends at the first disk that stays.
void main_disk_image_detach_all();

/// From here on a journal is offered when its image is attached; those of disks attached before are
/// offered now. Until then, and while there is no answer, such a disk is write-protected.
void main_disk_offer_journals();
/// Notes in the journals what was written; does nothing when nothing was. Called between frames,
/// whenever something may take long, `when_due` leaves it at once in a second.
void main_disk_keep_journals();
void main_disk_keep_journals_when_due();
/// Another state of the machine has been loaded, with the disks of its own. Each belongs to the
/// file that its drive had; one that is not as the file was is one with changes. A disk that is in
/// no drive any more is left to its journal.
void main_disk_follow_machine();
/// The program's end. Takes out all disks as above; from the first one that stays, what was written
/// is left in the journals. Where there is none, a changed disk is rescued, or without
/// journals only reported.
void main_disk_end(const std::function<void()>& done);
