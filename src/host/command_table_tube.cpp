#include "host/command_table_tube.h"

#include "host/menu.h"
#include "host/picture_tube.h"

namespace {

template <TubeLook LOOK>
CommandRow look_row(const char* label, const char* tip) {
    return {.id = COMMAND_TUBE + int(LOOK),
            .label = label,
            .tip = tip,
            .run = [] { choose_tube_look(LOOK); },
            .marked = [] { return shown_tube_look() == LOOK; }};
}

} // namespace

std::span<const CommandRow> tube_command_rows() {
    static const CommandRow rows[] = {
        {.setting = {.name = "PictureTube",
                     .place = NumberAccess{kept_tube_look, keep_tube_look},
                     .initial = 0,
                     .read = StartStep::engine}},
        look_row<TubeLook::off>("&Off", "The picture as the machine sends it."),
        look_row<TubeLook::soft>("&Soft",
                                 "A little of a picture tube: fine lines and a faint glow."),
        look_row<TubeLook::strong>("S&trong", "Scan lines, shadow mask, glow and a bulging face."),
    };
    return rows;
}
