#include "host/command_table_time.h"

#include "host/menu.h"
#include "host/states.h"

namespace {

constexpr uint8_t ALT = MODIFIER_ALT;

} // namespace

std::span<const CommandRow> time_command_rows() {
    static const CommandRow rows[] = {
        // Options with a setting.

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
