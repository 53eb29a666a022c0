#pragma once
/// Settings in a TOML file: one flat table of numbers and texts. Every read looks into the file,
/// and every change replaces it as a whole under a lock, so that programs that run at the same time
/// see and keep each other's values.

#include "platform/settings.h"

#include <string>

class SettingsFile final : public Settings {
public:
    /// A path that is a symbolic link stands for the file that the link leads to.
    explicit SettingsFile(std::string path);

    bool open() override;
    void close() override { open_ = false; }
    /// Told once.
    std::string complaint() override;
    std::optional<uint32_t> number(const std::string& name) override;
    /// Also works while the store is closed.
    std::optional<std::string> text(const std::string& name) override;
    bool set_number(const std::string& name, uint32_t value) override;
    bool set_text(const std::string& name, const std::string& value) override;

private:
    std::string path_;
    std::string complaint_;
    bool open_ = false;
};
