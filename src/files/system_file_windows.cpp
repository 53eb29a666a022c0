#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/wide_text.h"
#include "files/windows_files.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

#include <fcntl.h>
#include <windows.h>

namespace {

/// The bytes that a lock takes lie behind those of any file: who reads it is not kept from it.
constexpr DWORD LOCKED_AT = 0x7FFFFFFF;

struct Access {
    DWORD rights, disposition;
    int flags; ///< of the descriptor
};

Access access_of(std::string_view mode) {
    const bool both = mode.find('+') != mode.npos;
    const bool is_new = mode.find('x') != mode.npos;
    const DWORD rights = both ? GENERIC_READ | GENERIC_WRITE : 0;
    switch (mode[0]) {
    case 'r':
        return {rights | GENERIC_READ, OPEN_EXISTING,
                _O_BINARY | _O_NOINHERIT | (both ? _O_RDWR : _O_RDONLY)};
    case 'w':
        return {rights | GENERIC_WRITE, DWORD(is_new ? CREATE_NEW : OPEN_ALWAYS),
                _O_BINARY | _O_NOINHERIT | (both ? _O_RDWR : _O_WRONLY)};
    default:
        return {FILE_APPEND_DATA | FILE_GENERIC_READ, OPEN_ALWAYS,
                _O_BINARY | _O_NOINHERIT | _O_APPEND | _O_WRONLY};
    }
}

FileHandle stream_of(HANDLE handle, const Access& access, const char* mode) {
    if (handle == INVALID_HANDLE_VALUE) return set_errno(), FileHandle();
    const int descriptor = _open_osfhandle(intptr_t(handle), access.flags);
    if (descriptor < 0) return CloseHandle(handle), FileHandle();
    const bool both = std::string_view(mode).find('+') != std::string_view::npos;
    const char plain[] = {mode[0], 'b', both ? '+' : '\0', '\0'};
    FileHandle file(_fdopen(descriptor, plain));
    if (!file) _close(descriptor);
    return file;
}

OVERLAPPED place(uint64_t offset) {
    OVERLAPPED at = {};
    at.Offset = DWORD(offset);
    at.OffsetHigh = DWORD(offset >> 32);
    return at;
}

} // namespace

const char* const path_separators = "/\\";

std::filesystem::path system_path(const std::string& path) { return wide(path); }
std::string path_text(const std::filesystem::path& path) { return narrow(path.native()); }

