#pragma once
#include <cstdint>
#include <optional>
#include <string>

/// Typed named values in one store per user.
struct Settings {
    virtual ~Settings() = default;
    /// Nothing when the value is missing or has another type.
    virtual std::optional<uint32_t> number(const std::string& name) = 0;
    virtual std::optional<std::string> text(const std::string& name) = 0;
    /// Each returns false when the store cannot be written.
    virtual bool set_number(const std::string& name, uint32_t value) = 0;
    virtual bool set_text(const std::string& name, const std::string& value) = 0;
};
