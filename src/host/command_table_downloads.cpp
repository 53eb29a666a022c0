#include "host/command_table_downloads.h"

#include "host/downloads.h"
#include "host/menu.h"

namespace {

template <unsigned DRIVE>
CommandRow disk_row(const char* label) {
    return {.id = COMMAND_DOWNLOAD_DISK + int(DRIVE),
            .label = label,
            .tip = "Downloads the disk as it is now.",
            .run = [] { download_disk(DRIVE); }};
}

} // namespace

std::span<const CommandRow> download_command_rows() {
    static const CommandRow rows[] = {
        disk_row<0>("Drive :&0"),
        disk_row<1>("Drive :&1"),
        disk_row<2>("Drive :&2"),
        disk_row<3>("Drive :&3"),
        {.id = COMMAND_DOWNLOAD_TAPE,
         .label = "&Cassette",
         .tip = "Downloads the cassette as it is now.",
         .run = download_cassette},
    };
    return rows;
}
