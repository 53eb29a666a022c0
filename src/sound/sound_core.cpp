#include "sound/sound_core.h"

#include "sound/filter.h"
#include "sound/output/wav_capture.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>

namespace {

constexpr uint32_t LINE_RATE = 15625;     ///< scan lines per second
constexpr uint32_t HIGH_PASS_CUTOFF = 50; ///< Hz
constexpr uint32_t fragment_size = FRAGMENT_SAMPLES;
constexpr uint32_t MIX_ROOM = 968;
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
sound_source* snd_src_root = nullptr;
std::unique_ptr<iir_filter> hpfilter;

std::array<uint16_t, 2 * FRAGMENT_SAMPLES> sound_buffer;
std::array<uint16_t, MIX_ROOM> mix_buffer;
uint32_t sound_update_pos = 0; ///< samples of the fragment that stand
uint32_t begun_at_frame_end = 0;
uint32_t sb_pos = 0; ///< byte offset of the next fragment in the ring
uint32_t last_sample_pos = 0;

int next_fragment_count = 1;
std::array<int32_t, 14> lead = {}; ///< fragments ahead of the device, measured once a fragment
size_t leadPosition = 0;
bool paused = false;
int ring_writes = 1; ///< how often the driver gets the fragment; other than once in recordings

/// Finished fragments that wait for the pictures of a film.
struct FilmQueue {
    bool runs = false;
    /// One more than the next picture needs. Pictures that come faster than fragments need it: the
    /// first that finds nothing makes it 1.
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

/// Keeps the lead while a recording has the say: the driver goes without a fragment, or, beside a
/// film alone, has one again.
void correct_ring(int32_t average) {
    if (average > LONGEST_LEAD) ring_writes = 0;
    if (average < SHORTEST_LEAD && !sound_is_saving(nullptr)) ring_writes = 2;
    adjust_history(ring_writes - 1);
}

/// What a recording wants, which sets the pace in place of the driver. A WAV file has no gaps; a
/// film gets one fragment for each picture.
int fragments_for_recording(size_t completed) {
    if (sound_is_saving(nullptr)) return 1;
    const size_t waiting = film.waiting + completed;
    if (waiting >= film.most_waiting()) return 0;
    return waiting < completed + film.reserve ? 2 : 1;
}

/// How many fragments the next completed one becomes, with `completed` of them being written now.
/// A correction goes into the whole history at once, or the slow average would order it again and
/// again.
int getNoFragsToGenerate(size_t completed) {
    ring_writes = 1;
    if (paused) return 0;
    const bool recording = film.runs || sound_is_saving(nullptr);
    const int32_t position = sound_driver->get_current_position();
    if (position == POSITION_UNKNOWN) return recording ? fragments_for_recording(completed) : 1;
    lead[leadPosition] = lead_over(position) / int32_t(FRAGMENT_BYTES);
    leadPosition = (leadPosition + 1) % lead.size();
    const int32_t average = std::accumulate(lead.begin(), lead.end(), 0) / int32_t(lead.size());
    if (recording) {
        correct_ring(average);
        return fragments_for_recording(completed);
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

void render(uint32_t position, uint32_t count) {
    uint16_t* const target = sound_buffer.data() + position;
    if (!snd_src_root) {
        std::fill_n(target, count, uint16_t(0));
        return;
    }
    snd_src_root->render(target, count);
    for (const sound_source* source = snd_src_root->next; source; source = source->next) {
        source->render(mix_buffer.data(), count);
        for (uint32_t i = 0; i < count; ++i) target[i] = uint16_t(target[i] + mix_buffer[i]);
    }
}

void write_to_ring() {
    for (; ring_writes > 0; --ring_writes) {
        sound_driver->write(sound_buffer.data(), sb_pos, FRAGMENT_BYTES);
        sb_pos = (sb_pos + FRAGMENT_BYTES) % RING_BYTES;
    }
    ring_writes = 1; // of a second fragment
}

void queue_for_film() {
    if (!film.runs || film.waiting >= film.most_waiting()) return;
    const size_t last = (film.first + film.waiting) % film.fragments.size();
    std::copy_n(sound_buffer.data(), fragment_size, film.fragments[last].data());
    ++film.waiting;
}

void write_fragment() {
    filter_buffer_output(hpfilter.get(), fragment_size,
                         reinterpret_cast<int16_t*>(sound_buffer.data()), SOUND_RATE);
    write_to_ring();
    queue_for_film();
    sound_dump_wav_data(reinterpret_cast<const uint8_t*>(sound_buffer.data()), FRAGMENT_BYTES);
}

void fill(uint32_t count) {
    if (next_fragment_count == 0) {
        next_fragment_count = getNoFragsToGenerate(0);
        return;
    }
    const uint64_t end = uint64_t(sound_update_pos) + count;
    if (end >= fragment_size) {
        next_fragment_count = getNoFragsToGenerate(1);
        render(sound_update_pos, fragment_size - sound_update_pos);
        write_fragment();
        count = uint32_t(end % fragment_size); // whole further fragments are lost
        sound_update_pos = 0;
        if (next_fragment_count == 2) {
            render(0, fragment_size);
            write_fragment();
            return;
        }
    }
    if (count == 0) return;
    render(sound_update_pos, count);
    sound_update_pos += count;
}

} // namespace

void sound_add_source(sound_source* source) {
    sound_source** link = &snd_src_root;
    for (; *link; link = &(*link)->next) {
        if (*link == source) return; // a machine powers on more than once
    }
    source->next = nullptr;
    *link = source;
}

void sound_register_driver(const sound_driver_table* driver) {
    if (sound_driver) sound_driver->close();
    sound_driver = driver;
}

void sound_null_driver_init() { sound_register_driver(&null_driver); }

void sound_init() {
    sb_pos = 0;
    sound_update_pos = 0;
    sound_driver->reset();
    if (!hpfilter) hpfilter = filter_iir_create(FILTER_HIGH_PASS, HIGH_PASS_CUTOFF);
}

void sound_reset() {
    sound_driver->reset();
    for (const sound_source* source = snd_src_root; source; source = source->next) source->reset();
}

void sound_close() {
    sound_close_wav();
    sound_driver->close();
    filter_destroy(&hpfilter);
}

void sound_pause() {
    paused = true;
    sound_driver->pause();
}

void sound_resume() {
    paused = false;
    sound_driver->resume();
}

void sound_update(int64_t cycles) {
    const uint64_t sound_clock = z80_state.cycles_per_line * LINE_RATE;
    if (sound_clock == 0) return; // no machine yet
    const double nearest = double(cycles) * SOUND_RATE / double(sound_clock) + 0.5;
    const auto position = uint32_t(int64_t(nearest)); // wraps after a day
    const uint32_t count = position - last_sample_pos;
    if (count == 0) return;
    fill(count);
    last_sample_pos = position;
}

void sound_flush(int64_t cycles) {
    sound_update(cycles);
    begun_at_frame_end = sound_update_pos;
}

uint32_t sound_samples_begun() { return begun_at_frame_end; }

uint16_t* sound_get_buffer_ptr() { return sound_buffer.data(); }

void sound_start_film() {
    film = {};
    film.runs = true;
    next_fragment_count = 1; // the first picture has its fragment
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
