#pragma once
/// States of the machine that the user saves and goes back to: ten slots, one of them current, and
/// files under names of the user's. The slots are files in the folder "states" of the user's data
/// directory: slot-N.tvs, and slot-N.bak for what the slot held before.
///
/// What is done is told in the status bar, what fails is reported. A state that cannot be loaded
/// leaves the machine as it is.

#include "time/state_file.h"

#include <cstdint>
#include <string>

constexpr int STATE_SLOTS = 10; ///< 0 to 9

int current_slot();
/// Makes the slot the current one; behind the last comes the first, and the other way round.
void choose_slot(int slot);

struct SlotContent {
    enum class Kind : uint8_t { empty, full, unreadable };
    Kind kind = Kind::empty;
    state_description description; ///< of a full one
    std::string problem;           ///< of an unreadable one
};
SlotContent slot_content(int slot);
/// In a few words, as part of a line.
std::string slot_text(const SlotContent& content);
/// What was running, and when.
std::string description_text(const state_description& about);
/// Date and time of day at the user's place, to minutes.
std::string state_time(const state_description& about);

/// What the slot held is kept, see undo_slot.
void save_slot(int slot);
void load_slot(int slot);
/// Empties the slot; undo_slot fills it again.
void delete_slot(int slot);
/// Whether the slot held something else before it was saved to or emptied the last time.
bool slot_can_be_undone(int slot);
/// The slot holds again what it held before; a second call takes that back.
void undo_slot(int slot);

void save_state_as(const std::string& path);
void load_state(const std::string& path);
/// Whether a state was loaded in this run.
bool load_can_be_undone();
/// The machine goes on as it was before a state was loaded; a second call takes that back.
void undo_load();

/// The path of a file in the folder of states.
std::string state_file_path(const std::string& name);
/// Forgets what belongs to one run of the program.
void end_states();
