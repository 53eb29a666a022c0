#include "sound/output/sound_ring.h"

#include "core/machine_events.h"
#include "sound/output/wav_capture.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace {

constexpr int32_t POSITION_UNKNOWN = -1;

/// The lead is kept between these, in fragments.
constexpr int32_t SHORTEST_LEAD = 4;
constexpr int32_t LONGEST_LEAD = 6;

int accept_init() { return 0; }
int accept_samples(const uint16_t*, uint32_t, uint32_t) { return 0; }
void do_nothing() {}
int32_t unknown_position() { return POSITION_UNKNOWN; }

constexpr sound_driver_table null_driver = {"No sound", accept_init, do_nothing, accept_samples,
                                            do_nothing, do_nothing,  do_nothing, unknown_position};

const sound_driver_table* sound_driver = &null_driver;
uint32_t sb_pos = 0; ///< byte offset of the next fragment in the ring

std::array<int32_t, 14> lead = {}; ///< fragments ahead of the device, measured once a fragment
size_t leadPosition = 0;
bool paused = false;
/// How often the driver gets the next fragment: other than once only while something is recorded.
int ring_writes = 1;

struct {
    uint8_t reasons = 0; ///< of those who want silence
    bool silent = false; ///< what was written has been faded out, and nothing has come since
} fade;

/// Finished fragments that wait for the pictures of a film.
struct FilmQueue {
    bool runs = false;
    /// Fragments kept beyond the one for the next picture, 0 or 1. It becomes 1 with the first
    /// picture that finds no fragment, since pictures then come faster than fragments.
    size_t reserve = 0;
    std::array<std::array<uint16_t, FRAGMENT_SAMPLES>, 3> fragments = {};
    size_t first = 0;
    size_t waiting = 0;

    size_t most_waiting() const { return 2 + reserve; }
} film;

/// Bytes from the device's position to the write position, by the shorter way round the ring.
int32_t lead_over(int32_t position) {
    const uint32_t distance = (sb_pos - uint32_t(position) + RING_BYTES) % RING_BYTES;
    return int32_t(distance) - (distance >= RING_BYTES / 2 ? int32_t(RING_BYTES) : 0);
}

void adjust_history(int32_t by) {
    for (int32_t& entry : lead) entry += by;
}

/// Keeps the lead while a recording sets the pace: the driver does not get a fragment, or, when
/// only a film is recorded, gets one twice.
void correct_ring(int32_t average) {
    if (average > LONGEST_LEAD) ring_writes = 0;
    if (average < SHORTEST_LEAD && !sound_is_saving(nullptr)) ring_writes = 2;
    adjust_history(ring_writes - 1);
}

/// How many fragments a recording wants, which then sets the pace in place of the driver. A WAV
/// file has no gaps; a film gets one fragment for each picture.
int fragments_for_recording(size_t completed) {
    if (sound_is_saving(nullptr)) return 1;
    const size_t waiting = film.waiting + completed;
    if (waiting >= film.most_waiting()) return 0;
    return waiting < completed + film.reserve ? 2 : 1;
}

/// How many fragments the next completed one becomes, with `completed` of them being written now. A
/// correction changes the whole history of leads at once; otherwise the slow average would ask for
/// the same correction again and again.
int getNoFragsToGenerate(int completed) {
    ring_writes = 1;
    if (paused) return 0;
    const bool recording = film.runs || sound_is_saving(nullptr);
    if (fade.silent) {
        if (recording) return fragments_for_recording(size_t(completed));
        return fade.reasons ? 0 : 1;
    }
    const int32_t position = sound_driver->get_current_position();
    if (position == POSITION_UNKNOWN) {
        return recording ? fragments_for_recording(size_t(completed)) : 1;
    }
    lead[leadPosition] = lead_over(position) / int32_t(FRAGMENT_BYTES);
    leadPosition = (leadPosition + 1) % lead.size();
    const int32_t average = std::accumulate(lead.begin(), lead.end(), 0) / int32_t(lead.size());
    if (recording) {
        correct_ring(average);
        return fragments_for_recording(size_t(completed));
    }
    if (average > LONGEST_LEAD) {
        adjust_history(-1);
        return 0;
    }
    if (average < SHORTEST_LEAD) {
        adjust_history(1);
        return 2;
    }
    return 1;
}

void fade_in(const uint16_t* from, std::array<uint16_t, FRAGMENT_SAMPLES>& to) {
    for (uint32_t n = 0; n < FRAGMENT_SAMPLES; ++n) to[n] = uint16_t(faded(int16_t(from[n]), n));
}

/// The next fragment may be heard again.
bool silence_ends() { return fade.reasons == 0 && sound_driver->begin_again(); }

void write_to_ring(const uint16_t* samples) {
    std::array<uint16_t, FRAGMENT_SAMPLES> rising;
    if (fade.silent) {
        ring_writes = 1;
        if (!silence_ends()) return;
        fade.silent = false;
        fade_in(samples, rising);
        samples = rising.data();
    }
    for (; ring_writes > 0; --ring_writes) {
        sound_driver->write(samples, sb_pos, FRAGMENT_BYTES);
        sb_pos = (sb_pos + FRAGMENT_BYTES) % RING_BYTES;
    }
    ring_writes = 1; // a second fragment of this decision is written once
}

void queue_for_film(const uint16_t* samples) {
    if (!film.runs || film.waiting >= film.most_waiting()) return;
    const size_t last = (film.first + film.waiting) % film.fragments.size();
    std::copy_n(samples, FRAGMENT_SAMPLES, film.fragments[last].data());
    ++film.waiting;
}

void take_fragment(const uint16_t* samples) {
    write_to_ring(samples);
    queue_for_film(samples);
    sound_dump_wav_data(reinterpret_cast<const uint8_t*>(samples), FRAGMENT_BYTES);
}

void begin() {
    sb_pos = 0;
    sound_driver->reset();
}

void reset() { sound_driver->reset(); }

} // namespace

void sound_output_connect() {
    machine_host.fragment = take_fragment;
    machine_host.fragment_decision = getNoFragsToGenerate;
    machine_host.sound_begins = begin;
    machine_host.sound_was_reset = reset;
}

void sound_register_driver(const sound_driver_table* driver) {
    if (sound_driver) sound_driver->close();
    sound_driver = driver;
    fade.silent = fade.reasons && driver->fade_out;
}

void sound_null_driver_init() { sound_register_driver(&null_driver); }

void sound_close() {
    sound_close_wav();
    sound_driver->close();
    sound_remove_filter();
}

void sound_pause() {
    paused = true;
    sound_driver->pause();
}

void sound_resume() {
    paused = false;
    sound_driver->resume();
}

void sound_fade(bool out, FadeReason reason) {
    const auto bit = uint8_t(reason);
    fade.reasons = out ? fade.reasons | bit : fade.reasons & ~bit;
    if (!out || fade.silent || !sound_driver->fade_out) return;
    fade.silent = true;
    sound_driver->fade_out();
}

void sound_start_film() {
    film = {};
    film.runs = true;
    machine_apply(event_kind::fragment_count, 1); // the first picture has its fragment
}

void sound_end_film() { film.runs = false; }

const uint16_t* sound_take_film_fragment() {
    static constexpr std::array<uint16_t, FRAGMENT_SAMPLES> silence = {};
    if (film.waiting == 0) {
        film.reserve = 1;
        return silence.data();
    }
    const auto& fragment = film.fragments[film.first];
    film.first = (film.first + 1) % film.fragments.size();
    --film.waiting;
    return fragment.data();
}
