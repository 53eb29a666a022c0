#include "time/state_roms.h"

#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "files/file_identity.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

using Bytes = std::vector<uint8_t>;
using enum FirmwareImage;

constexpr uint8_t UNPROGRAMMED = 0xFF;

/// A part of a record that holds a ROM, and what may be in it beside a file of the user's.
struct RomArea {
    const char* name; ///< for a person
    const char* record;
    size_t offset; ///< in the record
    size_t size;
    std::array<FirmwareImage, 3> images;
    size_t image_count;
    uint8_t filled_with;   ///< where there is no image
    bool first_lies_below; ///< below a file that is shorter, instead
    const uint8_t* live;
    bool needed = true; ///< the machine sees it
};
// The first three as in rom_file.
const std::array<RomArea, 4> areas = {{
    {"BASIC ROM",
     "memory_state",
     offsetof(memory_contents, basic_rom),
     BASIC_ROM_SIZE,
     {basic_v1, basic_v2, basic_v2sn},
     3,
     0,
     true,
     active_rom},
    {"expansion ROM",
     "memory_state",
     offsetof(memory_contents, expansion_rom),
     DISK_ROM_SIZE,
     {disk},
     1,
     UNPROGRAMMED,
     false,
     current_eprom},
    {"character set",
     "video_state",
     offsetof(video_circuit, charset),
     CHARSET_SIZE,
     {charset_original, charset_german, charset_emulator},
     3,
     0,
     false,
     current_charset},
    {"rest of the expansion ROM",
     "memory_state",
     offsetof(memory_contents, expansion_rom) + DISK_ROM_SIZE,
     EXPANSION_SIZE - DISK_ROM_SIZE,
     {},
     0,
     UNPROGRAMMED,
     false,
     current_eprom + DISK_ROM_SIZE,
     false},
}};

std::span<uint8_t> bytes_of_area(Bytes& records, const RomArea& area) {
    const size_t at = machine_record_place(area.record).offset + area.offset;
    return std::span(records).subspan(at, area.size);
}

std::span<uint8_t> working_copy(Bytes& records) {
    return std::span(records).subspan(machine_record_place("memory_state").offset, BASIC_ROM_SIZE);
}

/// The area with these bytes at its start.
Bytes laid_over(const RomArea& area, std::span<const uint8_t> bytes, Bytes below) {
    below.resize(area.size, area.filled_with);
    std::ranges::copy(bytes.first(std::min(bytes.size(), area.size)), below.begin());
    return below;
}

/// How many bytes at the start of the area are not those of the program.
size_t length_of_users(const RomArea& area, std::span<const uint8_t> bytes) {
    const auto unlike = [&](std::span<const uint8_t> image) {
        const Bytes whole = laid_over(area, image, {});
        size_t length = area.size;
        while (length > 0 && whole[length - 1] == bytes[length - 1]) --length;
        return length;
    };
    size_t length = unlike({});
    for (size_t n = 0; n < area.image_count; ++n) {
        length = std::min(length, unlike(firmware_built_in(area.images[n])));
    }
    return length;
}

bool is_piece(const rom_piece& piece, std::span<const uint8_t> bytes) {
    return bytes.size() >= piece.bytes && content_hash(bytes.first(piece.bytes)) == piece.hash;
}

/// Copies the bytes of the piece into the area.
bool find_piece(const RomArea& area, const rom_piece& piece, std::span<uint8_t> to,
                const state_sources& sources) {
    const auto is_it = [&](const Bytes& whole) {
        if (!is_piece(piece, whole)) return false;
        std::copy_n(whole.begin(), piece.bytes, to.begin());
        return true;
    };
    for (size_t n = 0; n < area.image_count; ++n) {
        if (is_it(laid_over(area, firmware_bytes(area.images[n]), {}))) return true;
    }
    if (is_it({area.live, area.live + area.size})) return true;
    if (!area.needed) return std::ranges::fill(to, area.filled_with), true;
    if (!sources.rom) return false;
    Bytes below;
    if (area.first_lies_below) {
        const auto first = firmware_bytes(area.images[0]);
        below.assign(first.begin(), first.end());
    }
    return std::ranges::any_of(
        sources.rom(piece), [&](const Bytes& file) { return is_it(laid_over(area, file, below)); });
}

void write_patches(ByteWriter& to, std::span<const uint8_t> patched,
                   std::span<const uint8_t> original) {
    ByteWriter runs;
    size_t count = 0;
    for (size_t at = 0; at < patched.size(); ++at) {
        size_t end = at;
        while (end < patched.size() && patched[end] != original[end]) ++end;
        if (end == at) continue;
        runs.number(at);
        runs.counted(patched.subspan(at, end - at));
        ++count;
        at = end;
    }
    to.number(count);
    to.raw(runs.bytes());
}

bool read_patches(ByteReader& from, std::span<uint8_t> to) {
    for (uint64_t count = from.number(); count > 0 && from.good(); --count) {
        const uint64_t at = from.number();
        const auto bytes = from.counted();
        if (at > to.size() || bytes.size() > to.size() - at) return false;
        std::ranges::copy(bytes, to.begin() + ptrdiff_t(at));
    }
    return from.good() && from.empty();
}

} // namespace

std::vector<uint8_t> take_roms_out(std::vector<uint8_t>& records) {
    ByteWriter out;
    ByteWriter patches;
    write_patches(patches, working_copy(records), bytes_of_area(records, areas[0]));
    std::ranges::fill(working_copy(records), uint8_t(0));
    for (const RomArea& area : areas) {
        const auto bytes = bytes_of_area(records, area);
        const auto users = bytes.first(length_of_users(area, bytes));
        out.number(users.size());
        out.word64(content_hash(users));
        std::ranges::fill(users, uint8_t(0));
    }
    out.raw(patches.bytes());
    return out.take();
}

std::string put_roms_in(std::vector<uint8_t>& records, std::span<const uint8_t> taken_out,
                        const state_sources& sources) {
    ByteReader in(taken_out);
    for (size_t n = 0; n < areas.size(); ++n) {
        const RomArea& area = areas[n];
        const uint64_t length = in.number();
        const rom_piece piece = {int(n), uint32_t(std::min<uint64_t>(length, area.size)),
                                 in.word64()};
        if (length > area.size || !in.good()) return "it is damaged";
        if (length == 0 || find_piece(area, piece, bytes_of_area(records, area), sources)) continue;
        if (sources.missing) *sources.missing = area.name;
        return std::string("it needs the ") + area.name +
               " that it was made with, which is not there";
    }
    std::ranges::copy(bytes_of_area(records, areas[0]), working_copy(records).begin());
    return read_patches(in, working_copy(records)) ? std::string() : "it is damaged";
}
