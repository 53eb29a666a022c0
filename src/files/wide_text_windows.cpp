#include "files/wide_text.h"

#include <windows.h>

std::wstring wide(std::string_view text) {
    if (text.empty()) return {};
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), int(text.size()), nullptr, 0);
    std::wstring result(size_t(length), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), int(text.size()), result.data(), length);
    return result;
}

std::string narrow(std::wstring_view text) {
    if (text.empty()) return {};
    const int count = int(text.size());
    const int length =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), count, nullptr, 0, nullptr, nullptr);
    std::string result(size_t(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), count, result.data(), length, nullptr, nullptr);
    return result;
}
