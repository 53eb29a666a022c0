#pragma once
/// Autostart: loads a file by its extension and starts it.

#include "host/shell_state.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// What files of a type can be used for.
enum LoaderRole : uint8_t {
    ROLE_START = 1,
    ROLE_DISK = 2,
    ROLE_TAPE = 4,
    ROLE_TYPE = 8, ///< their text is typed in
    ROLE_STATE = 16,
    ROLE_REPLAY = 32
};

/// A type of file that the program opens.
struct Loader {
    std::string_view extension; ///< in small letters
    uint8_t roles;
    bool (*load)(const std::string& name, std::span<const uint8_t> bytes);
};

/// What a file with this name can be used for; 0 for a type that is not known.
uint8_t roles_of(const std::string& path);
/// The file names of all types with one of the roles, as a dialog's filter: "*.a;*.b".
std::string patterns_of(uint8_t roles);

/// Loads and starts the file, and says so in the status bar. Of a zip file, the one in it that can
/// be started; of several, that which the user chooses. Its name without the extension becomes
/// the base name of screenshots, until the next reset; the start of a cassette begins with one. A
/// file that is missing, cannot be read or is of no known type leaves the machine as it is; this
/// and what goes wrong later is reported. When the machine has not reached its prompt yet, BASIC
/// programs, load modules and snapshots let it start up first.
void autostart_file(const std::string& path);
/// The same for a file of which the host knows only this much. A disk image is refused, since its
/// file has to follow what the machine writes.
void autostart_bytes(const std::string& name, std::span<const uint8_t> bytes);
/// Loads a BASIC file: a tokenized one is put in as a cassette and CLOAD is typed, a text is typed
/// in. When the machine still asks its question at the start, that is answered first.
void main_load_bas_file(const std::string& path);
/// Why the file cannot be read as a program or an image, in one line; empty when it can.
std::string file_problem(const std::string& path);
/// The same for a file of which `largest` bytes can be read.
std::string file_problem(const std::string& path, size_t largest);
/// The same, and also a reason when files of its type cannot be started.
std::string start_problem(const std::string& path);
/// Tells the user, with `text` in the status bar, when the contents of a readable file are damaged,
/// see media/damage.h. True when they are whole.
bool is_whole(const std::string& path, std::string (*damage)(std::span<const uint8_t>),
              const std::string& text);
/// Loads a snapshot. When that fails, the user is told why, and the machine is as it was.
bool load_snapshot(const std::string& path);
