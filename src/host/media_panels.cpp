#include "host/media_panels.h"

#include "platform/platform.h"

namespace {

constexpr int64_t REFRESHES_PER_SECOND = 5;
int64_t refreshed = 0; ///< in counts of the host's clock

} // namespace

void media_panels_turn(bool machine_is_halted) {
    if (!disk_panel_is_open() && !tape_panel_is_open()) return;
    Clock& clock = platform().clock();
    const int64_t now = clock.counter();
    if (!machine_is_halted && now - refreshed < clock.frequency() / REFRESHES_PER_SECOND) return;
    refreshed = now;
    if (disk_panel_is_open()) disk_panel_refresh();
    if (tape_panel_is_open()) tape_panel_refresh();
}

void media_panels_end() {
    disk_panel_end();
    tape_panel_end();
}
