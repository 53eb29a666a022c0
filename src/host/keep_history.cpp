#include "host/keep_history.h"

#include "core/machine.h"
#include "host/attachments.h"
#include "host/debugging.h"
#include "host/disks.h"
#include "host/machine_callbacks.h"
#include "host/shell_state.h"
#include "platform/platform.h"
#include "time/history.h"
#include "wall/machine_host.h"

#include <cstring>

namespace {

constexpr double NANOSECONDS = 1e9; ///< in a second
constexpr uint64_t MEGABYTE = 1'000'000;

/// The configuration that is shown of the machine, beside its picture.
machine_setup_record shown;

void show_moment() {
    if (std::memcmp(&shown, &machine_setup, sizeof shown) == 0) return update_screen(1);
    shown = machine_setup;
    show_machine_anew();
}

void present_begins_or_ends(bool begins) {
    if (begins) return main_disk_hold_journals(false);
    attachments_leave();
    main_disk_hold_journals(true);
    shown = machine_setup;
}

} // namespace

void history_switched() {
    history_host = {
        .nanoseconds =
            [] {
                Clock& clock = platform().clock();
                return int64_t(double(clock.counter()) / double(clock.frequency()) * NANOSECONDS);
            },
        .companion = attachments_now,
        .present = present_begins_or_ends,
        .follow = attachments_follow,
        .show = show_moment,
    };
    const history_settings settings = {.limit = shell_state.history_limit * MEGABYTE};
    const bool wanted = shell_state.keep_history || debugging_is_on();
    if (wanted && history_is_kept()) return; // for the other of the two
    wanted ? history_start(settings) : history_stop();
}

void end_history() {
    history_show(history_last());
    history_stop();
}
