#include "core/machine_state.h"

#include "cgenie/bus.h"
#include "cgenie/crtc.h"
#include "cgenie/hires_lowe.h"
#include "cgenie/input.h"
#include "cgenie/memory/memory.h"
#include "cgenie/palette.h"
#include "cgenie/typing/typing.h"
#include "cgenie/video.h"
#include "cgenie/video_beam.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "media/printer.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "media/traps.h"
#include "media/wav_samples.h"
#include "media/wd1771.h"
#include "sound/beeper.h"
#include "sound/sound_core.h"
#include "sound/ym2149.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

namespace {

/// A device has one line here.
// clang-format off
constexpr const state_record* records[] = {
    &z80_state_record,
    &frame_state_record,
    &machine_setup_state,
    &memory_record,
    &bus_record,
    &input_record,
    &crtc_record,
    &video_record,
    &frame_buffer_record,
    &beam_record,
    &palette_record,
    &lowe_record,
    &typing_record,
    &ay_record,
    &beeper_record,
    &sound_core_record,
    &wd1771_record,
    &cassette_record,
    &tape_audio_record,
    &traps_record,
    &printer_record,
};
// clang-format on

struct medium {
    const char* name;
    shared_bytes* contents;
};
constexpr auto media = std::to_array<medium>({
    {"disk 0", &drive_contents[0]},
    {"disk 1", &drive_contents[1]},
    {"disk 2", &drive_contents[2]},
    {"disk 3", &drive_contents[3]},
    {"cas", &cas},
    {"typing_text", &typing_text},
});

bool is_state(const state_field& field) { return field.kind == field_kind::state; }

/// Calls `act` (record, field, offset in the saved records) for every field; a field that is not
/// state is not saved, and gets the offset of the next one that is.
template <typename Act>
void for_each_field(Act act) {
    size_t offset = 0;
    for (const state_record* record : records) {
        for (const state_field& field : record->fields) {
            act(*record, field, offset);
            if (is_state(field)) offset += field.size;
        }
    }
}

/// Calls `act` (bytes, size) for all pieces of the live records that are state, each as long as
/// possible.
template <typename Act>
void for_each_piece(Act act) {
    for (const state_record* record : records) {
        auto* bytes = static_cast<uint8_t*>(record->data);
        size_t size = 0;
        for (const state_field& field : record->fields) {
            if (is_state(field)) {
                size += field.size;
                continue;
            }
            if (size) act(bytes, size);
            bytes += size + field.size;
            size = 0;
        }
        if (size) act(bytes, size);
    }
}

/// The records of a parked machine that their modules look at, as objects. What is not state in
/// them is as in the live ones.
class ParkedRecords {
public:
    explicit ParkedRecords(const machine_state& state) {
        const uint8_t* source = state.records.data();
        for (size_t n = 0; n < std::size(records); ++n) copy(*records[n], copies_[n], source);
    }
    const void* bytes(size_t number) const { return copies_[number].data(); }
    template <typename Record>
    const Record& of(const state_record& record) const {
        const auto number = size_t(std::ranges::find(records, &record) - records);
        return *static_cast<const Record*>(bytes(number));
    }

private:
    using Copy = std::vector<std::max_align_t>;

    /// Nobody looks at a record without a check, and two of them are large.
    static void copy(const state_record& record, Copy& to, const uint8_t*& source) {
        if (record.fault) {
            to.resize(record.size / sizeof(std::max_align_t) + 1);
            std::memcpy(to.data(), record.data, record.size);
        }
        size_t at = 0;
        for (const state_field& field : record.fields) {
            const uint32_t size = is_state(field) ? field.size : 0;
            if (record.fault) {
                std::memcpy(reinterpret_cast<uint8_t*>(to.data()) + at, source, size);
            }
            source += size;
            at += field.size;
        }
    }

    std::array<Copy, std::size(records)> copies_;
};

/// A recording that nothing is written to is silent for less than half an hour: what is longer
/// would be no tape, and keep the program busy.
constexpr int64_t LONGEST_SILENCE = int64_t(1) << 26; ///< samples

bool is_possible(const z80_record& z80, const tape_audio_state& tape) {
    if (!tape.recording || !tape.rolling) return true;
    const int64_t cycles = z80.t_count - tape.prev_save_clock;
    return cycles >= 0 && cycles / int64_t(z80.clock_hz) <= LONGEST_SILENCE / tape.rate;
}

/// What each module alone cannot know.
const char* fault_between(const ParkedRecords& parked, const machine_state& state) {
    const auto& z80 = parked.of<z80_record>(z80_state_record);
    const auto& tape = parked.of<cassette_state>(cassette_record);
    const auto& disks = parked.of<wd1771_controller>(wd1771_record).disks;
    bool disks_fit = true;
    for (size_t n = 0; n < DISK_DRIVES; ++n) disks_fit &= disks[n].size == state.media[n].size();
    const size_t tape_size = state.media[CASSETTE].size();
    const size_t text_size = state.media[TYPED_TEXT].size();
    const bool has_clock = z80.clock_hz >= SLOWEST_CLOCK && z80.clock_hz <= FASTEST_CLOCK;
    return first_fault(
        {{"z80_state.clock_hz", has_clock},
         {"tape_audio.prev_save_clock",
          !has_clock || is_possible(z80, parked.of<tape_audio_state>(tape_audio_record))},
         {"wd1771.disks", disks_fit},
         {"cassette.position", tape.position <= tape_size},
         {"cassette.cas_header_size", tape.cas_header_size <= tape_size},
         {"cassette.attached", tape.attached || tape_size == 0},
         // A carriage return at the end takes a byte behind it as well.
         {"typing.position", parked.of<typing_state>(typing_record).position <= text_size + 1}});
}

/// In short parts: longer ones the C library copies by a single instruction, which on many
/// processors takes fifteen times as long when the target stands eight bytes above the source
/// within a page.
void copy(uint8_t* to, const uint8_t* from, size_t size) {
    constexpr size_t PART = 1984;
    for (size_t at = 0; at < size; at += PART) {
        std::memcpy(to + at, from + at, std::min(PART, size - at));
    }
}

std::string value_of(const uint8_t* bytes, size_t size) {
    std::string text;
    for (size_t n = size; n > 0; --n) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", bytes[n - 1]);
        text += digits;
    }
    return text;
}

