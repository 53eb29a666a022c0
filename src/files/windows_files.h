#pragma once
/// What the sources for Windows in this folder share.

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <io.h>
#include <windows.h>

/// Puts the system's last error into errno, which has fewer.
inline void set_errno() {
    const std::error_code error(int(GetLastError()), std::system_category());
    const std::error_condition known = error.default_error_condition();
    errno = known.category() == std::generic_category() ? known.value() : EIO;
}
inline bool fail_with_system_error() {
    set_errno();
    return false;
}

inline HANDLE handle_of(std::FILE* file) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
}

/// Others may read, write, rename and remove the file while it is open, as on other systems.
constexpr DWORD SHARED = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
