#include "time/state_file.h"

#include "cgenie/palette.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "files/file_identity.h"
#include "files/whole_file.h"
#include "time/byte_stream.h"
#include "time/deflate.h"
#include "time/state_roms.h"

#include <algorithm>
#include <bit>
#include <string_view>

// The records go into the file as they are in memory.
static_assert(std::endian::native == std::endian::little);

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::string_view MARK = "Tarvelin state\n\x1A";
constexpr uint32_t FORMAT = 1;
constexpr size_t SUM_AT = MARK.size() + 2 * sizeof(uint32_t);
constexpr size_t CHUNKS_AT = SUM_AT + sizeof(uint32_t);
constexpr size_t MOST_CHUNKS = 64;
constexpr size_t LARGEST_CHUNK = 1 << 20;
constexpr size_t LONGEST_NAME = 255;
constexpr uint32_t LARGEST_PICTURE = 512; ///< pixels of a side

constexpr const char* DAMAGED = "it is damaged";
constexpr const char* NEWER = "it was made by a newer version of the program";

// Chunks beside those of the records and media.
constexpr const char* ABOUT = "about";
constexpr const char* PICTURE = "picture";
constexpr const char* ATTACHMENTS = "attachments";
constexpr const char* ROMS = "roms";

/// Where the contents of a medium are.
enum : uint8_t { EMPTY, IN_FILE, ELSEWHERE };

struct Chunk {
    std::string name;
    uint64_t version = 0;
    uint64_t size = 0; ///< of the contents
    std::span<const uint8_t> deflated;
};

/// The versions that this program writes.
std::vector<std::pair<std::string, uint32_t>> known_chunks() {
    std::vector<std::pair<std::string, uint32_t>> known = {
        {ABOUT, 1}, {PICTURE, 1}, {ATTACHMENTS, 1}, {ROMS, 1}};
    for (const record_place& place : machine_record_places()) {
        known.emplace_back(place.name, place.version);
    }
    for (size_t n = 0; n < MACHINE_MEDIA; ++n) known.emplace_back(machine_medium_name(n), 1);
    return known;
}

/// The CRC of all but the check sum itself.
uint32_t check_sum(std::span<const uint8_t> file) {
    return crc32_of(file.subspan(CHUNKS_AT), crc32_of(file.first(SUM_AT)));
}

// ---- writing -----------------------------------------------------------------------------------

void write_chunk(ByteWriter& to, std::string_view name, uint32_t version,
                 std::span<const uint8_t> contents) {
    to.text(name);
    to.number(version);
    to.number(contents.size());
    to.counted(deflated(contents));
}

bool is_elsewhere(const medium_origin& origin, bool whole) {
    return origin.unchanged && !whole && !origin.path.empty();
}

Bytes about_bytes(const machine_state& state, const state_description& about, bool whole) {
    ByteWriter to;
    to.text(about.version.substr(0, LONGEST_NAME));
    to.signed_number(about.time);
    to.text(about.running.substr(0, LONGEST_NAME));
    for (size_t n = 0; n < MACHINE_MEDIA; ++n) {
        const medium_origin& origin = about.media[n];
        const bool empty = state.media[n].empty();
        to.byte(empty ? EMPTY : is_elsewhere(origin, whole) ? ELSEWHERE : IN_FILE);
        to.text(origin.path);
        to.word64(content_hash(state.media[n].view()));
    }
    return to.take();
}

Bytes picture_bytes(const state_picture& picture) {
    ByteWriter to;
    to.number(picture.width);
    to.number(picture.height);
    to.raw(picture.rgb);
    return to.take();
}

// ---- reading -----------------------------------------------------------------------------------

/// A file of which the check sum is right, taken apart.
struct StateReader {
    std::span<const state_converter> converters;
    std::vector<Chunk> chunks = {};
    std::string problem = {};

    bool fail(const std::string& why) {
        if (problem.empty()) problem = why;
        return false;
    }

    bool open(std::span<const uint8_t> file) {
        const std::string_view mark(reinterpret_cast<const char*>(file.data()),
                                    std::min(file.size(), MARK.size()));
        if (mark != MARK) return fail("it is not a state file");
        ByteReader head(file.subspan(MARK.size()));
        if (head.word32() > FORMAT && head.good()) return fail(NEWER);
        const uint32_t size = head.word32();
        const uint32_t sum = head.word32();
        if (file.size() < size || !head.good()) return fail("it is cut short");
        if (file.size() != size || check_sum(file) != sum) return fail(DAMAGED);
        return read_chunks(head);
    }

