#pragma once
/// Disk images of the drives 0 to 3, with the menu's texts and the question whether to save.
///
/// Taking a disk out asks whether to keep its changes; putting one in takes out the one before.
/// Other drives, and an empty path, do nothing. The status bar tells what came of it.

#include <string>

void main_disk_image_attach(unsigned drive, const std::string& path);
void main_disk_image_detach(unsigned drive);
void main_disk_image_detach_all();
