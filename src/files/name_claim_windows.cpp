#include "files/name_claim.h"
#include "files/wide_text.h"

#include <algorithm>
#include <utility>

#include <windows.h>

NameClaim::NameClaim(std::string_view name) {
    constexpr size_t LONGEST = 90;
    std::string text(name.substr(0, LONGEST));
    std::ranges::replace(text, '\\', '/'); // which stands for a kind of name here
    // Known to all sessions of this computer, and gone with the process that made it.
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, wide("Global\\tarvelin " + text).c_str());
    const DWORD error = GetLastError();
    if (!mutex && error != ERROR_ACCESS_DENIED) return;
    result_ = mutex && error != ERROR_ALREADY_EXISTS ? Result::held : Result::taken;
    if (mutex && result_ == Result::taken) {
        CloseHandle(mutex);
    } else {
        handle_ = intptr_t(mutex);
    }
}

NameClaim::~NameClaim() {
    if (handle_ > 0) CloseHandle(HANDLE(handle_));
}
