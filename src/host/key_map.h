#pragma once
/// Turns the keys of the host's keyboard into those of the machine's, in two mappings: by the place
/// of the keys, or by the characters that they give in the host's layout.

#include "platform/keyboard.h"

#include <cstdint>
#include <optional>

struct machine_input;

/// Builds the symbolic map for the host's present layout, switches to the symbolic mapping, and
/// takes every key for released.
void host_keyboard_init();
/// Builds the map alone, which is nothing to the machine.
void host_keyboard_learn();
/// Takes every key for released, by host and machine.
void host_keyboard_reset();
/// Fills in keyboard and keypads as the host's keys are at this moment. No key is held directly.
void read_host_keys(machine_input& input);

// Keys of the machine by position: row x 8 + column, below 64.

/// What is printed on the key; null where the machine has none.
const char* machine_key_name(unsigned position);
/// The key that the host's key presses alone in the present mapping; nothing for one that the
/// machine does not have.
std::optional<uint8_t> machine_key_of(uint8_t host_key);
/// The host's key that presses a key of the machine, with the modifiers that it needs, in one of
/// the mappings; nothing when no key does. With `shifted` in the symbolic mapping: the one for the
/// character that the key gives with the machine's SHIFT.
std::optional<KeyForCharacter> host_key_for(unsigned position, bool symbolic, bool shifted = false);
