#pragma once
/// The machine's keyboard on the screen. It shows what is pressed, whoever presses it, and which
/// key of the host that is; clicks and fingers press its keys. They reach the machine the way that
/// the host's keys do, so recordings hold them too.
///
/// The keys that change others (SHIFT, MOD SEL, RPT, CTRL) stay down after a click until the next
/// key was pressed, after a second click until a third one. Held by a finger, they act on what
/// other fingers press meanwhile.

#include "host/shell_state.h"
#include "platform/events.h"
#include "platform/geometry.h"
#include "platform/window.h"

struct machine_input;

/// Shows the keyboard there, or hides it. Menu and setting follow, and the window's size where it
/// has to.
void show_screen_keyboard(KeyboardPlace place);
/// The commands: to that place, or hidden when it is there already.
void toggle_screen_keyboard(KeyboardPlace place);
/// Shows the keyboard where the settings say. Before the window gets its size.
void start_screen_keyboard();

/// Notes where the floating keyboard is, for the settings.
void remember_floating_keyboard();

/// What the keyboard takes of a client area of that width, when it is docked in it.
int docked_keyboard_height(int client_width);
/// The client area has another size, or the whole screen is used or no longer used.
void fit_screen_keyboard();

/// Is the event for the keyboard, and of use?
bool screen_keyboard_wants(const Event& event);
void screen_keyboard_take_event(const Event& event);

/// Presses the keys that are held on the keyboard.
void press_screen_keys(machine_input& input);
bool screen_keys_are_held();
/// A frame has been run, or none is to come. A click lasts two frames at least.
void screen_keys_frame_ran();

/// The host's layout has changed.
void relabel_screen_keyboard();
/// Once a turn: draws what has changed.
void update_screen_keyboard();
/// Draws all of it.
void draw_screen_keyboard();
