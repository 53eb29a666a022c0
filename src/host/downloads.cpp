#include "host/downloads.h"

#include "files/file_names.h"
#include "media/files/cassette_files.h"
#include "media/files/drive_files.h"
#include "media/tape.h"
#include "media/wd1771.h"
#include "platform/platform.h"
#include "wall/machine_host.h"
#include "wall/report.h"

namespace {

void hand_out(const std::string& name, std::span<const uint8_t> bytes) {
    Downloads* const downloads = platform().downloads();
    if (!downloads || !downloads->offer(name, bytes)) {
        return report({.text = name + " cannot be downloaded"});
    }
    StatusBarText("Downloaded: %s", name.c_str());
}

/// A tokenized BASIC file that was put in has become a tape.
std::string cassette_name() {
    const std::string& path = tape_get_cas_name();
    const std::string extension = lower_case_extension(path);
    const bool is_tape = extension == "cas" || extension == "cgt";
    return is_tape ? file_name_of(path) : file_stem_of(path) + ".cas";
}

} // namespace

void download_disk(unsigned drive) {
    if (!diskimg_inserted(wd1771.disks[drive])) {
        return StatusBarText("There is no disk in drive :%u.", drive);
    }
    const std::string name = file_name_of(drive_files[drive].path);
    hand_out(name.empty() ? "disk.dsk" : name, drive_contents[drive].view());
}

void download_cassette() {
    if (!tape_cas_is_attached()) return StatusBarText("There is no cassette.");
    hand_out(cassette_name(), cas.view());
}

void file_is_complete(const std::string& path) {
    if (Downloads* const downloads = platform().downloads()) downloads->saved(path);
}
