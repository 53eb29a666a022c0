#pragma once
/// Keys, joysticks and keypads that a script holds, beside those of the host.

#include <cstdint>
#include <optional>
#include <string_view>

struct machine_input;
struct machine_stick;

/// A key by what is printed on it, "A" or "RETURN", or "PAD0" to "PAD9" of the keypads; nothing
/// when the machine has none of this name.
std::optional<unsigned> held_key_named(std::string_view name);
void hold_key(unsigned key, bool down);
/// Number 0 or 1; nothing: as the host's.
void hold_stick(unsigned number, const std::optional<machine_stick>& stick);
void release_held_keys();
/// Fills in what is held.
void press_held_keys(machine_input& input);
