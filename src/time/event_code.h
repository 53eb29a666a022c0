#pragma once
/// Events of the machine as few bytes, the same on every host, and back.
///
/// A block stands alone: it needs nothing of those before it. An event of an everyday frame (its
/// end, keys as before, a fragment as before, the tape's sound) takes one byte in a list of codes
/// and none to two in a list of times; deflated, a block of a second or more becomes much smaller.
///
/// PC is kept only where a replay looks at it, of events that are applied and of moments; of the
/// others it comes back as some value.

#include "core/machine_events.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// The most events of a block.
constexpr size_t EVENTS_OF_BLOCK = 1 << 20;

/// The bytes of a block of up to EVENTS_OF_BLOCK events; they are not deflated yet.
std::vector<uint8_t> events_to_bytes(std::span<const machine_event> events);
/// Appends the events of the block to `events`. Returns an empty text; or what is wrong with the
/// bytes, and then some of the events may have been appended.
std::string events_from_bytes(std::span<const uint8_t> bytes, std::vector<machine_event>& events);
