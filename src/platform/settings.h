#pragma once
#include <cstdint>
#include <optional>
#include <string>

/// Typed named values in one store per user.
struct Settings {
    virtual ~Settings() = default;
    /// Opens or creates the store. False when that fails; then nothing is found and nothing is
    /// kept.
    virtual bool open() = 0;
    virtual void close() = 0;
    /// Why the existing store could not be used and was put aside; empty when nothing is wrong.
    virtual std::string complaint() = 0;
    /// Nothing when the value is missing or has another type.
    virtual std::optional<uint32_t> number(const std::string& name) = 0;
    virtual std::optional<std::string> text(const std::string& name) = 0;
    /// Sets a value. It is on disk when the call returns, unless changes are held back; false when
    /// it cannot be kept.
    virtual bool set_number(const std::string& name, uint32_t value) = 0;
    virtual bool set_text(const std::string& name, const std::string& value) = 0;
    /// Holds changes back from now on, so that many of them are written at once. Reading finds them
    /// all the same.
    virtual void hold() {}
    /// Writes what is held back, and stops holding back; close does so, too. False when it cannot
    /// be kept.
    virtual bool flush() { return true; }
};