    bool read_chunks(ByteReader& from) {
        const auto known = known_chunks();
        while (!from.empty()) {
            Chunk chunk = {from.text(), from.number(), from.number(), from.counted()};
            if (!from.good() || chunks.size() == MOST_CHUNKS) return fail(DAMAGED);
            const auto now =
                std::ranges::find(known, chunk.name, &std::pair<std::string, uint32_t>::first);
            if (now == known.end() || chunk.version > now->second) return fail(NEWER);
            chunks.push_back(std::move(chunk));
        }
        return true;
    }

    /// The contents of the chunk as its present version has them.
    bool contents(std::string_view name, uint32_t version, size_t largest, Bytes& to) {
        const auto chunk = std::ranges::find(chunks, name, &Chunk::name);
        uint64_t found = 0;
        to = {};
        if (chunk != chunks.end()) {
            auto bytes =
                chunk->size > largest ? std::nullopt : inflated(chunk->deflated, chunk->size);
            if (!bytes) return fail(DAMAGED);
            to = std::move(*bytes);
            found = chunk->version;
        }
        for (; found < version; ++found) {
            const auto converter = std::ranges::find_if(converters, [&](const auto& one) {
                return one.chunk == name && one.version == found;
            });
            if (converter == converters.end()) return fail(DAMAGED);
            to = converter->convert(std::move(to));
        }
        return true;
    }

    bool contents(std::string_view name, Bytes& to) { return contents(name, 1, LARGEST_CHUNK, to); }
};

/// `places` gets where the contents of each medium are.
bool read_about(StateReader& file, state_description& about,
                std::array<uint8_t, MACHINE_MEDIA>& places) {
    Bytes bytes;
    if (!file.contents(ABOUT, bytes)) return false;
    ByteReader from(bytes);
    about.version = from.text();
    about.time = from.signed_number();
    about.running = from.text();
    for (size_t n = 0; n < MACHINE_MEDIA; ++n) {
        places[n] = from.byte();
        about.media[n] = {from.text(), from.word64(), places[n] == ELSEWHERE};
        if (places[n] > ELSEWHERE) from.fail();
    }
    const bool is_short =
        about.version.size() <= LONGEST_NAME && about.running.size() <= LONGEST_NAME;
    return from.good() && from.empty() && is_short ? true : file.fail(DAMAGED);
}

bool read_picture(StateReader& file, state_picture& picture) {
    Bytes bytes;
    if (!file.contents(PICTURE, bytes)) return false;
    ByteReader from(bytes);
    const uint64_t width = from.number();
    const uint64_t height = from.number();
    const auto rgb = from.rest();
    if (!from.good() || width > LARGEST_PICTURE || height > LARGEST_PICTURE ||
        rgb.size() != width * height * 3) {
        return file.fail(DAMAGED);
    }
    picture = {uint32_t(width), uint32_t(height), {rgb.begin(), rgb.end()}};
    return true;
}

bool read_description(StateReader& file, state_description& about,
                      std::array<uint8_t, MACHINE_MEDIA>& places) {
    Bytes bytes;
    if (!read_about(file, about, places) || !read_picture(file, about.picture)) return false;
    if (!file.contents(ATTACHMENTS, bytes)) return false;
    about.attachments = shared_bytes(std::move(bytes));
    return true;
}

bool read_records(StateReader& file, Bytes& records, const state_sources& sources) {
    records.reserve(machine_state_size());
    Bytes bytes;
    for (const record_place& place : machine_record_places()) {
        if (!file.contents(place.name, place.version, LARGEST_CHUNK, bytes)) return false;
        if (bytes.size() != place.size) return file.fail(DAMAGED);
        records.insert(records.end(), bytes.begin(), bytes.end());
    }
    if (!file.contents(ROMS, bytes)) return false;
    const std::string problem = put_roms_in(records, bytes, sources);
    return problem.empty() ? true : file.fail(problem);
}

