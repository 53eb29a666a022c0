#pragma once
/// The one log of the live machine's events, for all who want them: the history and replay files.
/// Without a reader no log is kept, which costs nothing.

#include "core/machine_events.h"

#include <functional>
#include <span>

/// Gets the events since the last call, in order.
using EventReader = std::function<void(std::span<const machine_event>)>;
/// Called when the machine has become another one (a state was loaded), which no event tells.
using StateReader = std::function<void()>;

/// From now on the reader gets every event. Returns the number by which it is removed.
int event_feed_add(EventReader events, StateReader another_state = {});
/// The reader gets what is left, with a moment behind it inside of a frame, and then no more.
void event_feed_remove(int reader);
/// Hands the events to all readers: to be called after each live frame, and with a moment inside
/// of a frame, before the machine becomes another one.
void event_feed_frame();
/// Hands the events to this reader only: what is done to a machine of the past is nothing to the
/// others, unless the machine goes on from there, which event_feed_another_state tells them.
void event_feed_past(int reader);
/// To be called when the machine has become another one and is to run on from there; after
/// event_feed_frame, which hands out what the former one did.
void event_feed_another_state();
