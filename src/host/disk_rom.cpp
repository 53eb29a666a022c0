#include "host/disk_rom.h"

#include "cgenie/memory/memory.h"
#include "core/machine.h"
#include "host/disks.h"
#include "host/messages.h"
#include "platform/platform.h"

#include <utility>

namespace {

bool offer_waits = false; ///< for the window

void offer_disk_rom() {
    if (memory_has_eprom()) return;
    offer_waits = message_boxes_are_held();
    if (offer_waits) return;
    const int yes = 0;
    const int answer =
        platform().dialogs().choose("No disk ROM", "Restart with the disk ROM?", {"&Yes", "&No"});
    if (answer == yes) machine_restart_with_disk_rom();
}

} // namespace

bool give_disk(unsigned drive, const std::string& path) {
    if (!main_disk_image_attach(drive, path)) return false;
    offer_disk_rom();
    return true;
}

void offer_disk_rom_late() {
    if (std::exchange(offer_waits, false)) offer_disk_rom();
}
