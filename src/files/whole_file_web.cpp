#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file_steps.h"

#include <cerrno>

// The files of a page are in its memory: they have one name and no owner, and renaming cannot be
// interrupted. What becomes of them when the page is closed is up to its script.

std::optional<WriteTarget> write_target(const std::string& path) {
    using enum WriteTarget::Kind;
    if (!path_exists(path)) return WriteTarget{missing, lasting_path(path)};
    if (is_plain_file(path)) return WriteTarget{WriteTarget::Kind::file, canonical_path(path)};
    errno = EISDIR;
    return {};
}

bool write_to_device(const std::string& /*path*/, std::span<const uint8_t> /*bytes*/) {
    return false;
}

bool make_whole_file(const std::string& path, std::span<const uint8_t> bytes,
                     const std::string& /*like*/) {
    FileHandle file = open_file(path, "wbx");
    if (!file) return false;
    const bool done = write_at(file.get(), 0, bytes) == bytes.size();
    const int error = errno;
    if (!done) remove_file(path);
    errno = error;
    return done;
}

bool take_place(const std::string& file, const WriteTarget& target) {
    return rename_file(file, target.path);
}

bool stays_in_place() { return false; }

FileHandle open_to_overwrite(const std::string& path) { return open_file(path, "r+b"); }

bool reserve(std::FILE* /*file*/, size_t /*size*/) { return true; }

void sync_folder(const std::string& /*folder*/) {}
