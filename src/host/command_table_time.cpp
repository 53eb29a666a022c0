#include "host/command_table_time.h"

#include "host/keep_history.h"
#include "host/menu.h"
#include "host/shell_state.h"
#include "host/states.h"

#include <algorithm>

namespace {

constexpr uint8_t ALT = MODIFIER_ALT;

constexpr uint32_t USUAL_HISTORY = 200; ///< MB
constexpr uint32_t SMALLEST_HISTORY = 10;
constexpr uint32_t LARGEST_HISTORY = 4000;

uint32_t possible_history(uint32_t megabytes) {
    return std::clamp(megabytes, SMALLEST_HISTORY, LARGEST_HISTORY);
}

} // namespace

std::span<const CommandRow> time_command_rows() {
    static const CommandRow rows[] = {
        // Options with a setting.
        {.id = COMMAND_KEEP_HISTORY,
         .label = "Keep &history",
         .flag = &shell_state.keep_history,
         .run = history_switched,
         .setting = {.name = "History", .read = StartStep::engine}},
        {.setting = {.name = "HistoryLimit",
                     .place = &shell_state.history_limit,
                     .initial = USUAL_HISTORY,
                     .read = StartStep::engine,
                     .possible = possible_history}},

        // States.
        {.id = COMMAND_SAVE_SLOT,
         .label = "&Save state",
         .hint = "Alt+S",
         .keys = {{{'S', ALT}}},
         .run = [] { save_slot(current_slot()); }},
        {.id = COMMAND_LOAD_SLOT,
         .label = "&Load state",
         .hint = "Alt+L",
         .keys = {{{'L', ALT}}},
         .run = [] { load_slot(current_slot()); }},
        {.id = COMMAND_NEXT_SLOT,
         .label = "&Next slot",
         .hint = "Alt++",
         .keys = {{{KEY_OEM_PLUS, ALT}}},
         .run = [] { choose_slot(current_slot() + 1); }},
        {.id = COMMAND_PREVIOUS_SLOT,
         .label = "&Previous slot",
         .hint = "Alt+-",
         .keys = {{{KEY_OEM_MINUS, ALT}}},
         .run = [] { choose_slot(current_slot() - 1); }},
    };
    return rows;
}
