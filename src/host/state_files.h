#pragma once
/// Parked states of the whole program and their files.

#include "core/machine_state.h"
#include "time/state_file.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

/// The machine, and what it belongs to.
struct parked_state {
    machine_state machine;
    state_description about;
};

/// Parks a copy of the live machine.
parked_state park_machine();
/// Makes the state the live machine; drives, tape and printer belong to its files again. What was
/// written to a disk is in its journal before.
void unpark_machine(const parked_state& state);

/// Disks and tapes that are as in their files need not be in a state.
enum class MediaInState : uint8_t { all, changed };
/// The state as a file. Any thread may do this while the machine runs.
std::vector<uint8_t> pack_state(const parked_state& state, MediaInState media = MediaInState::all);
/// Why the file cannot be loaded, as part of a sentence; empty when `state` holds it.
std::string unpack_state(std::span<const uint8_t> file, parked_state& state);
std::string read_state_file(const std::string& path, parked_state& state);
std::string describe_state_file(const std::string& path, state_description& about);

/// As unpack_state. When a medium or a ROM image is missing and somebody is there, asks for its
/// file. `done` gets why the state cannot be loaded, or an empty text and the state.
using StateDone = std::function<void(const std::string& problem, const parked_state& state)>;
void unpack_state_asking(std::span<const uint8_t> file, const StateDone& done);

/// Goes on with the state in a file, or in the bytes of one. What fails is reported, and the
/// machine stays as it is.
void load_state_bytes(const std::string& name, std::span<const uint8_t> file);
void load_state_file(const std::string& path);
/// Replaces the file by the machine's state; tells in the status bar, or reports what fails.
void save_state_file(const std::string& path, MediaInState media);
