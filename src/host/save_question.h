#pragma once
/// The question which file to save a tape to. The firmware asks it in the middle of a frame, and
/// the machine waits (MACHINE_WAITS) until it has been put to the user and answered.

#include "wall/machine_host.h"

#include <optional>
#include <string>

/// The callback save_question of machine_host: the answer, or SAVE_NOT_YET as long as there is
/// none.
save_answer take_save_answer();
/// Puts the question to the user, by the dialog of saved tapes; true when it is answered already.
/// Otherwise the shell is held until it is, and the machine goes on with the next frame.
bool ask_save_question();
/// An answer that has not been taken was for another state of the machine.
void forget_save_answer();
/// The next save goes to this file without a question; an empty path takes that back.
void save_next_to(const std::string& path);
/// Where the next save goes without a question; else empty.
const std::string& next_save_file();
/// The user's answer: a file to be made, or none (nothing, or an empty name).
void answer_save_question(const std::optional<std::string>& path);
