#include "platform/win32/win32_context.h"

std::wstring wide(std::string_view text) {
    if (text.empty()) return {};
    const int bytes = int(text.size());
    std::wstring result(size_t(MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0)),
                        L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, result.data(), int(result.size()));
    return result;
}

std::string narrow(std::wstring_view text) {
    if (text.empty()) return {};
    const int units = int(text.size());
    std::string result(
        size_t(WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), units, result.data(), int(result.size()), nullptr,
                        nullptr);
    return result;
}
