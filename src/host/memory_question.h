#pragma once
/// The firmware asks "MEM SIZE?" when the machine is switched on, and Enter is what nearly
/// everybody answers. In a window the program presses it when nobody touches a key for a while. The
/// firmware itself asks as ever, and the key comes as an input like any other, so that recordings
/// hold it.

struct machine_input;

/// To be called after each complete frame of the live machine.
void memory_question_frame_ran();
/// Holds Enter in the input while the question is being answered; to be called for each input that
/// the machine gets.
void memory_question_answer(machine_input& input);
