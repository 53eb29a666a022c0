#include "files/whole_file.h"

#include "files/file_handle.h"
#include "files/unfinished_writes.h"

#include <cerrno>
#include <filesystem>
#include <random>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Bytes = std::span<const uint8_t>;

constexpr mode_t OWNERS_CHOICE = 0666; ///< permissions of a new file, before the user's mask
constexpr mode_t PERMISSIONS = 07777;
constexpr int MOST_LINKS = 40; ///< one after the other, as the system follows them

/// Short, so that there is room for it beside a file whose name is as long as can be.
constexpr std::string_view TEMPORARY = ".tarvelin-";

/// A file descriptor that closes itself and leaves errno alone while it does.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        const int error = errno;
        if (number_ >= 0) ::close(number_);
        errno = error;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool open() const { return number_ >= 0; }
    int number() const { return number_; }
    /// Some file systems tell only now that there was no room.
    bool close() { return ::close(std::exchange(number_, -1)) == 0 || errno == EINTR; }

private:
    int number_;
};

bool fail(int error) {
    errno = error;
    return false;
}

void remove_file(const std::string& path) {
    const int error = errno;
    ::unlink(path.c_str());
    errno = error;
}

bool write_all(int descriptor, Bytes bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        bytes = bytes.subspan(size_t(count));
    }
    return true;
}

/// Writes what is buffered to the disk. Devices, pipes and some file systems cannot do that, which
/// is no failure.
bool sync(int descriptor) {
    while (fsync(descriptor) != 0) {
        if (errno == EINVAL || errno == EROFS) return true;
        if (errno != EINTR) return false;
    }
    return true;
}

/// Writes the folder to the disk: the new name has to survive a crash as well as the contents. A
/// folder that may not be read is left out.
void sync_folder(const fs::path& folder) {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.open()) sync(opened.number());
}

/// The file that `path` leads to over links, which need not exist; empty where they go in circles.
std::string end_of_links(const std::string& path) {
    std::error_code error;
    fs::path target = fs::absolute(path, error);
    if (error) target = path;
    for (int n = 0; n < MOST_LINKS; ++n) {
        const fs::path next = fs::read_symlink(target, error);
        if (error) return target.string();
        target = target.parent_path() / next;
    }
    return {};
}

bool write_to_device(const std::string& path, Bytes bytes) {
    // Without a reader a pipe would not open before there is one.
    Descriptor device(::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!device.open()) return false;
    const int flags = fcntl(device.number(), F_GETFL);
    if (flags < 0 || fcntl(device.number(), F_SETFL, flags & ~O_NONBLOCK) < 0) return false;
    return write_all(device.number(), bytes) && device.close();
}

/// Copies the user attributes and the access list of the old file, as far as they can be set.
void copy_attributes(const std::string& from, int to) {
    char names[4096];
    char value[4096];
    const ssize_t length = listxattr(from.c_str(), names, sizeof names);
    for (ssize_t at = 0; at < length; at += ssize_t(std::string_view(names + at).size()) + 1) {
        const std::string_view name(names + at);
        if (!name.starts_with("user.") && name != "system.posix_acl_access") continue;
        const ssize_t size = getxattr(from.c_str(), names + at, value, sizeof value);
        if (size >= 0) fsetxattr(to, names + at, value, size_t(size), 0);
    }
}

/// Gives the new file owner, group and permissions of the old one. When the group cannot be kept,
/// the new group gets only the permissions that everybody has.
bool copy_permissions(const struct stat& old, const std::string& from, int to) {
    struct stat now = {};
    if (fstat(to, &now) != 0) return false;
    mode_t mode = old.st_mode & PERMISSIONS;
    const bool group_kept = old.st_gid == now.st_gid || fchown(to, uid_t(-1), old.st_gid) == 0;
    if (!group_kept) mode &= ~mode_t(S_ISGID | S_IRWXG) | (mode & S_IRWXO) << 3;
    if (old.st_uid != now.st_uid && fchown(to, old.st_uid, gid_t(-1)) != 0)
        mode &= ~mode_t(S_ISUID);
    if (fchmod(to, mode) != 0) return false;
    if (group_kept) copy_attributes(from, to);
    return true;
}

