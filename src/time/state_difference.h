#pragma once
/// What differs between two arrays of bytes: the records of two states of the machine, or a medium
/// before and after.

#include <cstdint>
#include <span>
#include <vector>

/// The pieces of `bytes` that differ from `base`, which may have another length, for
/// difference_apply with the same base. Empty when nothing differs.
std::vector<uint8_t> difference_of(std::span<const uint8_t> base, std::span<const uint8_t> bytes);
/// Makes `bytes` again. 0 when the difference is damaged or does not belong to a base of this
/// length.
int difference_apply(std::span<const uint8_t> base, std::span<const uint8_t> difference,
                     std::vector<uint8_t>& bytes);
