#include "host/command_table_media.h"

#include "host/disks.h"
#include "host/media_menu.h"
#include "host/menu.h"
#include "host/new_media.h"

#include <utility>
#include <vector>

namespace {

template <unsigned DRIVE>
CommandRow new_disk_row() {
    return {.id = COMMAND_NEW_DISK_IN + int(DRIVE),
            .label = "&New disk...",
            .tip = "Makes a formatted disk and puts it into this drive.",
            .run = [] { new_disk_in(DRIVE); }};
}

template <unsigned DRIVE>
CommandRow copy_row() {
    return {.id = COMMAND_COPY_DISK + int(DRIVE),
            .label = "Save a &copy...",
            .tip = "Writes the disk as it is now to another file.",
            .run = [] { main_disk_save_copy(DRIVE); }};
}

template <unsigned... DRIVE>
std::vector<CommandRow> make_rows(std::integer_sequence<unsigned, DRIVE...> /*all*/) {
    return {new_disk_row<DRIVE>()...,
            copy_row<DRIVE>()...,
            {.id = COMMAND_MEDIA_MENU,
             .label = "Disks and cassette",
             .tip = "Shows what can be done with the disks and the cassette.",
             .keys = {{{KEY_MENU, 0}, {KEY_F10, MODIFIER_SHIFT}}},
             .run = [] { popup_media_menu(ALL_MEDIA); }}};
}

} // namespace

std::span<const CommandRow> media_command_rows() {
    static const std::vector<CommandRow> rows =
        make_rows(std::make_integer_sequence<unsigned, DISK_DRIVES>());
    return rows;
}
