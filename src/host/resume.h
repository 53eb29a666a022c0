#pragma once
/// Going on where the program was left: with the option "Resume" the state of the machine is in
/// states/resume.tvs of the user's data directory, as it was a minute ago at most
/// (ShellOptions::resume_interval), or a second ago when a disk was written to, and exactly when
/// the program ends in order. Only one program at a time uses that file. It has all media, so that
/// only what was done since is lost if the program is killed.
///
/// None of this happens unless the program's main asks for it (ShellOptions::resumes).

/// For the start: goes on with the state that is there, if the option is on and no file is given.
/// A state that cannot be loaded is set aside and reported, and the machine starts as usual.
void resume_where_left();
/// True when the option is on and there is a state that a start without a file would go on with.
bool resume_has_state();
/// To be called between frames. Writes in a thread of its own: this call costs no more than a copy
/// of the machine.
void resume_keep_when_due();
/// To be called when the machine stands still, and may do so for long.
void resume_keep_halted();
/// Writes the present state and waits for it. False when it is not written, which is reported, or
/// not wanted.
bool resume_keep_now();
/// The option was switched. Without it there is no file.
void resume_switched();
/// For the end of the program, behind the last call of the others.
void resume_end();
