#include "sound/sound_core.h"

#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

constexpr uint32_t LINE_RATE = 15625;     ///< scan lines per second
constexpr uint32_t HIGH_PASS_CUTOFF = 50; ///< Hz
constexpr uint32_t fragment_size = FRAGMENT_SAMPLES;
constexpr uint32_t MIX_ROOM = 968;

sound_source* snd_src_root = nullptr;      ///< wired at power-on
std::array<uint16_t, MIX_ROOM> mix_buffer; ///< scratch

constexpr state_field sound_core_fields[] = {
    {"sound_buffer", sizeof(sound_core_state::sound_buffer)},
    {"sound_update_pos", sizeof(sound_core_state::sound_update_pos)},
    {"last_sample_pos", sizeof(sound_core_state::last_sample_pos)},
    {"begun_at_frame_end", sizeof(sound_core_state::begun_at_frame_end)},
    {"next_fragment_count", sizeof(sound_core_state::next_fragment_count)},
    {"hpfilter", sizeof(sound_core_state::hpfilter)},
};

const char* fault(const sound_core_state& core) {
    return first_fault(
        {{"sound_update_pos", core.sound_update_pos < FRAGMENT_SAMPLES},
         {"begun_at_frame_end", core.begun_at_frame_end < FRAGMENT_SAMPLES},
         {"next_fragment_count", core.next_fragment_count >= 0 && core.next_fragment_count <= 2},
         {"hpfilter", filter_is_possible(core.hpfilter)}});
}

void render(uint32_t position, uint32_t count) {
    uint16_t* const target = sound_core.sound_buffer.data() + position;
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

void decide(int completed) {
    sound_core.next_fragment_count = machine_host.fragment_decision(completed);
}

void write_fragment() {
    uint16_t* const samples = sound_core.sound_buffer.data();
    filter_buffer_output(&sound_core.hpfilter, fragment_size, reinterpret_cast<int16_t*>(samples),
                         SOUND_RATE);
    machine_host.fragment(samples);
}

void fill(uint32_t count) {
    if (sound_core.next_fragment_count == 0) return decide(0);
    const uint64_t end = uint64_t(sound_core.sound_update_pos) + count;
    if (end >= fragment_size) {
        decide(1);
        render(sound_core.sound_update_pos, fragment_size - sound_core.sound_update_pos);
        write_fragment();
        count = uint32_t(end % fragment_size); // whole further fragments are lost
        sound_core.sound_update_pos = 0;
        if (sound_core.next_fragment_count == 2) {
            render(0, fragment_size);
            write_fragment();
            return;
        }
    }
    if (count == 0) return;
    render(sound_core.sound_update_pos, count);
    sound_core.sound_update_pos += count;
}

} // namespace

sound_core_state sound_core;
const state_record sound_core_record = {"sound_core", &sound_core, sizeof sound_core,
                                        sound_core_fields, fault_of<sound_core_state, fault>};

void sound_add_source(sound_source* source) {
    sound_source** link = &snd_src_root;
    for (; *link; link = &(*link)->next) {
        if (*link == source) return; // a machine powers on more than once
    }
    source->next = nullptr;
    *link = source;
}

void sound_init() {
    sound_core.sound_update_pos = 0;
    machine_host.sound_begins();
    if (sound_core.hpfilter.cutoff) return;
    sound_core.hpfilter = filter_iir_create(FILTER_HIGH_PASS, HIGH_PASS_CUTOFF);
}

void sound_reset() {
    machine_host.sound_was_reset();
    for (const sound_source* source = snd_src_root; source; source = source->next) source->reset();
}

void sound_update(int64_t cycles) {
    const uint64_t sound_clock = z80_state.cycles_per_line * LINE_RATE;
    if (sound_clock == 0) return; // no machine yet
    const double nearest = double(cycles) * SOUND_RATE / double(sound_clock) + 0.5;
    const auto position = uint32_t(int64_t(nearest)); // wraps after a day
    const uint32_t count = position - sound_core.last_sample_pos;
    if (count == 0) return;
    fill(count);
    sound_core.last_sample_pos = position;
}

void sound_flush(int64_t cycles) {
    sound_update(cycles);
    sound_core.begun_at_frame_end = sound_core.sound_update_pos;
}

uint16_t* sound_get_buffer_ptr() { return sound_core.sound_buffer.data(); }

void sound_set_fragment_count(int count) { sound_core.next_fragment_count = count; }

void sound_remove_filter() { filter_destroy(&sound_core.hpfilter); }
