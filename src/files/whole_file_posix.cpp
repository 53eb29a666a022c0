#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file_steps.h"

#include <cerrno>
#include <filesystem>
#include <string_view>
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

std::nullopt_t fail(int error) {
    errno = error;
    return std::nullopt;
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
bool copy_permissions(const std::string& from, int to) {
    struct stat old = {}, now = {};
    if (stat(from.c_str(), &old) != 0 || fstat(to, &now) != 0) return false;
    mode_t mode = old.st_mode & PERMISSIONS;
    const bool group_kept = old.st_gid == now.st_gid || fchown(to, uid_t(-1), old.st_gid) == 0;
    if (!group_kept) mode &= ~mode_t(S_ISGID | S_IRWXG) | (mode & S_IRWXO) << 3;
    if (old.st_uid != now.st_uid && fchown(to, old.st_uid, gid_t(-1)) != 0)
        mode &= ~mode_t(S_ISUID);
    if (fchmod(to, mode) != 0) return false;
    if (group_kept) copy_attributes(from, to);
    return true;
}

} // namespace

std::optional<WriteTarget> write_target(const std::string& path) {
    using enum WriteTarget::Kind;
    struct stat old = {};
    const bool exists = stat(path.c_str(), &old) == 0;
    if (exists && S_ISDIR(old.st_mode)) return fail(EISDIR);
    if (exists && !S_ISREG(old.st_mode)) return WriteTarget{device, path};
    if (exists && !may_write(path)) return {};
    const std::string target = end_of_links(path);
    if (target.empty()) return fail(ELOOP);
    if (!exists) return WriteTarget{missing, target};
    struct stat named = {}; // a descriptor under /proc may lead to a file without a name
    const bool found = stat(target.c_str(), &named) == 0 && named.st_ino == old.st_ino;
    if (found && old.st_nlink == 1) return WriteTarget{WriteTarget::Kind::file, target};
    return WriteTarget{in_place, found ? target : path};
}

bool write_to_device(const std::string& path, Bytes bytes) {
    // Without a reader a pipe would not open before there is one.
    Descriptor device(::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!device.open()) return false;
    const int flags = fcntl(device.number(), F_GETFL);
    if (flags < 0 || fcntl(device.number(), F_SETFL, flags & ~O_NONBLOCK) < 0) return false;
    return write_all(device.number(), bytes) && device.close();
}

bool make_whole_file(const std::string& path, Bytes bytes, const std::string& like) {
    const mode_t mode = like.empty() ? OWNERS_CHOICE : S_IRUSR | S_IWUSR;
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
    if (!file.open()) return false;
    const bool done = write_all(file.number(), bytes) &&
                      (like.empty() || copy_permissions(like, file.number())) &&
                      sync(file.number()) && file.close();
    const int error = errno;
    if (!done) remove_file(path);
    errno = error;
    return done;
}

bool take_place(const std::string& file, const WriteTarget& target) {
    if (!rename_file(file, target.path)) return false;
    sync_folder(folder_of(target.path));
    return true;
}

bool stays_in_place() { return errno == EACCES || errno == EPERM || errno == EROFS; }

FileHandle open_to_overwrite(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    return FileHandle(descriptor < 0 ? nullptr : fdopen(descriptor, "wb"));
}

bool reserve(std::FILE* file, size_t size) {
    if (size == 0 || fallocate(fileno(file), FALLOC_FL_KEEP_SIZE, 0, off_t(size)) == 0) return true;
    return errno != ENOSPC && errno != EDQUOT && errno != EFBIG;
}

/// The new name has to survive a crash as well as the contents. A folder that may not be read is
/// left out.
void sync_folder(const std::string& folder) {
    const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.open()) sync(opened.number());
}
