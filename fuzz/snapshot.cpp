/// Snapshots: as they are, or made up to the full length; then a frame of each engine.

#include "media/snapshot.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "cgenie/video_beam.h"
#include "core/frame_driver.h"
#include "support/fake_host.h"
#include "support/files.h"
#include "support/machine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr size_t LONGEST_SHORT_FILE = 16; // a cut file needs no contents
    fake_host = {};
    std::vector<uint8_t> file(size > LONGEST_SHORT_FILE ? SNAPSHOT_SIZE : size);
    tile(file, {data, size});
    fresh_machine();
    program_standard_picture();
    const int loaded = snapshot_unpack(file, memory_get_ram());
    require(loaded == (file.size() == SNAPSHOT_SIZE), "whole snapshots are taken, others are not");
    if (!loaded) return 0;
    machine_run();
    video_render_frame();
    video_run_cycles(frame_budget());
    snapshot_pack(std::span<uint8_t, SNAPSHOT_SIZE>(file), memory_get_ram());
    return 0;
}
