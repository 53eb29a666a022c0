#include "host/command_table_pads.h"

#include "host/menu.h"
#include "host/pad_dialog.h"

std::span<const CommandRow> pad_command_rows() {
    static const CommandRow rows[] = {
        {.id = COMMAND_PAD_KEYS,
         .label = "Game &pad keys...",
         .tip = "Puts buttons and directions of a game pad on keys of the machine.",
         .run = ui_pad_keys},
    };
    return rows;
}
