#pragma once
#include <cstdint>
#include <span>
#include <string>

/// Files for the user, of a host whose file system only the program sees.
struct Downloads {
    virtual ~Downloads() = default;
    /// Hands the bytes out as a file of this name, which has no folder. False when that fails.
    virtual bool offer(const std::string& name, std::span<const uint8_t> bytes) = 0;
    /// The user's file of this path is written to its end, and will not change any more unless he
    /// asks for it again. The host may hand it out.
    virtual void saved(const std::string& path) = 0;
};
