#include "sound/output/sound_output.h"

#include "platform/platform.h"
#include "sound/output/sound_ring.h"
#include "wall/report.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

namespace {

constexpr int LOCK_FAILED = 1; ///< results of a write
constexpr int UNLOCK_FAILED = 2;
constexpr int RETRY_INTERVAL = SOUND_RATE / FRAGMENT_SAMPLES; ///< fragments, one second

bool device_exists = false;
bool registered = false;
int lost_fragments = 0; ///< since the device was last there or tried again

constexpr int32_t MS_BYTES = SOUND_RATE * 2 / 1000;
constexpr int32_t FRAGMENT = FRAGMENT_BYTES;
constexpr int32_t HALF_FRAGMENT = FRAGMENT / 2;
/// An error below this makes the machine double a fragment.
constexpr int32_t SHORTAGE = -FRAGMENT * 3 / 4;
constexpr uint32_t SHORTEST_BLOCK = 3; ///< ms
constexpr uint32_t BLOCKS = 12;        ///< that the latency is divided into
/// The lead that the ring's owner is told, in fragments. It averages the last AVERAGED ones:
/// JUST_RIGHT changes nothing, TOO_FAR makes it leave a fragment out at the seventh time, TOO_NEAR
/// makes it double one at the fourth. The average must have forgotten that before it is told so
/// again.
constexpr int32_t JUST_RIGHT = 5;
constexpr int32_t TOO_FAR = 9;
constexpr int32_t TOO_NEAR = 1;
constexpr int AVERAGED = 14;
/// Share of one measurement in the correction, which is thus a mean over ten seconds.
constexpr double ERROR_WEIGHT = 1.0 / 512;
constexpr int32_t ASTRAY = 100 * MS_BYTES; ///< an error too large to be mended fragment by fragment
constexpr int32_t STANDSTILL = 200 * MS_BYTES; ///< a gap: the program itself was held up
constexpr int PASSING = 5; ///< measurements in a row; a late frame is made up for by then
constexpr int32_t SCHEDULING = 3 * MS_BYTES; ///< that a fragment may come late
constexpr uint32_t LONGEST_LATENCY = 300;    ///< ms; the core's measure is half a second
constexpr uint32_t GROWTH = 20;              ///< ms
constexpr uint32_t ONE_GAP = 25;             ///< fragments: half a second
constexpr uint32_t GAPS_APART = 3000;        ///< fragments: a minute

uint32_t set_latency = DEFAULT_LATENCY; ///< ms

/// How far the ring is ahead of the device, and what it should be.
struct Latency {
    uint32_t ms = 0;
    uint32_t write_offset = 0; ///< of the next fragment
    bool placed = false;       ///< the device has been put at its distance behind it
    int waiting = AVERAGED;    ///< measurements until the average shows what was told
    int32_t asking = JUST_RIGHT;
    double asked_at = 0;   ///< this error
    double correction = 0; ///< added to the error: what it has been on average
    int displaced = 0;     ///< measurements in a row
    int astray = 0;
    uint32_t underruns = 0;
    uint32_t fragments = 0; ///< written
    uint32_t last_gap = 0;  ///< in fragments written
    bool gap_before = false;
} latency;

int32_t unknown_position() {
    std::fputs("Warning: DSound secondary buffer is null.\n", stderr);
    return -1;
}

/// The result of every step that fails.
int failed(const char* text, const char* title = "Error", MessageIcon icon = MessageIcon::error) {
    report({.text = text,
            .reason = platform().audio().error(),
            .remedy = "The program runs without sound; Options, Sound tries again.",
            .title = title,
            .icon = icon});
    return 0;
}

int library_missing() { return failed("Missing DSOUND.DLL", "Fatal error!", MessageIcon::none); }

/// Bytes from the ring offset `of` to `offset`, by the shorter way; negative when it lies behind.
int32_t ahead(uint32_t offset, int32_t of) {
    const auto distance = int32_t((offset + RING_BYTES - uint32_t(of)) % RING_BYTES);
    return distance - (distance >= int32_t(RING_BYTES / 2) ? int32_t(RING_BYTES) : 0);
}

uint32_t behind_write_offset(int32_t bytes) {
    return (latency.write_offset + RING_BYTES - uint32_t(bytes)) % RING_BYTES;
}

void place_device() {
    platform().audio().seek(behind_write_offset(int32_t(latency.ms) * MS_BYTES - FRAGMENT));
    latency.placed = true;
    latency.displaced = 0;
    latency.correction = 0;
    latency.underruns = platform().audio().underruns();
}

/// After the program stood still for a while.
void start_again() {
    latency.placed = false;
    latency.waiting = AVERAGED;
    latency.asking = JUST_RIGHT;
    latency.astray = 0;
}

/// Raises the latency when the device has run dry twice within a minute: it is too short for what
/// else the computer does. A single gap can have any reason. `lead` is what was missing, when
/// negative.
void grow_after_gaps(int32_t lead) {
    const uint32_t underruns = platform().audio().underruns();
    if (underruns == latency.underruns) return;
    latency.underruns = underruns;
    const uint32_t since = latency.fragments - latency.last_gap;
    if (latency.gap_before && since < ONE_GAP) return;
    const bool again = latency.gap_before && since < GAPS_APART;
    latency.gap_before = true;
    latency.last_gap = latency.fragments;
    if (!again || lead < -STANDSTILL || latency.ms >= LONGEST_LATENCY) return;
    const uint32_t missing = lead < 0 ? uint32_t(-lead) / MS_BYTES : 0;
    latency.ms = std::min(latency.ms + GROWTH + missing, LONGEST_LATENCY);
    report({.text = "Sound latency raised to " + std::to_string(latency.ms) + " ms",
            .reason = "The computer is too busy to play the sound without gaps.",
            .remedy = "Options, Sound, off and on again goes back to the setting SoundLatency.",
            .severity = Severity::warning});
}

/// What to tell as the lead. A change is asked for until it has happened.
int32_t what_to_ask(double error, bool can_spare) {
    int32_t& asking = latency.asking;
    if (asking == JUST_RIGHT) {
        if (error > HALF_FRAGMENT && can_spare) asking = TOO_FAR;
        if (error < SHORTAGE) asking = TOO_NEAR;
        latency.asked_at = error;
    } else if (asking == TOO_FAR ? error < latency.asked_at - HALF_FRAGMENT
                                 : error > latency.asked_at + HALF_FRAGMENT) {
        asking = JUST_RIGHT;
        latency.waiting = AVERAGED;
    }
    return asking;
}

/// The device's position, shifted so that the time from a register's write to the device stays at
/// the latency. It is asked for just before a fragment is written, so samples to come are a
/// fragment further from the device than the lead; registers are written half a frame earlier on
/// average.
int32_t cursor(int32_t position) {
    Audio& audio = platform().audio();
    const int32_t lead = ahead(latency.write_offset, position);
    const int32_t wanted = int32_t(latency.ms) * MS_BYTES;
    const int32_t error =
        lead + int32_t(sound_core.begun_at_frame_end) * 2 + HALF_FRAGMENT - wanted;
    int32_t told = JUST_RIGHT;
    if (latency.waiting > 0) {
        --latency.waiting;
    } else if (!latency.placed) {
        place_device();
    } else {
        // When a fragment is left out, the device must not run dry before the next one. With a
        // short latency that holds at one place in the frame only, and the device's clock slowly
        // drifts away from it.
        const int32_t least = int32_t(audio.block_bytes()) + SCHEDULING;
        const bool can_spare = lead >= least + FRAGMENT;
        told = what_to_ask(error + latency.correction, can_spare);
        const bool displaced =
            (lead < least && error > SHORTAGE) || (!can_spare && error > HALF_FRAGMENT * 5 / 4);
        latency.displaced = displaced ? latency.displaced + 1 : 0;
        if (latency.displaced >= PASSING) place_device();
    }
    if (latency.placed) {
        grow_after_gaps(lead);
        latency.correction = std::clamp<double>(latency.correction + error * ERROR_WEIGHT,
                                                -HALF_FRAGMENT, HALF_FRAGMENT);
        latency.astray = std::abs(error) > ASTRAY ? latency.astray + 1 : 0;
        if (latency.astray >= PASSING) start_again();
    }
    return int32_t(behind_write_offset(told * FRAGMENT));
}

const sound_driver_table dsound_driver = {
    "DirectSound",   [] { return dsound_init(SOUND_RATE); },
    dsound_close,    dsound_write,
    dsound_reset,    dsound_pause,
    dsound_resume,   dsound_get_current_position,
    dsound_fade_out, dsound_begin_again,
};

constexpr uint32_t SAMPLE_BYTES = 2;

/// The samples that are written and not taken yet. While it lives, the device waits.
class WaitingSamples {
public:
    explicit WaitingSamples(Audio& audio) : audio_(audio) {
        const int32_t position = audio.has_ring() ? audio.position() : -1;
        const int32_t bytes = position < 0 ? 0 : ahead(latency.write_offset, position);
        if (bytes <= 0) return;
        locked_ = audio.lock(uint32_t(position), uint32_t(bytes), first_, second_);
        // The device may have taken some before it was locked.
        const int32_t taken = locked_ ? ahead(uint32_t(audio.position()), position) : bytes;
        first_untaken_ = uint32_t(std::clamp(taken, 0, bytes)) / SAMPLE_BYTES;
        count_ = uint32_t(bytes) / SAMPLE_BYTES;
    }
    ~WaitingSamples() {
        if (locked_) audio_.unlock();
    }
    WaitingSamples(const WaitingSamples&) = delete;
    WaitingSamples& operator=(const WaitingSamples&) = delete;

