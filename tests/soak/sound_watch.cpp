#include "soak/sound_watch.h"

#include "platform/platform.h"
#include "sound/output/sound_output.h"
#include "sound/output/sound_ring.h"

#include <algorithm>

namespace {

constexpr int32_t UNKNOWN = -1;

bool device_shown = false;
int64_t fragments = 0;
SoundFigures figures;
int16_t last = 0;
int32_t run = 0;

void judge(int16_t sample) {
    figures.square_sum += double(sample) * sample;
    figures.clipped += sample == INT16_MAX || sample == INT16_MIN;
    run = sample == last ? run + 1 : 1;
    last = sample;
    figures.longest_run = std::max(figures.longest_run, run);
}

/// From the device to the start of what is about to be written.
void measure_lead(uint32_t offset) {
    const int32_t position = dsound_get_current_position();
    const uint32_t ahead = (offset + RING_BYTES - uint32_t(position)) % RING_BYTES;
    const int32_t lead = int32_t(ahead) - (ahead >= RING_BYTES / 2 ? int32_t(RING_BYTES) : 0);
    figures.least_lead = std::min(figures.least_lead, lead);
    figures.most_lead = std::max(figures.most_lead, lead);
}

int write(const uint16_t* samples, uint32_t offset, uint32_t bytes) {
    for (uint32_t n = 0; n < bytes / 2; ++n) judge(int16_t(samples[n]));
    figures.samples += bytes / 2;
    ++fragments;
    measure_lead(offset);
    return dsound_write(samples, offset, bytes);
}

int32_t position() { return device_shown ? dsound_get_current_position() : UNKNOWN; }

int opened() { return 0; }
void stays_open() {} // the ring beneath is the machine's

constexpr sound_driver_table watch = {"watch",      opened,       stays_open,    write,
                                      dsound_reset, dsound_pause, dsound_resume, position};

} // namespace

void sound_watch_install() {
    sound_register_driver(&watch); // the output before it has closed its device
    platform().audio().create_device();
    platform().audio().set_format(SOUND_RATE, 0);
    dsound_create_secondary_buffer(SOUND_RATE);
    sound_watch_take();
}

void sound_watch_show_device(bool shown) { device_shown = shown; }
int64_t sound_watch_fragments() { return fragments; }

SoundFigures sound_watch_take() {
    const SoundFigures taken = figures;
    figures = {};
    figures.least_lead = INT32_MAX;
    figures.most_lead = INT32_MIN;
    return taken;
}
