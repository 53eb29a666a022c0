#pragma once
/// A disk that the user gives to the running machine, and the disk ROM that it needs.

#include <functional>
#include <string>

/// Attaches the disk, see main_disk_image_attach. Where the machine has no expansion ROM, offers to
/// restart it with the disk ROM; before the window is up the offer waits. `done` is called after
/// the answers, with false when the disk is not in the drive.
void give_disk(unsigned drive, const std::string& path, std::function<void(bool)> done);
/// Makes the offer that has been waiting.
void offer_disk_rom_late();
