#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file_steps.h"
#include "files/windows_files.h"

#include <vector>

namespace {

/// Of a file, which another that takes its place gets as well.
constexpr DWORD KEPT_ATTRIBUTES =
    FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
constexpr int TRIES = 10; ///< virus scanners and indexers look into new files for a moment
constexpr DWORD TRY_AGAIN_MS = 20;

class Handle {
public:
    Handle(const std::string& path, DWORD rights)
        : handle_(CreateFileW(system_path(path).c_str(), rights, SHARED, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~Handle() {
        if (open()) CloseHandle(handle_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    bool open() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

private:
    HANDLE handle_;
};

std::nullopt_t fail(int error) {
    errno = error;
    return std::nullopt;
}

/// Who may do what with the file, unless it has that from its folder. A failure leaves the
/// folder's.
void copy_access_list(const std::string& from, const std::string& to) {
    constexpr SECURITY_INFORMATION LIST = DACL_SECURITY_INFORMATION;
    const auto old = system_path(from), made = system_path(to);
    DWORD size = 0;
    GetFileSecurityW(old.c_str(), LIST, nullptr, 0, &size);
    std::vector<uint8_t> list(size);
    if (size && GetFileSecurityW(old.c_str(), LIST, list.data(), size, &size))
        SetFileSecurityW(made.c_str(), LIST, list.data());
}

} // namespace

std::optional<WriteTarget> write_target(const std::string& path) {
    using enum WriteTarget::Kind;
    const DWORD attributes = GetFileAttributesW(system_path(path).c_str());
    const bool found = attributes != INVALID_FILE_ATTRIBUTES;
    if (found && (attributes & FILE_ATTRIBUTE_DIRECTORY)) return fail(EISDIR);
    if (found && (attributes & FILE_ATTRIBUTE_READONLY)) return fail(EACCES);
    // A link without its file: the system makes that through the link.
    if (found && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) && !path_exists(path))
        open_file(path, "ab");
    const Handle handle(path, GENERIC_WRITE | FILE_READ_ATTRIBUTES);
    if (!handle.open()) {
        set_errno();
        return errno == ENOENT ? std::optional(WriteTarget{missing, lasting_path(path)})
                               : std::nullopt;
    }
    if (GetFileType(handle.get()) != FILE_TYPE_DISK) return WriteTarget{device, path};
    BY_HANDLE_FILE_INFORMATION about = {};
    if (!GetFileInformationByHandle(handle.get(), &about)) return set_errno(), std::nullopt;
    return WriteTarget{about.nNumberOfLinks > 1 ? in_place : WriteTarget::Kind::file,
                       canonical_path(path)};
}

bool write_to_device(const std::string& path, std::span<const uint8_t> bytes) {
    const Handle device(path, GENERIC_WRITE);
    DWORD count = 0;
    return (device.open() &&
            WriteFile(device.get(), bytes.data(), DWORD(bytes.size()), &count, nullptr) &&
            count == bytes.size()) ||
           fail_with_system_error();
}

bool make_whole_file(const std::string& path, std::span<const uint8_t> bytes,
                     const std::string& like) {
    const DWORD old = GetFileAttributesW(system_path(like).c_str());
    FileHandle file = open_file(path, "wbx");
    if (!file) return false;
    bool done = write_at(file.get(), 0, bytes) == bytes.size() && sync_contents(file.get());
    done = std::fclose(file.release()) == 0 && done;
    const int error = errno;
    if (done && old != INVALID_FILE_ATTRIBUTES && (old & KEPT_ATTRIBUTES))
        SetFileAttributesW(system_path(path).c_str(), old & KEPT_ATTRIBUTES);
    if (!done) remove_file(path);
    errno = error;
    return done;
}

bool take_place(const std::string& file, const WriteTarget& target) {
    // Renaming is one stroke. ReplaceFile is not: it moves the old file away first, and whoever
    // ends the program in between leaves neither. So only what it would keep is copied before.
    if (target.kind == WriteTarget::Kind::file) copy_access_list(target.path, file);
    for (int n = 0; n < TRIES; ++n) {
        if (rename_file(file, target.path)) return true;
        if (errno != EBUSY && errno != EACCES) return false;
        Sleep(TRY_AGAIN_MS);
    }
    return false;
}

bool stays_in_place() { return errno == EACCES || errno == EPERM || errno == EROFS; }

FileHandle open_to_overwrite(const std::string& path) { return open_file(path, "r+b"); }

bool reserve(std::FILE* file, size_t size) {
    const auto facts = facts_of(file);
    if (!facts || size <= facts->size) return true;
    FILE_ALLOCATION_INFO room = {};
    room.AllocationSize.QuadPart = LONGLONG(size);
    if (SetFileInformationByHandle(handle_of(file), FileAllocationInfo, &room, sizeof room))
        return true;
    set_errno();
    return errno != ENOSPC;
}

/// The file system sees to its names.
void sync_folder(const std::string& /*folder*/) {}
