/// States of the machine: as files, with the right check sum whatever is in them, and as values
/// anywhere in the records of a machine with all its media. Whatever is taken as possible is run in
/// both engines, with every device used, and goes through a file without a change.

#include "time/state_file.h"

#include "cgenie/bus.h"
#include "cgenie/memory/memory.h"
#include "cgenie/palette.h"
#include "cgenie/video.h"
#include "cgenie/video_output.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "media/printer.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"
#include "sound/ym2149.h"
#include "support/machine.h"
#include "time/byte_stream.h"
#include "time/deflate.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace {

enum : uint8_t {
    TAPE_KIND = 0x03, ///< none, a cassette, a WAV file that plays, one that is recorded
    BEAM_ENGINE = 0x04,
    CLEAN_SOUND = 0x08,
    MANY_FRAMES = 0x10,
    THROUGH_A_FILE = 0x20,
    AS_A_FILE = 0x80
};
constexpr uint8_t MACHINES = 0x10; ///< that are made of the flags below

shared_bytes bytes_of_text(const std::string& text) {
    return shared_bytes(std::vector<uint8_t>(text.begin(), text.end()));
}

void put_tape_in(uint8_t kind) {
    constexpr wav_format WAV = {44, 100000, 44100, 16, 2, 0};
    if (kind == 1) machine_apply(event_kind::tape_in, 0, 0, shared_bytes({0xAA, 0x66, 0x55, 1, 2}));
    if (kind == 2) machine_apply(event_kind::tape_play_wav, 0, 0, bytes_of(WAV));
    if (kind == 3) machine_apply(event_kind::tape_record_wav, 44100);
    machine_apply(event_kind::tape_motor, 1);
}

/// A busy machine: a program of BASIC is being typed, tones sound, a disk turns.
machine_state busy_machine(uint8_t flags) {
    fresh_machine();
    machine_apply(event_kind::engine, (flags & BEAM_ENGINE) != 0);
    machine_apply(event_kind::clean_sound, (flags & CLEAN_SOUND) != 0);
    machine_apply(event_kind::disk_in, 0, 0, shared_bytes(std::vector<uint8_t>(89600, 0xE5)));
    machine_apply(event_kind::disk_in, 3, 1, shared_bytes(std::vector<uint8_t>(368640, 1)));
    machine_apply(event_kind::printer, 1);
    machine_apply(event_kind::printer_file, 1);
    put_tape_in(flags & TAPE_KIND);
    machine_apply(event_kind::typing_trap);
    machine_apply(event_kind::type_text, 0, 0,
                  bytes_of_text("\rPLAY(1,3,5,12):FORI=1TO999:PRINTI\r"));
    for (int frame = 0; frame < 60; ++frame) machine_run();
    machine_state state;
    machine_save(state);
    return state;
}

/// Where a byte of the records stands that is no mere contents.
std::vector<uint32_t> places_of_values() {
    std::vector<uint32_t> places;
    for (const record_place& place : machine_record_places()) {
        const std::string name = place.name;
        if (name == "frame_buffer") continue;
        const size_t first = name == "memory_state" ? place.size - 272
                             : name == "sound_core" ? sizeof(uint16_t) * 1920
                                                    : 0;
        const size_t end = name == "tape_audio" || name == "video_state" ? 150 : place.size;
        for (size_t n = first; n < std::min(end, place.size); ++n) {
            places.push_back(uint32_t(place.offset + n));
        }
    }
    return places;
}

void use_disks(uint8_t value) {
    constexpr int BYTES = 260; // a little more than a sector
    for (const uint8_t drive : {1, 8, 4, 0}) {
        for (unsigned command = 0; command < 0x100; command += 0x10) {
            mem_write(0xFFEC, uint8_t(command | (value & 0x0F)));
            for (int n = 0; n < BYTES; ++n) mem_read(0xFFEF);
            for (int n = 0; n < BYTES; ++n)
                mem_write(0xFFEF, n % 7 ? value : uint8_t(0xF7 + n % 9));
            mem_read(0xFFEC);
            mem_read(0xFFE0);
            mem_write(0xFFED, value);
            mem_write(0xFFEE, value & 0x0F);
        }
        mem_write(0xFFE0, drive);
    }
}

void use_devices(uint8_t value) {
    use_disks(value);
    for (uint32_t address = 0; address < MEMORY_SIZE; address += 61) {
        mem_write(address, uint8_t(mem_read(address) + value));
    }
    for (uint32_t port = 0; port < 0x100; ++port) {
        z80_out(port, uint8_t(value + port));
        z80_in(port);
    }
    for (uint8_t reg = 0; reg < 18; ++reg) {
        z80_out(0xF8, reg);
        z80_out(0xF9, uint8_t(value * reg));
        z80_in(0xF9);
        z80_out(0xFA, reg);
        z80_in(0xFB);
    }
    for (int trap = 0; trap <= 12; ++trap) trap_handle(trap);
    print_byte(value);
    machine_apply(event_kind::tape_moves);
}

