#pragma once
/// The history while the program runs: on or off as the option says, and the shell in step with the
/// moment that is shown.

/// For the start of the program, and when the option or the debugger has been switched.
void history_switched();
/// For the end of the program, before anything is taken out or saved: a past that is being looked
/// at becomes the present again.
void end_history();
