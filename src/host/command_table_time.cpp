#include "host/command_table_time.h"

#include "core/pacing/pacing.h"
#include "core/pacing/run_ahead.h"
#include "core/pacing/speed.h"
#include "host/commands.h"
#include "host/keep_history.h"
#include "host/menu.h"
#include "host/replays.h"
#include "host/resume.h"
#include "host/rewind.h"
#include "host/shell_state.h"
#include "host/speed_commands.h"
#include "host/states.h"
#include "host/states_panel.h"

#include <algorithm>

namespace {

constexpr uint8_t ALT = MODIFIER_ALT;
constexpr uint8_t SHIFT = MODIFIER_SHIFT;

constexpr uint32_t SMALLEST_HISTORY = 10; ///< MB
constexpr uint32_t LARGEST_HISTORY = 4000;

uint32_t possible_history(uint32_t megabytes) {
    return std::clamp(megabytes, SMALLEST_HISTORY, LARGEST_HISTORY);
}

template <uint32_t FRAMES>
CommandRow run_ahead_row(const char* label) {
    return {.id = COMMAND_RUN_AHEAD + int(FRAMES),
            .label = label,
            .tip = "Shows what a key does so many frames earlier.",
            .run = [] { choose_run_ahead(FRAMES); },
            .marked = [] { return frames_ahead == FRAMES; }};
}

} // namespace

std::span<const CommandRow> time_command_rows() {
    static const CommandRow rows[] = {
        // Options with a setting.
        {.id = COMMAND_KEEP_HISTORY,
         .label = "Keep &history",
         .tip = "Remembers all that the machine does, to go back in.",
         .flag = &shell_state.keep_history,
         .run = history_switched,
         .setting = {.name = "History", .read = StartStep::engine}},
        {.setting = {.name = "HistoryLimit",
                     .place = &shell_state.history_limit,
                     .read = StartStep::engine,
                     .possible = possible_history}},
        {.setting = {.name = "RunAhead",
                     .place = &frames_ahead,
                     .initial = 0,
                     .read = StartStep::options,
                     .possible = [](uint32_t n) { return std::min(n, MOST_FRAMES_AHEAD); }}},
        {.id = COMMAND_FAST_TAPES,
         .label = "&Fast tapes",
         .tip = "Loads recordings of cassettes as fast as the computer can.",
         .flag = &speed_choices.fast_tapes,
         .setting = {.name = "TapeTurbo", .initial = 0, .read = StartStep::options}},
        {.id = COMMAND_RESUME,
         .label = "&Resume where I left",
         .tip = "The next start goes on where this one ends.",
         .flag = &shell_state.resume,
         .run = resume_switched,
         .setting = {.name = "Resume", .initial = 0, .read = StartStep::engine}},
        {.id = COMMAND_ASK_MEMORY_SIZE,
         .label = "&Wait at MEM SIZE?",
         .tip = "The start waits for your answer to the question MEM SIZE.",
         .flag = &shell_state.ask_memory_size,
         .setting = {.name = "AskMemorySize", .initial = 0, .read = StartStep::engine}},

        // Speed.
        {.id = COMMAND_TURBO,
         .label = "T&urbo",
         .hint = "F7",
         .tip = "The machine runs as fast as the computer can.",
         .flag = &speed_choices.turbo},
        {.id = COMMAND_SLOW_MOTION,
         .label = "Slow &motion",
         .hint = "F8",
         .tip = "Half the speed, a quarter, and back to normal.",
         .run = step_slow_motion,
         .marked = [] { return speed_choices.slow > 1; }},
        run_ahead_row<0>("&0 frames"),
        run_ahead_row<1>("&1 frame"),
        run_ahead_row<2>("&2 frames"),
        run_ahead_row<3>("&3 frames"),
        run_ahead_row<4>("&4 frames"),

        // States.
        {.id = COMMAND_STATES,
         .label = "&States...",
         .hint = "Alt+P",
         .tip = "Ten slots for the whole machine, with pictures.",
         .keys = {{{'P', ALT}}},
         .run = ui_states},
        {.id = COMMAND_SAVE_SLOT,
         .label = "&Save state",
         .hint = "Alt+S",
         .tip = "Keeps the machine in the current slot.",
         .keys = {{{'S', ALT}}},
         .run = [] { save_slot(current_slot()); }},
        {.id = COMMAND_LOAD_SLOT,
         .label = "&Load state",
         .hint = "Alt+L",
         .tip = "Goes on with the machine in the current slot.",
         .keys = {{{'L', ALT}}},
         .run = [] { load_slot(current_slot()); }},
        {.id = COMMAND_NEXT_SLOT,
         .label = "&Next slot",
         .hint = "Alt++",
         .tip = "Makes the next slot the current one.",
         .keys = {{{KEY_OEM_PLUS, ALT}, {KEY_OEM_PLUS, ALT | SHIFT}}},
         .run = [] { choose_slot(current_slot() + 1); }},
        {.id = COMMAND_PREVIOUS_SLOT,
         .label = "&Previous slot",
         .hint = "Alt+-",
         .tip = "Makes the previous slot the current one.",
         .keys = {{{KEY_OEM_MINUS, ALT}}},
         .run = [] { choose_slot(current_slot() - 1); }},
        {.id = COMMAND_LOAD_STATE,
         .label = "&Open state...",
         .tip = "Goes on with the machine in a state file.",
         .run = [] { with_file(DIALOG_LOAD_STATE, load_state); }},
        {.id = COMMAND_SAVE_STATE,
         .label = "Save state &as...",
         .tip = "Keeps the machine in a file under a name of yours.",
         .run = [] { with_file(DIALOG_SAVE_STATE, save_state_as); }},

        // The history.
        {.id = COMMAND_FILM_BAR,
         .label = "&Rewind...",
         .hint = "Alt+R",
         .tip = "Goes back in time.",
         .keys = {{{'R', ALT}}},
         .run = rewind_open},

        // Replays.
        {.id = COMMAND_RECORD_REPLAY,
         .label = "Re&cord replay...",
         .tip = "Records what happens to the machine, until you choose it again.",
         .run = record_replay},
        {.id = COMMAND_PLAY_REPLAY,
         .label = "Pla&y replay...",
         .tip = "Plays what was recorded; choose it again to take over.",
         .run = play_replay},
    };
    return rows;
}
