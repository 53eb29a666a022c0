#pragma once
/// Directions and buttons of game pads as keys of the machine: for all programs, and for single
/// ones, which are told by the hash of their file (loaded_program.h). They are kept in the file
/// "pad-keys" of the user's data directory.
///
/// The machine gets them with its other keys, so they are in replays and histories like those.

#include "platform/joystick.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

struct machine_input;

constexpr int PADS = 2; ///< the machine's joysticks

/// What an input of a pad does: PAD_DOES_USUAL, 1 + the position of a key of the machine (row x 8 +
/// column), or PAD_KEYPAD + a digit of the pad's keypad.
using PadTarget = uint8_t;
constexpr PadTarget PAD_DOES_USUAL = 0; ///< without any key: joystick, fire button, back in time
constexpr PadTarget PAD_KEYPAD = 65;
constexpr PadTarget PAD_TARGETS = PAD_KEYPAD + 10;

using PadKeys = std::array<std::array<PadTarget, PAD_INPUTS>, PADS>;

/// The text of a key; null for a number that is no key of the machine.
const char* pad_target_name(PadTarget target);
/// What the host's key is on the machine, in the present mapping; nothing for one that the machine
/// does not have.
std::optional<PadTarget> pad_target_of(uint8_t host_key);

constexpr uint64_t ALL_PROGRAMS = 0; ///< in place of a program's hash
/// At most this many programs are kept; the one that was set up first is then forgotten.
constexpr int PAD_PROGRAMS = 500;
/// Nothing when none are set. Text in the file that makes no sense is skipped.
std::optional<PadKeys> stored_pad_keys(uint64_t program);
/// Nothing takes them away. False when the file cannot be written, which is reported.
bool store_pad_keys(uint64_t program, const std::optional<PadKeys>& keys);
/// What is set for one program holds for another as well, unless none is.
void pad_keys_copy(uint64_t from, uint64_t to);

/// The loaded program is another one.
void pad_keys_follow_program();
/// In force: those of the loaded program, else those of all programs.
const PadKeys& pad_keys();

/// Bits by PadInput of what is held on the pad, directions included.
uint32_t held_pad_inputs(int pad);
/// Presses the machine's keys as the pads are at this moment.
void press_pad_keys(machine_input& input);
