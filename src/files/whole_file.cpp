#include "files/whole_file.h"

#include "files/file_names.h"
#include "files/system_file.h"
#include "files/unfinished_writes.h"
#include "files/whole_file_steps.h"

#include <cerrno>
#include <random>

namespace {

using Bytes = std::span<const uint8_t>;

/// Short, so that there is room for it beside a file whose name is as long as can be.
constexpr std::string_view TEMPORARY = ".tarvelin-";

void remove_quietly(const std::string& path) {
    const int error = errno;
    remove_file(path);
    errno = error;
}

bool replace_by_name(const WriteTarget& target, Bytes bytes) {
    const bool exists = target.kind == WriteTarget::Kind::file;
    const std::string next =
        path_in(folder_of(target.path), std::string(TEMPORARY) + random_name());
    const WriteNote note(next, target.path);
    if (!make_whole_file(next, bytes, exists ? target.path : std::string())) return false;
    if (take_place(next, target)) return true;
    remove_quietly(next);
    return false;
}

/// Replaces the whole contents of the open file and writes them through to the disk.
bool overwrite(std::FILE* file, Bytes bytes) {
    return write_at(file, 0, bytes) == bytes.size() && set_length(file, bytes.size()) &&
           sync_contents(file);
}

bool write_in_place(const std::string& target, Bytes bytes) {
    FileHandle file = open_to_overwrite(target);
    if (!file) return false;
    const auto old = read_whole_file(target);
    const std::string copy = rescue_copy_name(target);
    WriteNote note(copy, target);
    if (make_whole_file(copy, bytes, {})) {
        sync_folder(folder_of(copy));
        note.temporary_is_complete();
    }
    bool whole = true; // either way
    bool done = reserve(file.get(), bytes.size());
    if (done) {
        done = overwrite(file.get(), bytes);
        const int error = errno;
        whole = done || (old && overwrite(file.get(), *old));
        errno = error;
    }
    if (whole) remove_quietly(copy);
    if (!whole) note.leave();
    return done && std::fclose(file.release()) == 0; // some file systems tell only now
}

} // namespace

std::optional<std::vector<uint8_t>> (*read_in_archive)(const std::string& path,
                                                       size_t limit) = nullptr;

std::string random_name() {
    static std::random_device random;
    constexpr std::string_view LETTERS = "abcdefghijklmnopqrstuvwxyz234567";
    constexpr size_t LENGTH = 12;
    std::string name;
    while (name.size() < LENGTH) name += LETTERS[random() % LETTERS.size()];
    return name;
}

bool is_temporary_name(std::string_view name) { return name.starts_with(TEMPORARY); }

std::optional<std::vector<uint8_t>> read_whole_file(const std::string& path, size_t limit) {
    if (!is_plain_file(path)) {
        return read_in_archive ? read_in_archive(path, limit) : std::nullopt;
    }
    const FileHandle file = open_file(path, "rb");
    if (!file) return {};
    std::vector<uint8_t> bytes;
    uint8_t block[16384];
    while (const size_t count = std::fread(block, 1, sizeof block, file.get())) {
        bytes.insert(bytes.end(), block, block + count);
        if (bytes.size() > limit) return {};
    }
    if (std::ferror(file.get())) return {};
    return bytes;
}

bool replace_whole_file(const std::string& path, std::span<const uint8_t> bytes) {
    const auto target = write_target(path);
    if (!target) return false;
    switch (target->kind) {
    case WriteTarget::Kind::device: return write_to_device(path, bytes);
    case WriteTarget::Kind::in_place: return write_in_place(target->path, bytes);
    case WriteTarget::Kind::missing: return replace_by_name(*target, bytes);
    case WriteTarget::Kind::file: break;
    }
    return replace_by_name(*target, bytes) ||
           (stays_in_place() && write_in_place(target->path, bytes));
}

bool replace_whole_file(const std::string& path, std::string_view text) {
    return replace_whole_file(path, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}
