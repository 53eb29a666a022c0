#include "host/loaded_program.h"

#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/whole_file.h"
#include "host/debugging.h"
#include "host/pad_keys.h"
#include "media/files/cassette_files.h"
#include "media/files/drive_files.h"
#include "media/files/tape_sound_files.h"
#include "media/tape.h"

namespace {

LoadedProgram program;

std::string file_name(const std::string& path) { return file_name_of(path); }

} // namespace

const LoadedProgram& loaded_program() { return program; }

void program_is_loaded(const std::string& path) {
    const auto bytes = read_whole_file(path);
    bytes ? program_is_loaded(path, *bytes) : program_is({});
}

void program_is_loaded(const std::string& path, std::span<const uint8_t> bytes) {
    program_is({file_name(path), content_hash(bytes)});
    debugging_program_is(path);
}

void program_is(const LoadedProgram& loaded) {
    program = loaded;
    pad_keys_follow_program();
}

void program_after_restart() {
    const bool on_disk = drive_files[0].hash == program.hash;
    const std::string tape =
        tape_cas_is_attached() ? tape_get_cas_name() : tape_sound_played().path;
    const bool on_tape = file_name(tape) == program.name;
    if (!on_disk && !on_tape) program_is({});
}

void program_is_written(uint64_t hash_before, uint64_t hash_now) {
    pad_keys_copy(hash_before, hash_now);
    if (program.hash == hash_before) program_is({program.name, hash_now});
}
