#include "host/command_table_files.h"

#include "host/disks.h"
#include "host/menu.h"
#include "host/new_media.h"
#include "media/wd1771.h"

namespace {

template <unsigned DRIVE>
CommandRow protection_row(const char* label) {
    return {.id = COMMAND_PROTECT_DISK + int(DRIVE),
            .label = label,
            .tip = "Protects the disk in the drive, or lets it be written to again.",
            .run = [] { main_disk_switch_protection(DRIVE); },
            .marked = [] { return wd1771.disks[DRIVE].write_protected != 0; }};
}

} // namespace

std::span<const CommandRow> file_command_rows() {
    static const CommandRow rows[] = {
        {.id = COMMAND_NEW_DISK,
         .label = "&New disk...",
         .tip = "Makes a formatted disk and puts it into the first empty drive.",
         .run = new_disk},
        {.id = COMMAND_NEW_TAPE,
         .label = "New &tape...",
         .tip = "Makes an empty cassette, which the next CSAVE goes to.",
         .run = new_tape},
        protection_row<0>("Drive :&0"),
        protection_row<1>("Drive :&1"),
        protection_row<2>("Drive :&2"),
        protection_row<3>("Drive :&3"),
    };
    return rows;
}
