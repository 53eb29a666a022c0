#pragma once
/// Settings in the registry, as values of one key of the user: numbers as REG_DWORD, texts as
/// REG_SZ. Every change is there at once.

#include "platform/settings.h"
#include "platform/win32/win32_windows.h"

class Win32Settings final : public Settings {
public:
    Win32Settings() = default;
    Win32Settings(const Win32Settings&) = delete;
    Win32Settings& operator=(const Win32Settings&) = delete;
    ~Win32Settings() override { close(); }

    bool open() override;
    void close() override;
    std::string complaint() override { return {}; }
    std::optional<uint32_t> number(const std::string& name) override;
    /// Also works while the store is closed.
    std::optional<std::string> text(const std::string& name) override;
    bool set_number(const std::string& name, uint32_t value) override;
    bool set_text(const std::string& name, const std::string& value) override;

private:
    bool set(const std::string& name, DWORD type, const void* data, size_t bytes);

    HKEY key_ = nullptr;
};
