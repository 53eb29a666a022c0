#include "platform/win32/win32_program.h"

#include "platform/win32/win32_context.h"

#include <cstdio>

#include <shellapi.h>

namespace {

bool leads_somewhere(DWORD standard_handle) {
    const HANDLE handle = GetStdHandle(standard_handle);
    return handle && GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

} // namespace

std::vector<std::string> win32_arguments() {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int n = 1; words && n < count; ++n) arguments.push_back(narrow(words[n]));
    LocalFree(words);
    return arguments;
}

void win32_attach_console() {
    const bool output = leads_somewhere(STD_OUTPUT_HANDLE);
    const bool errors = leads_somewhere(STD_ERROR_HANDLE);
    if ((output && errors) || !AttachConsole(ATTACH_PARENT_PROCESS)) return;
    SetConsoleOutputCP(CP_UTF8);
    if (!output) std::freopen("CONOUT$", "w", stdout);
    if (!errors) std::freopen("CONOUT$", "w", stderr);
}
