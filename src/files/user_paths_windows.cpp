#include "files/user_paths.h"
#include "files/wide_text.h"

#include <cstdlib>

#include <windows.h>

#include <shlobj.h>

namespace {

/// The variable first: whoever sets it for a program wants its files elsewhere.
std::wstring user_directory() {
    if (const wchar_t* given = _wgetenv(L"APPDATA"); given && *given) return given;
    std::wstring folder;
    wchar_t* known = nullptr;
    if (SHGetKnownFolderPath(FOLDERID_RoamingAppData, 0, nullptr, &known) == S_OK) folder = known;
    CoTaskMemFree(known);
    return folder.empty() ? L"." : folder;
}

} // namespace

std::string user_data_directory() { return narrow(user_directory()) + "\\Tarvelin"; }

std::string user_config_directory() { return user_data_directory(); }

std::string executable_directory() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), DWORD(path.size()));
        if (length == 0) return {};
        if (length < path.size()) {
            path.resize(length);
            break;
        }
        path.resize(2 * path.size());
    }
    const size_t end = path.find_last_of(L"\\/");
    return end == path.npos ? std::string() : narrow(std::wstring_view(path).substr(0, end));
}

std::vector<std::string> program_arguments(int /*count*/, char** /*arguments*/) {
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int n = 1; n < count; ++n) arguments.push_back(narrow(words[n]));
    LocalFree(words);
    return arguments;
}