    /// Calls `act` (sample, number) for each, from number 0 on.
    template <typename Act>
    void for_each(Act act) {
        for (uint32_t n = first_untaken_; n < count_; ++n) {
            const size_t at = size_t(n) * SAMPLE_BYTES;
            uint8_t* const bytes = at < first_.size() ? &first_[at] : &second_[at - first_.size()];
            int16_t sample = 0;
            std::memcpy(&sample, bytes, SAMPLE_BYTES);
            act(sample, n - first_untaken_);
            std::memcpy(bytes, &sample, SAMPLE_BYTES);
        }
    }

private:
    Audio& audio_;
    std::span<uint8_t> first_;
    std::span<uint8_t> second_;
    bool locked_ = false;
    uint32_t first_untaken_ = 0;
    uint32_t count_ = 0;
};

bool something_waits(Audio& audio) {
    bool something = false;
    WaitingSamples(audio).for_each([&](int16_t& sample, uint32_t) { something |= sample != 0; });
    return something;
}

void silence_ring(Audio& audio) {
    std::span<uint8_t> first;
    std::span<uint8_t> second;
    if (!audio.lock(latency.write_offset, RING_BYTES, first, second)) return;
    std::ranges::fill(first, uint8_t(0));
    std::ranges::fill(second, uint8_t(0));
    audio.unlock();
}

/// Closes what an earlier start has left. The driver must not be active when it is registered
/// again: registering would close what has just been made.
void forget_earlier_output() {
    if (registered) sound_null_driver_init();
    dsound_close();
}

int lose_fragment(Audio& audio) {
    if (++lost_fragments >= RETRY_INTERVAL) {
        lost_fragments = 0;
        audio.restore();
    }
    return LOCK_FAILED;
}

} // namespace