/// Makes the file with these bytes and writes it through to the disk. When that fails, the file is
/// removed again. `old` (with the path `like`) has the permissions to give it; null for those of a
/// new file.
bool make_file(const std::string& path, Bytes bytes, const struct stat* old,
               const std::string& like) {
    const mode_t mode = old ? S_IRUSR | S_IWUSR : OWNERS_CHOICE;
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (!file.open()) return false;
    const bool done = write_all(file.number(), bytes) &&
                      (!old || copy_permissions(*old, like, file.number())) &&
                      sync(file.number()) && file.close();
    if (!done) remove_file(path);
    return done;
}

bool replace_by_name(const std::string& target, Bytes bytes, const struct stat* old) {
    const fs::path folder = fs::path(target).parent_path();
    const std::string next = (folder / (std::string(TEMPORARY) + random_name())).string();
    const WriteNote note(next, target);
    if (!make_file(next, bytes, old, target)) return false;
    if (std::rename(next.c_str(), target.c_str()) != 0) {
        remove_file(next);
        return false;
    }
    sync_folder(folder);
    return true;
}

/// Replaces the whole contents of the open file and writes them through to the disk.
bool overwrite(int descriptor, Bytes bytes) {
    return lseek(descriptor, 0, SEEK_SET) == 0 && write_all(descriptor, bytes) &&
           ftruncate(descriptor, off_t(bytes.size())) == 0 && sync(descriptor);
}

/// Whether there is room for so many bytes. Not every file system can tell.
bool reserve(int descriptor, size_t size) {
    if (size == 0 || fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, off_t(size)) == 0) return true;
    return errno != ENOSPC && errno != EDQUOT && errno != EFBIG;
}

bool write_in_place(const std::string& target, Bytes bytes) {
    Descriptor file(::open(target.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file.open()) return false;
    const auto old = read_whole_file(target);
    const std::string copy = rescue_copy_name(target);
    WriteNote note(copy, target);
    if (make_file(copy, bytes, nullptr, {})) {
        sync_folder(fs::path(copy).parent_path());
        note.temporary_is_complete();
    }
    bool whole = true; // either way
    bool done = reserve(file.number(), bytes.size());
    if (done) {
        done = overwrite(file.number(), bytes);
        const int error = errno;
        whole = done || (old && overwrite(file.number(), *old));
        errno = error;
    }
    if (whole) remove_file(copy);
    if (!whole) note.leave();
    return done && file.close();
}

/// Looks at errno: no file can be made in that folder, or none may take the place of the old one.
/// It is then written in place.
bool stays_in_place() { return errno == EACCES || errno == EPERM || errno == EROFS; }

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
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
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
    struct stat old = {};
    const bool exists = stat(path.c_str(), &old) == 0;
    if (exists && S_ISDIR(old.st_mode)) return fail(EISDIR);
    if (exists && !S_ISREG(old.st_mode)) return write_to_device(path, bytes);
    if (exists && access(path.c_str(), W_OK) != 0) return false;
    const std::string target = end_of_links(path);
    if (target.empty()) return fail(ELOOP);
    if (!exists) return replace_by_name(target, bytes, nullptr);
    struct stat named = {}; // a descriptor under /proc may lead to a file without a name
    const bool found = stat(target.c_str(), &named) == 0 && named.st_ino == old.st_ino;
    if (!found || old.st_nlink > 1) return write_in_place(found ? target : path, bytes);
    return replace_by_name(target, bytes, &old) ||
           (stays_in_place() && write_in_place(target, bytes));
}

bool replace_whole_file(const std::string& path, std::string_view text) {
    return replace_whole_file(path, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}
