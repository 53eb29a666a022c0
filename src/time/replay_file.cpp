#include "time/replay_file.h"

#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "files/file_identity.h"
#include "time/deflate.h"
#include "time/event_code.h"

#include <algorithm>

namespace {

constexpr std::string_view MARK = "Tarvelin replay\n";
constexpr uint16_t FORMAT_VERSION =
    3; ///< 1: without event_kind::tape_seek; 2: without event_kind::registers
/// A second with a new disk in each drive stays below it.
constexpr uint64_t MOST_EVENT_BYTES = 100 << 20;

std::span<const uint8_t> bytes_of_text(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

bool is_user_rom(const machine_event& event) {
    return event.kind == event_kind::rom_bytes && !event.bytes.empty();
}

machine_event without_rom(const machine_event& event) {
    const replay_rom rom = rom_reference(event.bytes.view());
    ByteWriter reference;
    reference.word32(rom.size);
    reference.word64(rom.hash);
    machine_event short_event = event;
    short_event.b = ROM_BY_REFERENCE;
    short_event.bytes = shared_bytes(reference.take());
    return short_event;
}

std::vector<uint8_t> without_roms(std::span<const machine_event> events) {
    if (std::ranges::none_of(events, is_user_rom)) return events_to_bytes(events);
    std::vector<machine_event> changed(events.begin(), events.end());
    for (machine_event& event : changed) {
        if (is_user_rom(event)) event = without_rom(event);
    }
    return events_to_bytes(changed);
}

void put_check(ByteWriter& to, const replay_check& check) {
    to.number(uint64_t(check.frame));
    to.byte(uint8_t(check.of));
    to.word32(check.picture);
    to.word32(check.bytes);
}

replay_check take_check(ByteReader& from) {
    replay_check check;
    check.frame = int64_t(from.number());
    check.of = replay_check::Of(from.byte());
    check.picture = from.word32();
    check.bytes = from.word32();
    return check;
}

std::string read_events(ByteReader contents, replay_chunk& chunk) {
    chunk.check = take_check(contents);
    const uint64_t size = contents.number();
    if (!contents.good() || size > MOST_EVENT_BYTES) return "events without a size";
    const auto bytes = inflated(contents.rest(), size_t(size));
    if (!bytes) return "events that cannot be inflated";
    return events_from_bytes(*bytes, chunk.events);
}

/// Fills the chunk; returns what is wrong with its contents.
std::string read_contents(char kind, std::span<const uint8_t> bytes, replay_chunk& chunk) {
    using enum replay_chunk::Kind;
    ByteReader contents(bytes);
    switch (kind) {
    case 'S':
        chunk.kind = state;
        chunk.state_file = bytes;
        return {};
    case 'T':
        chunk.kind = tape;
        chunk.tape.path = contents.text();
        chunk.tape.hash = contents.word64();
        return contents.good() ? std::string() : "a tape without its name";
    case 'E': chunk.kind = events; return read_events(contents, chunk);
    case 'Z':
        chunk.kind = end;
        chunk.frames = int64_t(contents.number());
        return contents.good() ? std::string() : "an end without a frame";
    default: return "a part of an unknown kind";
    }
}

} // namespace

replay_check replay_check_now(int64_t frame) {
    const bool whole = !frame_state.begun;
    replay_check check = {.frame = frame,
                          .of = whole ? replay_check::Of::all : replay_check::Of::bytes};
    check.bytes = crc32_of(memory_state.address_space);
    if (!whole) return check;
    if (!g_bCycleBasedEngine) video_render_frame();
    check.picture = crc32_of({frame_buffer, size_t(SCREEN_WIDTH) * SCREEN_HEIGHT});
    return check;
}

std::string replay_difference(const replay_check& wanted) {
    if (wanted.of == replay_check::Of::nothing) return {};
    const replay_check now = replay_check_now(wanted.frame);
    if (now.of != wanted.of) return "another moment of the frame";
    if (now.picture != wanted.picture) return "another picture";
    if (now.bytes != wanted.bytes) return "other memory contents";
    return {};
}

replay_rom rom_reference(std::span<const uint8_t> image) {
    return {uint32_t(image.size()), content_hash(image)};
}

std::optional<replay_rom> rom_reference_of(const machine_event& event) {
    if (event.kind != event_kind::rom_bytes || event.b != ROM_BY_REFERENCE) return std::nullopt;
    ByteReader reference(event.bytes.view());
    replay_rom rom;
    rom.size = reference.word32();
    rom.hash = reference.word64();
    return rom;
}

// ---- writing -----------------------------------------------------------------------------------

bool ReplayWriter::open(const std::string& path, std::string_view program_version) {
    file_ = open_file(path, "wb");
    memory_ = nullptr;
    return head(program_version);
}

void ReplayWriter::begin(std::vector<uint8_t>& bytes, std::string_view program_version) {
    memory_ = &bytes;
    head(program_version);
}

bool ReplayWriter::head(std::string_view program_version) {
    size_ = 0;
    ByteWriter head;
    head.raw(bytes_of_text(MARK));
    head.word16(FORMAT_VERSION);
    head.text(program_version);
    return put(head.bytes());
}

bool ReplayWriter::put(std::span<const uint8_t> bytes) {
    if (memory_) {
        memory_->insert(memory_->end(), bytes.begin(), bytes.end());
        size_ += bytes.size();
        return true;
    }
    if (!file_) return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size();
    if (!written || std::fflush(file_.get()) != 0) {
        file_.reset();
        return false;
    }
    size_ += bytes.size();
    return true;
}

bool ReplayWriter::chunk(char kind, std::span<const uint8_t> contents) {
    ByteWriter all;
    all.byte(uint8_t(kind));
    all.word32(uint32_t(contents.size()));
    all.raw(contents);
    all.word32(crc32_of(all.bytes()));
    return put(all.bytes());
}

bool ReplayWriter::state(std::span<const uint8_t> state_file) { return chunk('S', state_file); }

bool ReplayWriter::tape(const replay_tape& tape) {
    ByteWriter contents;
    contents.text(tape.path);
    contents.word64(tape.hash);
    return chunk('T', contents.bytes());
}

bool ReplayWriter::events(std::span<const machine_event> events, const replay_check& behind) {
    const std::vector<uint8_t> bytes = without_roms(events);
    ByteWriter contents;
    put_check(contents, behind);
    contents.number(bytes.size());
    contents.raw(deflated(bytes));
    return chunk('E', contents.bytes());
}

bool ReplayWriter::end(int64_t frames) {
    ByteWriter contents;
    contents.number(uint64_t(frames));
    const bool written = chunk('Z', contents.bytes());
    file_.reset();
    return written;
}

// ---- reading -----------------------------------------------------------------------------------

std::optional<int64_t> replay_frames(std::span<const uint8_t> end_of_file) {
    constexpr size_t HEAD = 5, SUM = 4, LONGEST_NUMBER = 10;
    for (size_t size = 1; size <= LONGEST_NUMBER; ++size) {
        const size_t all = HEAD + size + SUM;
        if (end_of_file.size() < all) return {};
        const auto chunk = end_of_file.last(all);
        ByteReader reader(chunk);
        const auto kind = char(reader.byte());
        if (kind != 'Z' || reader.word32() != size) continue;
        const uint64_t frames = reader.number();
        if (reader.word32() == crc32_of(chunk.first(HEAD + size)) && reader.good()) {
            return int64_t(frames);
        }
    }
    return {};
}

std::string ReplayReader::open(std::span<const uint8_t> bytes) {
    ByteReader head(bytes);
    const auto mark = head.raw(MARK.size());
    if (!std::ranges::equal(mark, bytes_of_text(MARK))) return "it is not a replay";
    const uint16_t version = head.word16();
    if (version > FORMAT_VERSION) return "it is from a newer version of the program";
    program_version_ = head.text();
    if (!head.good() || version == 0) return "it is not whole";
    rest_ = head;
    return {};
}

replay_chunk ReplayReader::next() {
    constexpr size_t HEAD = 5;
    replay_chunk chunk;
    const auto bytes = rest_.rest();
    const auto kind = char(rest_.byte());
    const uint32_t size = rest_.word32();
    const auto contents = rest_.raw(size);
    const uint32_t crc = rest_.word32();
    if (!rest_.good()) return chunk;
    if (crc == crc32_of(bytes.first(HEAD + size))) {
        chunk.damage = read_contents(kind, contents, chunk);
        if (chunk.damage.empty() && chunk.kind != replay_chunk::Kind::end) return chunk;
    } else {
        chunk.damage = "a wrong check sum";
    }
    rest_.fail();
    if (!chunk.damage.empty()) chunk.kind = replay_chunk::Kind::damaged;
    return chunk;
}
