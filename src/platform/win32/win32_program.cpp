#include "platform/win32/win32_program.h"

#include "platform/win32/win32_context.h"

#include <cstdio>

namespace {

bool leads_somewhere(DWORD standard_handle) {
    const HANDLE handle = GetStdHandle(standard_handle);
    return handle && GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

} // namespace

void win32_attach_console() {
    const bool output = leads_somewhere(STD_OUTPUT_HANDLE);
    const bool errors = leads_somewhere(STD_ERROR_HANDLE);
    if ((output && errors) || !AttachConsole(ATTACH_PARENT_PROCESS)) return;
    SetConsoleOutputCP(CP_UTF8);
    if (!output) std::freopen("CONOUT$", "w", stdout);
    if (!errors) std::freopen("CONOUT$", "w", stderr);
}
