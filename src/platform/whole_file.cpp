#include "platform/whole_file.h"

#include "platform/file_handle.h"

#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t OWNERS_CHOICE = 0666; ///< less what the user's mask takes off

/// The file itself where `path` is a link.
std::filesystem::path real_path(const std::string& path) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(path, error);
    return error ? std::filesystem::path(path) : real;
}

/// The new name has to be on disk as well as the contents.
bool sync_folder(const std::filesystem::path& folder) {
    const int descriptor =
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool done = fsync(descriptor) == 0;
    ::close(descriptor);
    return done;
}

/// What a file made anew gets, or what the one to be replaced has.
mode_t permissions_of(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0) return status.st_mode & 07777;
    const mode_t mask = umask(0);
    umask(mask);
    return OWNERS_CHOICE & ~mask;
}

bool write_through(int descriptor, std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0) return false;
        bytes = bytes.subspan(size_t(count));
    }
    return fsync(descriptor) == 0;
}

} // namespace

std::optional<std::vector<uint8_t>> read_whole_file(const std::string& path, size_t limit) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return {};
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
    const std::filesystem::path target = real_path(path);
    std::string next = target.string() + ".XXXXXX";
    const int descriptor = mkostemp(next.data(), O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool written = write_through(descriptor, bytes) &&
                         fchmod(descriptor, permissions_of(target.string())) == 0;
    ::close(descriptor);
    if (written && std::rename(next.c_str(), target.c_str()) == 0) {
        return sync_folder(target.parent_path());
    }
    ::unlink(next.c_str());
    return false;
}
