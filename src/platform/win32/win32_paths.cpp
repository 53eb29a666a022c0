#include "platform/win32/win32_paths.h"

#include "files/file_handle.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"

std::string Win32Paths::printer_directory() {
    // Only trying shows what access lists and policies allow.
    const std::string trial = path_in(program_directory(), random_name());
    if (!open_file(trial, "wbx")) return data_directory();
    remove_file(trial);
    return program_directory();
}
