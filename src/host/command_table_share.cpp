#include "host/command_table_share.h"

#include "host/links.h"
#include "host/menu.h"

std::span<const CommandRow> share_command_rows() {
    static const CommandRow rows[] = {
        {.id = COMMAND_SHARE_PROGRAM,
         .label = "&Program as a link",
         .tip = "Copies a link that starts the BASIC program in the machine.",
         .run = share_program},
        {.id = COMMAND_SHARE_REPLAY,
         .label = "&Replay as a link",
         .tip = "Copies a link that shows what happened in the last minute.",
         .run = share_replay},
    };
    return rows;
}
