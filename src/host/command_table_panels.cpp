#include "host/command_table_panels.h"

#include "host/media_panels.h"
#include "host/menu.h"

std::span<const CommandRow> panel_command_rows() {
    static const CommandRow rows[] = {
        {.id = COMMAND_TAPE_PANEL,
         .label = "Ca&ssette panel...",
         .tip = "What is on the cassette; winds to a program.",
         .run = ui_tape_panel},
        {.id = COMMAND_DISK_PANEL,
         .label = "Disk director&y...",
         .tip = "What is on the disks in the drives.",
         .run = ui_disk_panel},
    };
    return rows;
}
