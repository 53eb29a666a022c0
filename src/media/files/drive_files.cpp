#include "media/files/drive_files.h"

#include "core/machine_events.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "media/files/rescue.h"
#include "media/wd1771.h"
#include "wall/report.h"

#include <cerrno>
#include <cstring>
#include <utility>

std::array<disk_file, DISK_DRIVES> drive_files;

int diskimg_attach(unsigned drive, const std::string& path) {
    diskimg_detach(drive, false);
    const FileIdentity identity = file_identity(path);
    std::optional<std::vector<uint8_t>> bytes = read_whole_file(path);
    if (!bytes || bytes->empty()) return 0;
    const uint64_t hash = content_hash(*bytes);
    const bool write_protected = !may_write(path);
    if (!machine_apply(event_kind::disk_in, int32_t(drive), write_protected,
                       shared_bytes(std::move(*bytes)))) {
        return 0;
    }
    drive_files[drive] = {path, identity, hash};
    return 1;
}

bool diskimg_file_changed(unsigned drive) {
    const disk_file& file = drive_files[drive];
    if (!path_exists(file.path)) return false;
    const auto bytes = read_whole_file(file.path);
    return !bytes || content_hash(*bytes) != file.hash;
}

int diskimg_write_back(unsigned drive) {
    return replace_whole_file(drive_files[drive].path, drive_contents[drive].view()) ? 1 : 0;
}

std::optional<std::string> diskimg_rescue(unsigned drive) {
    const std::string rescue = rescue_path(drive_files[drive].path);
    if (rescue.empty() || !replace_whole_file(rescue, drive_contents[drive].view())) return {};
    return rescue;
}

int diskimg_detach(unsigned drive, bool write_back) {
    int result = 1;
    if (write_back && diskimg_inserted(wd1771.disks[drive]) && !diskimg_write_back(drive)) {
        const std::string reason = std::strerror(errno);
        const std::optional<std::string> rescue = diskimg_rescue(drive);
        report({.text = drive_files[drive].path + " cannot be written. " +
                        (rescue ? "The disk is in " + *rescue
                                : "No copy of the disk could be made: its contents are lost"),
                .reason = reason});
        result = 0;
    }
    machine_apply(event_kind::disk_out, int32_t(drive));
    drive_files[drive] = {};
    return result;
}