/// How a field differs: both values of a number, the first different byte of an array.
std::string difference_in(const state_field& field, const uint8_t* a, const uint8_t* b) {
    constexpr size_t LONGEST_NUMBER = 8;
    if (field.size <= LONGEST_NUMBER) {
        return ": " + value_of(a, field.size) + " and " + value_of(b, field.size);
    }
    const auto at = size_t(std::mismatch(a, a + field.size, b).first - a);
    return "[" + std::to_string(at) + "]: " + value_of(a + at, 1) + " and " + value_of(b + at, 1);
}

} // namespace

size_t machine_state_size() {
    size_t all = 0;
    for_each_piece([&](const uint8_t*, size_t size) { all += size; });
    return all;
}

void machine_save(machine_state& to) {
    to.records.resize(machine_state_size());
    uint8_t* target = to.records.data();
    for_each_piece([&](const uint8_t* bytes, size_t size) {
        copy(target, bytes, size);
        target += size;
    });
    for (size_t n = 0; n < media.size(); ++n) to.media[n] = *media[n].contents;
}

int machine_load(const machine_state& from) {
    if (from.records.size() != machine_state_size()) return 0;
    const uint8_t* source = from.records.data();
    for_each_piece([&](uint8_t* bytes, size_t size) {
        copy(bytes, source, size);
        source += size;
    });
    for (size_t n = 0; n < media.size(); ++n) *media[n].contents = from.media[n];
    wav_forget_window(); // of the tape that played in the other machine
    machine_host.stale();
    return 1;
}

std::string machine_state_problem(const machine_state& state) {
    constexpr const char* WHY = " has a value that is not possible";
    if (state.records.size() != machine_state_size()) return "it is not complete";
    const ParkedRecords parked(state);
    for (size_t n = 0; n < std::size(records); ++n) {
        const char* const field = records[n]->fault ? records[n]->fault(parked.bytes(n)) : nullptr;
        if (field) return std::string(records[n]->name) + "." + field + WHY;
    }
    const char* const field = fault_between(parked, state);
    return field ? std::string(field) + WHY : std::string();
}

std::vector<record_place> machine_record_places() {
    std::vector<record_place> places;
    size_t offset = 0;
    for (const state_record* record : records) {
        size_t size = 0;
        for (const state_field& field : record->fields) size += is_state(field) ? field.size : 0;
        places.push_back({record->name, record->version, offset, size});
        offset += size;
    }
    return places;
}

record_place machine_record_place(std::string_view name) {
    const auto places = machine_record_places();
    const auto found = std::ranges::find(places, name, &record_place::name);
    return found == places.end() ? record_place{} : *found;
}

const char* machine_medium_name(size_t number) { return media[number].name; }

std::string machine_difference(const machine_state& a, const machine_state& b) {
    if (a.records.size() != b.records.size()) return "one has not been saved";
    std::string difference;
    if (!a.records.empty()) {
        for_each_field([&](const state_record& record, const state_field& field, size_t at) {
            if (!difference.empty() || !is_state(field)) return;
            const uint8_t* const bytes = &a.records[at];
            const uint8_t* const others = &b.records[at];
            if (std::memcmp(bytes, others, field.size) == 0) return;
            difference =
                std::string(record.name) + "." + field.name + difference_in(field, bytes, others);
        });
    }
    for (size_t n = 0; n < media.size() && difference.empty(); ++n) {
        if (!(a.media[n] == b.media[n])) difference = media[n].name;
    }
    return difference;
}

int machine_equal(const machine_state& a, const machine_state& b) {
    return machine_difference(a, b).empty() ? 1 : 0;
}

std::string machine_layout() {
    std::string text;
    for_each_field([&](const state_record& record, const state_field& field, size_t offset) {
        char line[120];
        if (is_state(field)) {
            std::snprintf(line, sizeof line, "%7zu %6u %s.%s\n", offset, unsigned(field.size),
                          record.name, field.name);
        } else {
            std::snprintf(line, sizeof line, "      - %6u %s.%s\n", unsigned(field.size),
                          record.name, field.name);
        }
        text += line;
    });
    return text + std::to_string(machine_state_size()) + " bytes\n";
}

int machine_records_are_filled() {
    return std::ranges::all_of(records, [](const state_record* record) {
        size_t size = 0;
        for (const state_field& field : record->fields) size += field.size;
        return size == record->size;
    });
}
