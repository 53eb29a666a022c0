#include "media/files/cassette_files.h"

#include "cgenie/memory/memory.h"
#include "core/machine_events.h"
#include "files/file_handle.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "media/files/rescue.h"
#include "media/files/tape_sound_files.h"
#include "media/tape.h"
#include "media/traps.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr int TOKENIZED_MARK = 0xFF;

FileHandle saved; ///< the tape that is being saved
std::string saved_path;
std::string casfilename;
bool is_named_after_tape = false; ///< and not after that of the last run
std::string left; ///< path of a tape that goes on in a new file, as soon as it does; else empty

/// Regular files only: a folder holds no tape, and a pipe would hold up the machine.
FileHandle open_regular_file(const std::string& path, const char* mode) {
    FileHandle file = open_without_waiting(path, mode);
    const auto facts = file ? facts_of(file.get()) : std::nullopt;
    if (!facts || facts->kind != SystemFileFacts::Kind::regular || facts->size > LARGEST_FILE)
        return {};
    return file;
}

/// Nothing that reads as a number counts as 0.
uint16_t hexadecimal(const std::string& text) {
    uint16_t value = 0;
    return std::sscanf(text.c_str(), "%4hx", &value) == 1 ? value : uint16_t(0);
}

/// Makes the new file for the tape that is saved.
bool go_on_elsewhere() {
    const std::string old = std::exchange(left, {});
    const std::string path = rescue_path(old);
    if (path.empty() || !replace_whole_file(path, cas.view())) {
        report(unwritable(path));
        return false;
    }
    saved = open_regular_file(path, "r+b");
    casfilename = saved_path = path;
    report({.text = "The tape goes on in " + path,
            .file = old,
            .reason = "the machine has gone back to an earlier state of it",
            .remedy = "This file stays as it was written.",
            .severity = Severity::warning});
    return saved != nullptr;
}

void put_in(std::string path, std::vector<uint8_t> image) {
    if (!tape_traps_fit(source_rom_pointer())) {
        tape_play_cassette(path, image);
        return;
    }
    machine_apply(event_kind::tape_in, 0, 0, shared_bytes(std::move(image)));
    casfilename = std::move(path);
    is_named_after_tape = true;
}

} // namespace

int tape_attach_cas(const std::string& path) {
    std::string wanted = path; // may be the name that detaching clears
    tape_detach_cas();
    auto image = read_whole_file(wanted);
    if (!image) return 0;
    put_in(std::move(wanted), std::move(*image));
    return 1;
}

void tape_attach_bytes(std::string path, std::span<const uint8_t> bytes) {
    tape_detach_cas();
    put_in(std::move(path), {bytes.begin(), bytes.end()});
}

void tape_detach_cas() {
    if (tape_cas_is_attached()) casfilename.clear();
    is_named_after_tape = false;
    machine_apply(event_kind::tape_out);
}

std::string& tape_get_cas_name() { return casfilename; }

int is_tokenized_bas(const std::string& path) {
    const FileHandle file = open_regular_file(path, "rb");
    return file && std::fgetc(file.get()) == TOKENIZED_MARK ? 1 : 0;
}

bool is_tokenized_bas(std::span<const uint8_t> bytes) {
    return !bytes.empty() && bytes.front() == TOKENIZED_MARK;
}

int bas_to_cas_open(const std::string& path) {
    std::string wanted = path; // may be the name that detaching clears
    tape_detach_cas();
    machine_apply(event_kind::tape_make_room);
    const auto program = read_whole_file(wanted);
    if (!program) return 0;
    put_in(wanted, tape_of_basic(*program, wanted.front()));
    return 1;
}

void tape_attach_basic(std::string path, std::span<const uint8_t> bytes) {
    tape_detach_cas();
    machine_apply(event_kind::tape_make_room);
    auto tape = tape_of_basic(bytes, path.front());
    put_in(std::move(path), std::move(tape));
}

int tape_dump_cas(const std::string& path, const std::string& start, const std::string& end,
                  const std::string& entry) {
    const uint16_t first = hexadecimal(start);
    const uint16_t last = hexadecimal(end);
    if (last < first) {
        report({.text = path + ": not written, the end is below the start"});
        return 0;
    }
    const size_t separator = path.find_last_of("/\\");
    const bool named = separator != std::string::npos;
    const auto tape = named ? tape_of_memory(std::string_view(path).substr(separator + 1), first,
                                             last, hexadecimal(entry))
                            : tape_of_no_program();
    if (!replace_whole_file(path, tape)) {
        report(unwritable(path));
        return 0;
    }
    if (!named) report({.text = path + ": is empty, since its path names no folder"});
    return named ? 1 : 0;
}

int tape_create_file(const std::string& path) {
    tape_file_end();
    saved = open_regular_file(path, "w+b");
    if (saved) {
        casfilename = saved_path = path;
        is_named_after_tape = true;
        return 1;
    }
    report(unwritable(path));
    if (tape_cas_is_attached()) casfilename.clear();
    return 0;
}

int tape_file_write(uint64_t position, const uint8_t* bytes, size_t count) {
    if (!saved && (left.empty() || !go_on_elsewhere())) return 0;
    if (write_at(saved.get(), position, {bytes, count}) == count) return 1;
    const Report failed = unwritable(saved_path);
    saved.reset();
    report(failed);
    return 0;
}

/// Not every file system can promise it.
void tape_file_end() {
    left.clear();
    if (!saved) return;
    if (!sync_contents(saved.get())) report(unwritable(saved_path));
    saved.reset();
}

void tape_file_follow(const std::string& path) {
    tape_file_end();
    if (cassette.attached || is_named_after_tape) casfilename = path;
    is_named_after_tape = cassette.attached != 0;
    if (!cassette.saving) return;
    // Whoever made the state may have named any file: only a tape is written to.
    const bool is_tape = lower_case_extension(path) == "cas";
    const auto bytes = is_tape ? read_whole_file(path) : std::nullopt;
    if (bytes && std::ranges::equal(*bytes, cas.view())) {
        saved = open_regular_file(path, "r+b");
        saved_path = path;
    }
    if (!saved) left = path.empty() ? "tape.cas" : path;
}
