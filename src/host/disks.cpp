#include "host/disks.h"

#include "host/autostart.h"
#include "host/menu.h"
#include "media/wd1771.h"
#include "platform/host_services.h"
#include "platform/platform.h"

#include <filesystem>

namespace {

constexpr uint32_t KILOBYTE = 1024;

std::string drive_text(unsigned drive, const std::string& content) {
    std::string text = "Drive :&" + std::to_string(drive) + " - ";
    for (const char c : content) text.append(c == '&' ? 2 : 1, c); // alone it marks an access key
    return text;
}

void tell_unsupported(const std::string& path) {
    std::string reason = file_problem(path);
    if (reason.empty()) {
        std::error_code error;
        const auto size = std::filesystem::file_size(path, error);
        reason = "its " + std::to_string(size) + " bytes are no layout that is known";
    }
    report({.text = "Unsupported disk image.\n", .file = path, .reason = reason});
}

} // namespace

void main_disk_image_attach(unsigned drive, const std::string& path) {
    if (path.empty() || drive >= DISK_DRIVES) return;
    disk_image& disk = wd1771_disk(drive);
    if (diskimg_inserted(disk)) main_disk_image_detach(drive);
    if (!diskimg_attach(disk, path)) return tell_unsupported(path);
    wd1771_reset();
    StatusBarText("Disk: %u side(s), %u tracks, %u sectors, %u kb.", disk.side_value + 1,
                  disk.tracks, disk.sectors, disk.size / KILOBYTE);
    modify_menu_text(COMMAND_ATTACH_DISK + int(drive), drive_text(drive, path));
}

void main_disk_image_detach(unsigned drive) {
    if (drive >= DISK_DRIVES) return;
    disk_image& disk = wd1771_disk(drive);
    const bool save = disk.modified && platform().dialogs().choose(
                                           "Warning",
                                           "Disk content in drive :" + std::to_string(drive) +
                                               " has changed. Do you want to save your changes?",
                                           {"&Yes", "&No"}) == 0;
    const int written = diskimg_detach(disk, save);
    modify_menu_text(COMMAND_ATTACH_DISK + int(drive), drive_text(drive, "<no disk>"));
    if (written) StatusBarText("Disk detached from drive #%u", drive);
}

void main_disk_image_detach_all() {
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) main_disk_image_detach(drive);
    StatusBarText("All disks detached.");
}
