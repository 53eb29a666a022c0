#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/system_file.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t OWNERS_CHOICE = 0666; ///< permissions of a new file, before the user's mask

FileHandle stream_of(int descriptor, const char* mode) {
    FileHandle file(descriptor < 0 ? nullptr : fdopen(descriptor, mode));
    if (!file && descriptor >= 0) close(descriptor);
    return file;
}

} // namespace

const char* const path_separators = "/";

std::filesystem::path system_path(const std::string& path) { return path; }
std::string path_text(const std::filesystem::path& path) { return path.native(); }

FileHandle open_file(const std::string& path, const char* mode) {
    return FileHandle(std::fopen(path.c_str(), (std::string(mode) + "e").c_str()));
}

FileHandle open_without_waiting(const std::string& path, const char* mode) {
    const std::string_view letters = mode;
    const bool both = letters.find('+') != letters.npos;
    int flags = both ? O_RDWR : letters[0] == 'r' ? O_RDONLY : O_WRONLY;
    if (letters[0] == 'w') flags |= O_CREAT | O_TRUNC;
    if (letters[0] == 'a') flags |= O_CREAT | O_APPEND;
    return stream_of(open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC, OWNERS_CHOICE), mode);
}

FileHandle open_private_file(const std::string& path) {
    const int flags = O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC;
    return stream_of(open(path.c_str(), flags, S_IRUSR | S_IWUSR), "w+b");
}

FileHandle open_nameless_file() { return FileHandle(std::tmpfile()); }

std::optional<SystemFileFacts> facts_of(std::FILE* file) {
    using Kind = SystemFileFacts::Kind;
    struct stat status = {};
    if (fstat(fileno(file), &status) != 0) return {};
    const Kind kind = S_ISREG(status.st_mode)   ? Kind::regular
                      : S_ISCHR(status.st_mode) ? Kind::device
                                                : Kind::other;
    return SystemFileFacts{kind, uint64_t(status.st_size), status.st_nlink > 0};
}

size_t read_at(std::FILE* file, uint64_t offset, std::span<uint8_t> bytes) {
    const ssize_t got = pread(fileno(file), bytes.data(), bytes.size(), off_t(offset));
    return got > 0 ? size_t(got) : 0;
}

size_t write_at(std::FILE* file, uint64_t offset, std::span<const uint8_t> bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count =
            pwrite(fileno(file), bytes.data() + done, bytes.size() - done, off_t(offset + done));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        done += size_t(count);
    }
    return done;
}

bool set_length(std::FILE* file, uint64_t length) {
    return ftruncate(fileno(file), off_t(length)) == 0;
}

bool sync_contents(std::FILE* file) {
    while (fdatasync(fileno(file)) != 0) {
        if (errno == EINVAL || errno == EROFS) return true;
        if (errno != EINTR) return false;
    }
    return true;
}

bool lock_file(std::FILE* file, LockWait wait) {
    while (flock(fileno(file), LOCK_EX | (wait == LockWait::no ? LOCK_NB : 0)) != 0) {
        if (errno != EINTR) return false;
    }
    return true;
}

bool may_read(const std::string& path) { return access(path.c_str(), R_OK) == 0; }
bool may_write(const std::string& path) { return access(path.c_str(), W_OK) == 0; }
bool remove_file(const std::string& path) { return unlink(path.c_str()) == 0; }
bool rename_file(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0;
}
bool make_private_folder(const std::string& path) { return mkdir(path.c_str(), S_IRWXU) == 0; }
bool remove_folder(const std::string& path) { return rmdir(path.c_str()) == 0; }

FileIdentity file_identity(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return {};
    return {uint64_t(status.st_dev), uint64_t(status.st_ino)};
}

std::string canonical_path(const std::string& path) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::weakly_canonical(path, error);
    return error ? path : real.string();
}
