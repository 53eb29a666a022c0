#pragma once
#include <string>
#include <string_view>

/// A name that only one holder on this computer can have at a time, this program's other parts
/// included. It is free again when the object goes, or when its program ends in any way. No file is
/// made.
class NameClaim {
public:
    enum class Result { held, taken, impossible }; ///< impossible: the host has no such names

    /// Names longer than some 90 bytes are cut.
    explicit NameClaim(std::string_view name);
    ~NameClaim();
    NameClaim(NameClaim&& other) noexcept;
    NameClaim& operator=(NameClaim&& other) noexcept;

    Result result() const { return result_; }

private:
    int socket_ = -1;
    Result result_ = Result::impossible;
};