void show() {
    static std::vector<uint8_t> canvas(size_t(SCREEN_WIDTH) * SCREEN_HEIGHT * 16);
    palette_update();
    video_resize_frame(canvas.data(), 0, SCREEN_WIDTH, 1, 0);
    video_resize_frame(canvas.data(), 0, 2 * SCREEN_WIDTH, 0, 0);
}

/// Frames that are some millions of cycles long are few.
void run(const machine_state& state, bool many) {
    constexpr int64_t CYCLES = 300'000, MANY_CYCLES = 4'500'000;
    machine_load(state);
    const int64_t end = z80_state.t_count + (many ? MANY_CYCLES : CYCLES);
    const bool beam = g_bCycleBasedEngine;
    for (uint8_t frame = 0; frame < 100 && z80_state.t_count < end; ++frame) {
        if (frame == 1) use_devices(0x5A);
        if (frame == 2 && !many) machine_apply(event_kind::engine, !beam);
        if (frame % 10 == 9) machine_apply(event_kind::engine, frame % 20 == 9);
        machine_run();
        video_render_frame();
    }
    show();
    use_devices(0xC3);
    for (const event_kind kind :
         {event_kind::tape_rewind, event_kind::tape_close_wav, event_kind::stop_typing,
          event_kind::reset, event_kind::restart, event_kind::start_sound}) {
        machine_apply(kind);
    }
    for (const int32_t configuration : {4, 0, 2}) {
        machine_apply(event_kind::configure, configuration, 1);
        machine_step();
    }
}

/// A file of the chunks, with head and check sum.
std::vector<uint8_t> file_of(std::span<const uint8_t> chunks) {
    static const std::vector<uint8_t> model = state_file_pack(busy_machine(0), {}, true);
    constexpr size_t SIZE_AT = 20, CHUNKS_AT = 28;
    ByteWriter file;
    file.raw(std::span(model).first(SIZE_AT));
    file.word32(uint32_t(CHUNKS_AT + chunks.size()));
    file.word32(crc32_of(chunks, crc32_of(file.bytes())));
    file.raw(chunks);
    return file.take();
}

void look_at_file(std::span<const uint8_t> chunks) {
    const std::vector<uint8_t> file = file_of(chunks);
    machine_state state;
    state_description about;
    state_file_describe(file, about);
    const std::string problem = state_file_unpack(file, state, about);
    require(problem.empty() == !state.records.empty(), "what is refused changes nothing");
    if (problem.empty()) run(state, false);
}

/// Changes values as the input says, but for those that would make the state an impossible one.
machine_state changed(const machine_state& parked, Input& input) {
    static const std::vector<uint32_t> places = places_of_values();
    machine_state state = parked;
    while (!input.empty()) {
        const size_t first = places[input.word() % places.size()];
        const auto bytes = input.take(1 + input.byte() % 8);
        const auto target = std::span(state.records)
                                .subspan(first)
                                .first(std::min(bytes.size(), state.records.size() - first));
        const std::vector<uint8_t> before(target.begin(), target.end());
        std::copy_n(bytes.begin(), target.size(), target.begin());
        if (!machine_state_problem(state).empty()) std::ranges::copy(before, target.begin());
    }
    return state;
}

/// A changed ROM is the user's, and asked for.
state_sources::Files roms_of(const machine_state& state, const rom_piece& piece) {
    const uint8_t* const memories = &state.records[machine_record_place("memory_state").offset];
    const uint8_t* const video = &state.records[machine_record_place("video_state").offset];
    const std::array<const uint8_t*, 3> roms = {memories + offsetof(memory_contents, basic_rom),
                                                memories + offsetof(memory_contents, expansion_rom),
                                                video + offsetof(video_circuit, charset)};
    return {{roms[size_t(piece.area)], roms[size_t(piece.area)] + piece.bytes}};
}

void go_through_file(const machine_state& state) {
    machine_state again;
    state_description about;
    const state_sources sources = {.rom = [&](const auto& piece) { return roms_of(state, piece); }};
    require(state_file_unpack(state_file_pack(state, {}, true), again, about, sources).empty(),
            "what is possible goes through a file");
    require(machine_equal(state, again) != 0, "a file changes nothing");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static std::array<machine_state, MACHINES> machines;
    machine_host = machine_without_host();
    Input input(data, size);
    const uint8_t flags = input.byte();
    if (flags & AS_A_FILE) return look_at_file(input.rest()), 0;
    machine_state& parked = machines[flags % MACHINES];
    if (parked.records.empty()) parked = busy_machine(flags);
    const machine_state state = changed(parked, input);
    if (flags & THROUGH_A_FILE) go_through_file(state);
    run(state, (flags & MANY_FRAMES) != 0);
    return 0;
}
