#pragma once
/// Inside of the history: its record, for the sources that work on it.

#include "core/machine_state.h"
#include "time/history.h"
#include "time/history_events.h"
#include "time/history_run.h"
#include "time/history_states.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace history_parts {

struct History {
    history_settings settings;
    int reader = 0;
    HistoryEvents events;
    HistoryStates states;

    // The present.
    int64_t picture = 0;         ///< the last frame that has shown one
    uint32_t pictures_shown = 0; ///< the beam's counter of them
    shared_bytes companion;
    bool acted = false;       ///< something was done to the machine since the last frame
    bool lone_state = false;  ///< the next frame's state stays for good
    bool has_arrived = false; ///< another state was loaded, and no frame has been run since
    int64_t taken_at = 0;     ///< when the last state was taken, in ns
    int64_t taken_in = 0;     ///< how long it took
    uint64_t thin_above = 0;  ///< bytes

    // While the past is looked at.
    bool live = true;
    HistoryRun place; ///< where the live machine is
    machine_state present;
    shared_bytes present_companion;
    shared_bytes followed;              ///< the companion that the host has followed
    std::vector<machine_event> pending; ///< done to the machine at the place that is shown
    int64_t picture_then = 0;           ///< `picture` and
    uint32_t pictures_shown_then = 0;   ///< `pictures_shown` at the frame that is shown
};

extern std::optional<History> history;

/// The machine of the state becomes the live one. An empty text, or what is wrong.
std::string load(const HistoryState& state);
/// The same, and the host follows its companion.
std::string load_and_follow(const HistoryState& state);
void follow(const shared_bytes& companion);
/// The present is parked.
void leave_present();
/// The parked present is the live machine again; nothing is shown yet.
void take_up_present();
/// The line engine's picture is drawn, and the frame buffer shown.
void show_frame_buffer();

} // namespace history_parts
