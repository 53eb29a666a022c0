#include "host/dropped_files.h"

#include "files/file_names.h"
#include "host/autostart.h"
#include "host/commands.h"
#include "host/dialogs/hold.h"
#include "host/disk_rom.h"
#include "host/disks.h"
#include "host/replays.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "wall/report.h"

#include <memory>
#include <utility>

namespace {

struct Drop {
    std::vector<std::string> files;
    std::string left; ///< names
    bool disk_rom_offered = false;
};

bool cassette_is_in() { return tape_cas_is_attached() || tape_wav_is_open(); }

void leave(Drop& drop, const std::string& path) {
    drop.left += (drop.left.empty() ? "" : ", ") + file_name_of(path);
}

void tell_left(const std::string& names) {
    if (names.empty()) return;
    report({.text = "Left out: " + names,
            .reason = "further files are disks for the empty drives :1 to :3, and a cassette when "
                      "none is in",
            .severity = Severity::warning});
}

void take_next(const std::shared_ptr<Drop>& drop, size_t n) {
    if (n == drop->files.size()) return tell_left(drop->left);
    const std::string& path = drop->files[n];
    const uint8_t roles = replay_plays() ? 0 : roles_of(path);
    const auto drive = first_empty_drive(1);
    if (roles & ROLE_DISK && drive) {
        const auto go_on = [drop, n](bool) { take_next(drop, n + 1); };
        if (std::exchange(drop->disk_rom_offered, true)) {
            return main_disk_image_attach(*drive, path, go_on);
        }
        return give_disk(*drive, path, go_on);
    }
    if (roles & ROLE_TAPE && !cassette_is_in()) {
        attach_cas(path);
    } else {
        leave(*drop, path);
    }
    take_next(drop, n + 1);
}

} // namespace

void take_further_files(const std::string& first, const std::vector<std::string>& further) {
    if (further.empty()) return;
    const auto drop = std::make_shared<Drop>();
    drop->files = further;
    drop->disk_rom_offered = (roles_of(first) & ROLE_DISK) != 0;
    when_free([drop] { take_next(drop, 0); });
}
