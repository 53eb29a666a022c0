#include "host/speed_commands.h"

#include "core/pacing/pacing.h"
#include "core/pacing/run_ahead.h"
#include "core/pacing/speed.h"
#include "host/menu.h"
#include "wall/machine_host.h"

void step_slow_motion() {
    next_slow_motion();
    const uint32_t slow = speed_choices.slow;
    check_menu_item(COMMAND_SLOW_MOTION, slow > 1);
    const char* const texts[] = {"Normal speed", "Slow motion: half speed",
                                 "Slow motion: a quarter of the speed"};
    StatusBarText("%s", texts[slow / 2]);
}

void choose_run_ahead(uint32_t frames) {
    frames_ahead = frames;
    for (uint32_t n = 0; n <= MOST_FRAMES_AHEAD; ++n) {
        check_menu_item(COMMAND_RUN_AHEAD + int(n), n == frames_ahead);
    }
}

void show_true_frame() {
    if (frames_ahead) update_screen(1);
}
