#pragma once
/// Going back in time in the window. The machine becomes what it was, the picture shows it, and the
/// film bar shows where that is in the history. Meanwhile no frame is run, nothing is heard, no
/// file of the host is written, and the keys are the bar's.
///
/// Either a key is held, and time runs backwards until it is let go; or the bar is open and the
/// machine stands still, and keys and mouse move in the history. Nothing is lost until the machine
/// goes on from another moment than the present.

#include "platform/events.h"

#include <cstdint>
#include <optional>

/// The command: opens the bar, and the machine pauses. With the bar open it is rewind_end. The
/// status bar tells when no history is kept.
void rewind_open();
/// The machine is the one of the present again, and the bar is gone.
void rewind_end();
/// To be called before the machine is run otherwise than turn by turn: it goes on from the moment
/// that is shown.
void rewind_stay_here();

/// Would rewind_take_event take it?
bool rewind_wants(const Event& event);
/// Takes the key that leads back, and what is for the bar: its keys, and the pointer in it. False:
/// it is for somebody else.
bool rewind_take_event(const Event& event);

/// Once a turn, before a frame is run. Moves in the history. Microseconds until the next picture
/// while time runs backwards and no frame may be run, or nothing.
std::optional<int64_t> rewind_turn();
