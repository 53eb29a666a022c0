#include "platform/win32/win32_settings.h"

#include "platform/win32/win32_context.h"

#include <limits>

namespace {

constexpr const wchar_t* KEY = L"Software\\Emulators\\Tarvelin";

} // namespace

bool Win32Settings::open() {
    close();
    return RegCreateKeyExW(HKEY_CURRENT_USER, KEY, 0, nullptr, REG_OPTION_NON_VOLATILE,
                           KEY_ALL_ACCESS, nullptr, &key_, nullptr) == ERROR_SUCCESS;
}

void Win32Settings::close() {
    if (key_) RegCloseKey(key_);
    key_ = nullptr;
}

std::optional<uint32_t> Win32Settings::number(const std::string& name) {
    DWORD type = REG_NONE;
    uint32_t value = 0;
    DWORD bytes = sizeof value;
    const LSTATUS result = RegQueryValueExW(key_, wide(name).c_str(), nullptr, &type,
                                            reinterpret_cast<BYTE*>(&value), &bytes);
    const bool good = key_ && result == ERROR_SUCCESS && type == REG_DWORD && bytes == sizeof value;
    return good ? std::optional(value) : std::nullopt;
}

/// A value that grows between the two questions reads as missing.
std::optional<std::string> Win32Settings::text(const std::string& name) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, KEY, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) return {};
    const std::wstring value_name = wide(name);
    DWORD type = REG_NONE;
    DWORD bytes = 0;
    LSTATUS result = RegQueryValueExW(key, value_name.c_str(), nullptr, &type, nullptr, &bytes);
    std::wstring text((bytes + 1) / sizeof(wchar_t), L'\0');
    if (result == ERROR_SUCCESS) {
        result = RegQueryValueExW(key, value_name.c_str(), nullptr, &type,
                                  reinterpret_cast<BYTE*>(text.data()), &bytes);
    }
    RegCloseKey(key);
    if (result != ERROR_SUCCESS || type != REG_SZ) return {};
    text.resize(bytes / sizeof(wchar_t));
    // Other programs store the zero at the end of a text with it.
    if (text.ends_with(L'\0')) text.pop_back();
    return narrow(text);
}

bool Win32Settings::set(const std::string& name, DWORD type, const void* data, size_t bytes) {
    if (!key_ || bytes > std::numeric_limits<DWORD>::max()) return false;
    return RegSetValueExW(key_, wide(name).c_str(), 0, type, static_cast<const BYTE*>(data),
                          DWORD(bytes)) == ERROR_SUCCESS;
}

bool Win32Settings::set_number(const std::string& name, uint32_t value) {
    return set(name, REG_DWORD, &value, sizeof value);
}

bool Win32Settings::set_text(const std::string& name, const std::string& value) {
    const std::wstring text = wide(value);
    return set(name, REG_SZ, text.data(), text.size() * sizeof(wchar_t));
}
