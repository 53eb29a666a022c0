#include "host/settings/choices.h"

#include "core/machine_events.h"

MachineChoices choices;

void choices_apply() {
    machine_apply(event_kind::graphics_board, choices.graphics_board);
    machine_apply(event_kind::clean_sound, choices.clean_sound);
    machine_apply(event_kind::printer, choices.printer);
    machine_apply(event_kind::startup_pattern, int32_t(choices.startup_pattern));
    machine_apply(event_kind::choose, 0, 0,
                  bytes_of(machine_choice{choices.custom, choices.active}));
    machine_apply(event_kind::configure, int32_t(choices.active), 1);
}
