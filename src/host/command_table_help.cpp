#include "host/command_table_help.h"

#include "host/commands.h"
#include "host/dialogs/dialogs.h"
#include "host/menu.h"
#include "host/shell_state.h"

std::span<const CommandRow> help_command_rows() {
    static const CommandRow rows[] = {
        {.id = COMMAND_MONITOR_F12,
         .label = "&Monitor with F12 only",
         .tip = "Esc does not open the monitor; F12 opens and closes it.",
         .flag = &shell_state.monitor_f12,
         .run = monitor_key_switched,
         .setting = {.name = "MonitorF12",
                     .place = NumberAccess{[] { return uint32_t(shell_state.monitor_f12); },
                                           [](uint32_t on) {
                                               shell_state.monitor_f12 = on != 0;
                                               monitor_key_switched();
                                           }},
                     .initial = 0,
                     .read = StartStep::engine}},
        {.id = COMMAND_MANUAL,
         .label = "Man&ual",
         .tip = "Opens the manual in the browser.",
         .run = [] { ui_open_manual("manual.html"); }},
        {.id = COMMAND_KEYS,
         .label = "&Keys",
         .tip = "Shows in the browser what each key does.",
         .run = [] { ui_open_manual("keys.html"); }},
    };
    return rows;
}
