#pragma once
/// Blank disks and tapes.

/// Asks for a file, makes a formatted disk of 40 tracks with 10 sectors there and puts it into the
/// first empty drive, see give_disk. Where no drive is empty, the user is told and nothing made.
void new_disk();
/// The same for a certain drive; a disk that is in it is taken out first.
void new_disk_in(unsigned drive);
/// Asks for a file and makes an empty cassette image there, which the next save of the firmware
/// goes to without a question, unless another tape is put in before or it is taken out.
void new_tape();
