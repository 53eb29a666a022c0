#pragma once
/// What is handed to the user of a host with Downloads (platform/downloads.h): disks and cassette
/// as they are in the machine, and the files that he had written.

#include <string>

/// The disk as it is now, under its file's name. Without a disk the status bar says so.
void download_disk(unsigned drive);
/// The image in the recorder as it is now, likewise. A recording of sound is none.
void download_cassette();
/// To be called when a file that the user has asked for is complete. Other hosts have it where the
/// user named it: nothing happens.
void file_is_complete(const std::string& path);