int dsound_init(int rate) {
    Audio& audio = platform().audio();
    forget_earlier_output();
    if (!audio.library_available()) return library_missing();
    if (!audio.create_device()) return failed("DirectSoundCreate failed");
    device_exists = true;
    if (!audio.set_cooperative()) return failed("SetCooperativeLevel failed");
    if (!audio.create_primary()) return failed("CreateSoundBuffer for primary buffer failed");
    latency = {.ms = set_latency};
    const int block = int(std::max(set_latency / BLOCKS, SHORTEST_BLOCK)) * rate / 1000;
    if (!audio.set_format(rate, block)) return failed("SetFormat on primary bufer failed");
    dsound_create_secondary_buffer(rate);
    sound_register_driver(&dsound_driver);
    registered = true;
    if (!audio.play()) return failed("Play primary buffer failed");
    return 1;
}

int dsound_create_secondary_buffer(int rate) {
    Audio& audio = platform().audio();
    audio.stop();
    audio.release_ring();
    if (!audio.create_ring(RING_BYTES, rate)) return failed("CreateSoundBuffer failed");
    dsound_resume();
    return 1;
}

uint32_t dsound_set_latency(uint32_t ms) {
    return set_latency = std::clamp(ms, SHORTEST_LATENCY, LONGEST_SET_LATENCY);
}

int dsound_write(const uint16_t* samples, uint32_t offset, uint32_t bytes) {
    latency.write_offset = (offset + bytes) % RING_BYTES;
    ++latency.fragments;
    Audio& audio = platform().audio();
    if (!audio.has_ring()) return 0;
    std::span<uint8_t> first;
    std::span<uint8_t> second;
    if (!audio.lock(offset, bytes, first, second)) return lose_fragment(audio);
    lost_fragments = 0;
    const auto* data = reinterpret_cast<const uint8_t*>(samples);
    std::copy_n(data, first.size(), first.begin());
    std::copy_n(data + first.size(), second.size(), second.begin());
    if (!audio.unlock()) return UNLOCK_FAILED;
    audio.play();
    return 0;
}

int32_t dsound_get_current_position() {
    Audio& audio = platform().audio();
    if (!audio.has_ring()) return unknown_position();
    const int32_t position = audio.position();
    return position < 0 || audio.block_bytes() == 0 ? position : cursor(position);
}

void dsound_pause() { platform().audio().stop(); }
void dsound_resume() { platform().audio().play(); }

void dsound_fade_out() {
    WaitingSamples(platform().audio()).for_each([](int16_t& sample, uint32_t n) {
        sample = n < FADE_SAMPLES ? faded(sample, FADE_SAMPLES - n) : int16_t(0);
    });
}

bool dsound_begin_again() {
    Audio& audio = platform().audio();
    if (!audio.has_ring()) return true;
    if (something_waits(audio)) return false;
    silence_ring(audio);
    if (audio.block_bytes()) {
        place_device();
    } else {
        audio.seek(behind_write_offset(JUST_RIGHT * FRAGMENT));
    }
    return true;
}

void dsound_reset() {
    Audio& audio = platform().audio();
    if (audio.has_ring()) audio.restore();
}

void dsound_close() {
    registered = false;
    if (!device_exists) return;
    Audio& audio = platform().audio();
    audio.release_ring();
    audio.release_device();
    device_exists = false;
}