FileHandle open_file(const std::string& path, const char* mode) {
    const Access access = access_of(mode);
    const HANDLE handle = CreateFileW(system_path(path).c_str(), access.rights, SHARED, nullptr,
                                      access.disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    FileHandle file = stream_of(handle, access, mode);
    // Made or found, it begins empty; asked to do that itself, the system would refuse a hidden
    // one.
    if (file && access.disposition == OPEN_ALWAYS && mode[0] == 'w') {
        const auto facts = facts_of(file.get());
        if (facts && facts->kind == SystemFileFacts::Kind::regular && !set_length(file.get(), 0))
            return {};
    }
    return file;
}

FileHandle open_without_waiting(const std::string& path, const char* mode) {
    return open_file(path, mode);
}

FileHandle open_private_file(const std::string& path) { return open_file(path, "w+b"); }

FileHandle open_nameless_file() {
    wchar_t folder[MAX_PATH + 1] = {}, name[MAX_PATH + 1] = {};
    if (GetTempPathW(MAX_PATH, folder) == 0 || GetTempFileNameW(folder, L"tvn", 0, name) == 0)
        return set_errno(), FileHandle();
    const HANDLE handle =
        CreateFileW(name, GENERIC_READ | GENERIC_WRITE | DELETE, SHARED, nullptr, CREATE_ALWAYS,
                    FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    return stream_of(handle, access_of("w+b"), "w+b");
}

std::optional<SystemFileFacts> facts_of(std::FILE* file) {
    const HANDLE handle = handle_of(file);
    BY_HANDLE_FILE_INFORMATION about = {};
    switch (GetFileType(handle)) {
    case FILE_TYPE_CHAR: return SystemFileFacts{SystemFileFacts::Kind::device, 0, true};
    case FILE_TYPE_DISK: break;
    default: return SystemFileFacts{};
    }
    if (!GetFileInformationByHandle(handle, &about)) return set_errno(), std::nullopt;
    const bool folder = about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
    return SystemFileFacts{folder ? SystemFileFacts::Kind::other : SystemFileFacts::Kind::regular,
                           uint64_t(about.nFileSizeHigh) << 32 | about.nFileSizeLow,
                           about.nNumberOfLinks > 0};
}

size_t read_at(std::FILE* file, uint64_t offset, std::span<uint8_t> bytes) {
    OVERLAPPED at = place(offset);
    DWORD count = 0;
    if (!ReadFile(handle_of(file), bytes.data(), DWORD(bytes.size()), &count, &at)) return 0;
    return count;
}

size_t write_at(std::FILE* file, uint64_t offset, std::span<const uint8_t> bytes) {
    constexpr size_t AT_ONCE = 1 << 30;
    size_t done = 0;
    while (done < bytes.size()) {
        OVERLAPPED at = place(offset + done);
        DWORD count = 0;
        const auto wanted = DWORD(std::min(bytes.size() - done, AT_ONCE));
        if (!WriteFile(handle_of(file), bytes.data() + done, wanted, &count, &at)) {
            set_errno();
            break;
        }
        done += count;
        if (count == 0) return errno = ENOSPC, done;
    }
    return done;
}

bool set_length(std::FILE* file, uint64_t length) {
    FILE_END_OF_FILE_INFO end = {};
    end.EndOfFile.QuadPart = LONGLONG(length);
    return SetFileInformationByHandle(handle_of(file), FileEndOfFileInfo, &end, sizeof end) ||
           fail_with_system_error();
}

bool sync_contents(std::FILE* file) {
    if (FlushFileBuffers(handle_of(file))) return true;
    const DWORD error = GetLastError(); // of a device, or of a handle that cannot write
    return error == ERROR_INVALID_FUNCTION || error == ERROR_INVALID_HANDLE ||
           error == ERROR_ACCESS_DENIED || error == ERROR_NOT_SUPPORTED || fail_with_system_error();
}

bool lock_file(std::FILE* file, LockWait wait) {
    OVERLAPPED at = {};
    at.Offset = LOCKED_AT;
    at.OffsetHigh = LOCKED_AT;
    const DWORD how =
        LOCKFILE_EXCLUSIVE_LOCK | (wait == LockWait::no ? LOCKFILE_FAIL_IMMEDIATELY : 0);
    return LockFileEx(handle_of(file), how, 0, 1, 0, &at) || fail_with_system_error();
}

bool may_read(const std::string& path) {
    const HANDLE handle = CreateFileW(system_path(path).c_str(), GENERIC_READ, SHARED, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return fail_with_system_error();
    return CloseHandle(handle);
}

bool may_write(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(system_path(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY))
        return errno = EACCES, false;
    const HANDLE handle = CreateFileW(system_path(path).c_str(), GENERIC_WRITE, SHARED, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return fail_with_system_error();
    return CloseHandle(handle);
}

bool remove_file(const std::string& path) {
    return DeleteFileW(system_path(path).c_str()) || fail_with_system_error();
}

bool rename_file(const std::string& from, const std::string& to) {
    return MoveFileExW(system_path(from).c_str(), system_path(to).c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) ||
           fail_with_system_error();
}

bool make_private_folder(const std::string& path) {
    return CreateDirectoryW(system_path(path).c_str(), nullptr) || fail_with_system_error();
}

bool remove_folder(const std::string& path) {
    return RemoveDirectoryW(system_path(path).c_str()) || fail_with_system_error();
}

FileIdentity file_identity(const std::string& path) {
    const HANDLE handle = CreateFileW(system_path(path).c_str(), 0, SHARED, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return {};
    BY_HANDLE_FILE_INFORMATION about = {};
    const bool known = GetFileInformationByHandle(handle, &about);
    CloseHandle(handle);
    if (!known) return {};
    return {about.dwVolumeSerialNumber, uint64_t(about.nFileIndexHigh) << 32 | about.nFileIndexLow};
}

std::string canonical_path(const std::string& path) {
    const HANDLE handle = CreateFileW(system_path(path).c_str(), 0, SHARED, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    std::error_code error;
    if (handle == INVALID_HANDLE_VALUE) { // what leads nowhere: without ".." at least
        const auto whole = std::filesystem::weakly_canonical(system_path(path), error);
        return error ? path : path_text(whole);
    }
    std::wstring text(32768, L'\0'); // as long as a path can be
    text.resize(GetFinalPathNameByHandleW(handle, text.data(), DWORD(text.size()), 0));
    CloseHandle(handle);
    // The form that takes any length is not what a user knows.
    constexpr std::wstring_view ANY_LENGTH = L"\\\\?\\", SERVER = L"UNC\\";
    if (text.empty()) return path;
    if (text.starts_with(ANY_LENGTH) && text.size() < MAX_PATH + ANY_LENGTH.size()) {
        text.erase(0, ANY_LENGTH.size());
        if (text.starts_with(SERVER)) text.replace(0, SERVER.size(), L"\\\\");
    }
    return narrow(text);
}
