#pragma once
/// States of the machine that the user saves and goes back to: ten slots, one of them current.

constexpr int STATE_SLOTS = 10; ///< 0 to 9

int current_slot();
/// Makes the slot the current one; behind the last comes the first. The status bar tells what is in
/// it.
void choose_slot(int slot);
/// Parks the machine in the slot.
void save_slot(int slot);
/// The machine goes on as it was when it was saved to the slot. The status bar tells when nothing
/// is in it.
void load_slot(int slot);
