#pragma once
#include "platform/settings.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>

/// Settings that live as long as the platform does. The driver may set some before they are opened.
struct HeadlessSettings final : public Settings {
    bool open() override { return opened = available; }
    void close() override { opened = false; }
    std::string complaint() override { return std::exchange(complaint_text, {}); }
    std::optional<uint32_t> number(const std::string& name) override {
        const auto value = value_of<uint32_t>(name);
        if (value) uses += name + " ";
        return value;
    }
    std::optional<std::string> text(const std::string& name) override {
        uses += name + " ";
        return value_of<std::string>(name);
    }
    bool set_number(const std::string& name, uint32_t value) override {
        uses += name + "=" + std::to_string(value) + " ";
        if (available) values[name] = value;
        return available;
    }
    bool set_text(const std::string& name, const std::string& value) override {
        uses += name + "=" + value + " ";
        if (available) values[name] = value;
        return available;
    }

    std::map<std::string, std::variant<uint32_t, std::string>> values;
    bool available = true; ///< off: it cannot be opened
    bool opened = false;
    std::string complaint_text; ///< told once
    /// In order: numbers found, texts looked for, and "name=value" for what was set.
    std::string uses;

private:
    template <typename Type>
    std::optional<Type> value_of(const std::string& name) const {
        const auto found = values.find(name);
        if (!available || found == values.end()) return {};
        const Type* value = std::get_if<Type>(&found->second);
        return value ? std::optional<Type>(*value) : std::nullopt;
    }
};
