#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

/// A name that only one holder on this computer can have at a time, this program's other parts
/// included. It is free again when the object goes, or when its program ends in any way. No file is
/// made.
class NameClaim {
public:
    enum class Result { held, taken, impossible }; ///< impossible: the host has no such names

    /// Names longer than some 90 bytes are cut.
    explicit NameClaim(std::string_view name);
    ~NameClaim();
    NameClaim(NameClaim&& other) noexcept { *this = std::move(other); }
    NameClaim& operator=(NameClaim&& other) noexcept {
        std::swap(handle_, other.handle_);
        std::swap(result_, other.result_);
        return *this;
    }

    Result result() const { return result_; }

private:
    intptr_t handle_ = -1; ///< of the system
    Result result_ = Result::impossible;
};
