#pragma once
/// Zip files in the shell: they open as if they were folders. The files in them have paths such as
/// "games.zip/disks/work.dsk", see files/zip/zip_folder.h, and are never written to.

#include "host/autostart.h"

#include <functional>
#include <string>

/// From here on read_whole_file reads files in zip files, too.
void connect_zip_files();
/// Hands the path on; of a zip file, that of the file in it that has one of the roles. Of several
/// the user is asked to choose; an unattended shell is told their names instead. Without any, or
/// when the zip file cannot be read, that is reported, and `done` is not called.
void with_file_of_zip(const std::string& path, uint8_t roles,
                      const std::function<void(const std::string& path)>& done);
/// Why no file in the zip file can be used in one of the roles, or why it is not known which; empty
/// when there is no reason.
std::string zip_problem(const std::string& archive, uint8_t roles);
