#include "host/disk_rom.h"

#include "cgenie/memory/memory.h"
#include "core/machine_events.h"
#include "host/dialogs/ask.h"
#include "host/disks.h"
#include "host/messages.h"

#include <utility>

namespace {

bool offer_waits = false; ///< for the window

void offer_disk_rom(const std::function<void()>& done) {
    offer_waits = !memory_has_eprom() && message_boxes_are_held();
    if (offer_waits || memory_has_eprom()) return done();
    ask("No disk ROM", "Restart with the disk ROM?", {"&Yes", "&No"}, [done](int answer) {
        constexpr int YES = 0;
        if (answer == YES) machine_apply(event_kind::restart_with_disk_rom);
        done();
    });
}

} // namespace

void give_disk(unsigned drive, const std::string& path, std::function<void(bool)> done) {
    main_disk_image_attach(drive, path, [done = std::move(done)](bool attached) {
        if (!attached) return done(false);
        offer_disk_rom([done] { done(true); });
    });
}

void offer_disk_rom_late() {
    if (std::exchange(offer_waits, false)) offer_disk_rom([] {});
}