bool read_medium(StateReader& file, size_t number, uint8_t place, const medium_origin& origin,
                 const state_sources& sources, shared_bytes& medium) {
    if (place == EMPTY) return true;
    Bytes bytes;
    if (place == IN_FILE) {
        if (!file.contents(machine_medium_name(number), 1, LARGEST_FILE, bytes)) return false;
    } else {
        auto files = sources.medium ? sources.medium(number, origin) : state_sources::Files();
        const auto found = std::ranges::find_if(
            files, [&](const Bytes& one) { return content_hash(one) == origin.hash; });
        if (found == files.end()) {
            if (sources.missing) *sources.missing = origin.path;
            return file.fail("it needs " + origin.path + " as it was then");
        }
        bytes = std::move(*found);
    }
    medium = shared_bytes(std::move(bytes));
    return true;
}

} // namespace

std::span<const state_converter> state_converters() { return {}; }

state_picture state_file_picture() {
    constexpr uint32_t WIDTH = SCREEN_WIDTH / 2, HEIGHT = SCREEN_HEIGHT / 2;
    // The line engine draws when a frame is shown; what it last drew is part of the state.
    const Bytes drawn(frame_buffer, frame_buffer + frame_buffer_record.size);
    if (!g_bCycleBasedEngine) video_render_frame();
    state_picture picture = {WIDTH, HEIGHT, {}};
    picture.rgb.reserve(size_t(WIDTH) * HEIGHT * 3);
    for (uint32_t n = 0; n < WIDTH * HEIGHT; ++n) {
        const uint8_t* const top = frame_buffer + n / WIDTH * 2 * SCREEN_WIDTH + n % WIDTH * 2;
        for (int component = 0; component < 3; ++component) {
            int sum = 0;
            for (const uint8_t* const pixels : {top, top + SCREEN_WIDTH}) {
                sum += video_get_palette_value(pixels[0], component) +
                       video_get_palette_value(pixels[1], component);
            }
            picture.rgb.push_back(uint8_t(sum / 4));
        }
    }
    std::ranges::copy(drawn, frame_buffer);
    return picture;
}

std::vector<uint8_t> state_file_pack(const machine_state& state, const state_description& about,
                                     bool whole) {
    ByteWriter chunks;
    Bytes records = state.records;
    const Bytes roms = take_roms_out(records);
    write_chunk(chunks, ABOUT, 1, about_bytes(state, about, whole));
    write_chunk(chunks, PICTURE, 1, picture_bytes(about.picture));
    write_chunk(chunks, ATTACHMENTS, 1, about.attachments.view());
    write_chunk(chunks, ROMS, 1, roms);
    for (const record_place& place : machine_record_places()) {
        write_chunk(chunks, place.name, place.version,
                    std::span(records).subspan(place.offset, place.size));
    }
    for (size_t n = 0; n < MACHINE_MEDIA; ++n) {
        const bool elsewhere = is_elsewhere(about.media[n], whole);
        if (state.media[n].empty() || elsewhere) continue;
        write_chunk(chunks, machine_medium_name(n), 1, state.media[n].view());
    }
    ByteWriter file;
    file.raw({reinterpret_cast<const uint8_t*>(MARK.data()), MARK.size()});
    file.word32(FORMAT);
    file.word32(uint32_t(CHUNKS_AT + chunks.size()));
    file.word32(0);
    file.raw(chunks.bytes());
    Bytes bytes = file.take();
    ByteWriter sum;
    sum.word32(check_sum(bytes));
    std::ranges::copy(sum.bytes(), bytes.begin() + SUM_AT);
    return bytes;
}

std::string state_file_unpack(std::span<const uint8_t> file, machine_state& state,
                              state_description& about, const state_sources& sources,
                              std::span<const state_converter> converters) {
    StateReader reader = {.converters = converters};
    state_description found;
    std::array<uint8_t, MACHINE_MEDIA> places = {};
    machine_state unpacked;
    if (!reader.open(file) || !read_description(reader, found, places) ||
        !read_records(reader, unpacked.records, sources)) {
        return reader.problem;
    }
    for (size_t n = 0; n < MACHINE_MEDIA; ++n) {
        if (!read_medium(reader, n, places[n], found.media[n], sources, unpacked.media[n])) {
            return reader.problem;
        }
    }
    const std::string problem = machine_state_problem(unpacked);
    if (!problem.empty()) return std::string(DAMAGED) + ": " + problem;
    state = std::move(unpacked);
    about = std::move(found);
    return {};
}

std::string state_file_describe(std::span<const uint8_t> file, state_description& about) {
    StateReader reader = {.converters = state_converters()};
    state_description found;
    std::array<uint8_t, MACHINE_MEDIA> places = {};
    if (!reader.open(file) || !read_description(reader, found, places)) return reader.problem;
    about = std::move(found);
    return {};
}
