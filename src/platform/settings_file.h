#pragma once
/// Settings in a TOML file: one flat table of numbers and texts. Every read looks into the file,
/// and every change replaces it as a whole under a lock, so that programs that run at the same time
/// see and keep each other's values. What else stands in the file, comments too, stays there.
/// Setting a value that the file has already writes nothing.

#include "platform/settings.h"

#include <map>
#include <string>
#include <variant>

class SettingsFile final : public Settings {
public:
    /// A path that is a symbolic link stands for the file that the link leads to.
    explicit SettingsFile(std::string path);

    bool open() override;
    void close() override;
    /// Empty at the second call: a complaint is given once.
    std::string complaint() override;
    std::optional<uint32_t> number(const std::string& name) override;
    /// Also works while the store is closed.
    std::optional<std::string> text(const std::string& name) override;
    bool set_number(const std::string& name, uint32_t value) override;
    bool set_text(const std::string& name, const std::string& value) override;
    void hold() override { holding_ = true; }
    bool flush() override;

    using Value = std::variant<uint32_t, std::string>;
    using Changes = std::map<std::string, Value>;

private:
    bool set(const std::string& name, Value value);

    std::string path_;
    std::string complaint_;
    Changes changes_; ///< not in the file yet
    bool holding_ = false;
    bool open_ = false;
};
