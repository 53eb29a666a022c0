#include "host/previews.h"

#include "files/file_handle.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "files/zip/zip_folder.h"
#include "host/autostart.h"
#include "host/states.h"
#include "media/basic/basic_tokens.h"
#include "media/damage.h"
#include "media/files/cassette_files.h"
#include "media/files/tape_sound_files.h"
#include "platform/utf8.h"
#include "time/replay_file.h"
#include "time/state_file.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <optional>

namespace {

using Bytes = std::span<const uint8_t>;
using Lines = std::vector<std::string>;

constexpr size_t LONGEST_LINE = 200; ///< characters
constexpr size_t BASIC_LINES = 16;
constexpr size_t LONGEST_BASIC = 256; ///< bytes of a line
constexpr unsigned NAME_WIDTH = 12;

[[gnu::format(printf, 1, 2)]] std::string format(const char* text, ...) {
    char line[LONGEST_LINE];
    va_list values;
    va_start(values, text);
    std::vsnprintf(line, sizeof line, text, values);
    va_end(values);
    return line;
}

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

void add_damage(Lines& lines, const std::string& damage) {
    if (!damage.empty()) lines.push_back("Damaged: " + damage);
}

// ---- a kind of file each -----------------------------------------------------------------------

void preview_disk(Lines& lines, std::vector<uint8_t> bytes) {
    std::string problem;
    auto image = disk_image_of(std::move(bytes), problem);
    if (!image) return lines.push_back("No disk image: " + problem);
    lines.push_back(shape_text(*image));
    const auto disk = disk_mount(std::move(*image), problem);
    if (!disk) return lines.push_back("Without a directory of the disk ROM");
    const std::vector<DiskFile> files = disk_files(*disk);
    lines.push_back(counted(files.size(), "file") + ", " + free_text(*disk));
    lines.emplace_back();
    for (const DiskFile& file : files) {
        const std::string size = file.whole ? format("%7u", unsigned(file.bytes)) : "damaged";
        lines.push_back(padded(disk_name_text(file.name), NAME_WIDTH + 1));
        lines.back().append(size).append("  ").append(kind_text(file));
    }
}

void preview_tape(Lines& lines, Bytes bytes) {
    const auto programs = tape_programs(bytes);
    if (programs.empty()) return lines.push_back("There is no program on it");
    for (const TapeProgram& program : programs) {
        lines.emplace_back();
        const std::string name = readable(program.name);
        lines.push_back((name.empty() ? "" : name + ": ") + kind_text(program) + ", " +
                        size_text(program.bytes));
        const std::string addresses = addresses_text(program);
        if (!addresses.empty()) lines.push_back(addresses);
        add_damage(lines, program.damage);
        if (lines.size() > PREVIEW_LINES) return;
    }
}

void preview_module(Lines& lines, Bytes bytes) {
    const ProgramOutline module = load_module_outline(bytes);
    if (!module.name.empty()) lines.push_back(readable(module.name));
    if (module.bytes > 0) lines.push_back(counted(module.bytes, "byte") + " of machine code");
    const std::string addresses = addresses_text(module);
    if (!addresses.empty()) lines.push_back(addresses);
    add_damage(lines, module.damage);
}

/// A tokenized file of the first lines of this one, whose bytes may be anything.
BasicBytes first_lines(Bytes file) {
    constexpr size_t HEAD = 4; // link and number
    size_t end = 1;
    for (size_t n = 0; n < BASIC_LINES && end + HEAD < file.size(); ++n) {
        if (file[end] == 0 && file[end + 1] == 0) break;
        const Bytes text = file.subspan(end + HEAD);
        const Bytes line = text.first(std::min(text.size(), LONGEST_BASIC));
        const auto stop = std::ranges::find(line, 0);
        if (stop == line.end()) break;
        end += HEAD + size_t(stop - line.begin()) + 1;
    }
    BasicBytes lines(file.begin(), file.begin() + std::ptrdiff_t(std::min(end, file.size())));
    lines.insert(lines.end(), 2, 0);
    return lines;
}

void add_text(Lines& lines, std::string_view text) {
    while (!text.empty() && lines.size() < PREVIEW_LINES) {
        const size_t end = std::min(text.find_first_of("\r\n"), text.size());
        lines.push_back(readable(text.substr(0, std::min(end, LONGEST_LINE))));
        text.remove_prefix(end);
        text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<size_t>(text.size(), 1));
    }
}

void preview_basic(Lines& lines, Bytes bytes) {
    lines.emplace_back();
    if (!is_tokenized_bas(bytes)) {
        return add_text(lines, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    BasicProblem problem;
    const auto text = basic_decode(first_lines(bytes), problem);
    if (!text) return add_damage(lines, problem.text);
    add_text(lines, *text);
}

void preview_snapshot(Lines& lines, Bytes bytes) {
    lines.emplace_back("Registers and 48 KB of memory");
    add_damage(lines, snapshot_damage(bytes));
}

void preview_state(Lines& lines, Bytes bytes) {
    state_description about;
    const std::string problem = state_file_describe(bytes, about);
    if (!problem.empty()) return lines.push_back("Cannot be loaded: " + problem);
    lines.push_back(readable(description_text(about)));
    for (const medium_origin& medium : about.media) {
        if (!medium.path.empty()) lines.push_back(readable(file_name_of(medium.path)));
    }
}

void preview_rom(Lines&, Bytes) {}

// ---- files that are not read as a whole
// -----------------------------------------------------------

void preview_zip(Lines& lines, const std::string& path) {
    const ZipListing listing = zip_files(path);
    if (!listing.problem.empty()) return lines.push_back("It " + listing.problem);
    lines.push_back(counted(listing.files.size(), "file"));
    lines.emplace_back();
    for (const std::string& name : listing.files) {
        if (lines.size() > PREVIEW_LINES) return;
        lines.push_back(readable(name));
    }
}

void preview_sound(Lines& lines, const std::string& path) {
    FileHandle file;
    wav_format wav;
    const std::string problem = wav_file_open(path, file, wav);
    if (!problem.empty()) return lines.push_back("Cannot be played: " + problem);
    lines.push_back(
        format("%u Hz, %u bits, %s", wav.rate, wav.bits, wav.channels == 1 ? "mono" : "stereo"));
    lines.push_back(duration_text(wav.samples / wav.rate) + " minutes");
}

void preview_replay(Lines& lines, const std::string& path) {
    constexpr long PART = 4096;
    constexpr int64_t FRAMES_PER_SECOND = 50;
    const FileHandle file = open_file(path, "rb");
    const auto read = [&file] {
        std::vector<uint8_t> bytes(PART);
        bytes.resize(file ? std::fread(bytes.data(), 1, bytes.size(), file.get()) : 0);
        return bytes;
    };
    const std::vector<uint8_t> head = read();
    ReplayReader replay;
    const std::string problem = replay.open(head);
    if (!problem.empty()) return lines.push_back("Cannot be played: " + problem);
    lines.push_back("Recorded with version " + readable(replay.program_version()));
    const bool longer = std::fseek(file.get(), -PART, SEEK_END) == 0;
    const auto frames = replay_frames(longer ? read() : head);
    if (!frames) return lines.push_back("Without an end: it was cut off");
    lines.push_back(duration_text(uint64_t(*frames / FRAMES_PER_SECOND)) + " minutes");
}

// ---- which is which
// ------------------------------------------------------------------------------

struct Kind {
    std::string_view extension;
    const char* name;
    void (*whole)(Lines& lines, Bytes bytes);               ///< gets all bytes of the file
    void (*by_path)(Lines& lines, const std::string& path); ///< reads what it needs
};

void disk_bytes(Lines& lines, Bytes bytes) { preview_disk(lines, {bytes.begin(), bytes.end()}); }

constexpr Kind KINDS[] = {
    {"bas", "BASIC program", preview_basic, nullptr},
    {"cas", "Cassette", preview_tape, nullptr},
    {"cgd", "Disk", disk_bytes, nullptr},
    {"cgt", "Cassette", preview_tape, nullptr},
    {"cmd", "Load module", preview_module, nullptr},
    {"dsk", "Disk", disk_bytes, nullptr},
    {"img", "Disk", disk_bytes, nullptr},
    {"jzs", "Snapshot", preview_snapshot, nullptr},
    {"rom", "ROM image", preview_rom, nullptr},
    {"tvr", "Replay", nullptr, preview_replay},
    {"tvs", "State", preview_state, nullptr},
    {"txt", "Text", preview_basic, nullptr},
    {"wav", "Sound recording", nullptr, preview_sound},
    {"zip", "Zip file", nullptr, preview_zip},
};

/// The first line, and for files that cannot be looked at the only one.
Lines begin(const std::string& path, const Kind* kind) {
    return {std::string(kind ? kind->name : "File") + ", " +
            size_text(size_of_file(path).value_or(0))};
}

} // namespace

std::vector<std::string> preview_of(const std::string& path) {
    if (path.empty() || is_folder(path)) return {};
    const std::string problem = file_problem(path, LARGEST_ZIP);
    if (!problem.empty())
        return {readable(problem.substr(std::min(path.size() + 2, problem.size())))};
    const std::string extension = lower_case_extension(path);
    const auto* const kind = std::ranges::find(KINDS, extension, &Kind::extension);
    Lines lines = begin(path, kind == std::end(KINDS) ? nullptr : kind);
    if (kind == std::end(KINDS)) return lines;
    if (kind->by_path) {
        kind->by_path(lines, path);
    } else if (const auto bytes = read_whole_file(path, LARGEST_PREVIEWED)) {
        kind->whole(lines, *bytes);
    } else {
        lines.emplace_back("Too large to look into");
    }
    if (lines.size() > PREVIEW_LINES) {
        lines.resize(PREVIEW_LINES - 1);
        lines.emplace_back("...");
    }
    return lines;
}

std::string readable(std::string_view bytes) {
    std::string text(bytes);
    std::ranges::replace_if(
        text, [](char c) { return c < ' ' || c > '~'; }, '?');
    return text;
}

std::string ending_of(const std::string& text, size_t length) {
    if (text.size() <= length) return text;
    size_t start = text.size() - length;
    while (start < text.size() && !begins_character(text[start])) ++start;
    return "..." + text.substr(start);
}

std::string counted(size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string size_text(uint64_t bytes) {
    constexpr double MEGABYTE = 1 << 20;
    if (bytes < uint64_t(MEGABYTE)) return counted(size_t(bytes), "byte");
    return format("%.1f MB", double(bytes) / MEGABYTE);
}

std::string duration_text(uint64_t seconds) {
    return format("%llu:%02llu", (unsigned long long)(seconds / 60),
                  (unsigned long long)(seconds % 60));
}

std::string shape_text(const disk_record& disk) {
    const char* const layout = disk.layout == DISK_JV3               ? "JV3"
                               : disk.data_offset == CGD_HEADER_SIZE ? "CGD"
                                                                     : "Plain";
    return format("%s, %u tracks of %u sectors", layout, disk.tracks, disk.sectors);
}

std::string kind_text(const DiskFile& file) {
    switch (file.type) {
    case FILE_PROGRAM: return "BASIC";
    case FILE_CODE: return "Machine code";
    case FILE_DATA: return "Text";
    default: return "?";
    }
}

std::string free_text(const DiskSystem& disk) {
    return std::to_string(disk_free_blocks(disk) * disk_block_bytes(disk)) + " bytes free";
}

std::string kind_text(const TapeProgram& program) {
    switch (program.content) {
    case TapeContent::basic: return "BASIC";
    case TapeContent::machine_code: return "Machine code";
    case TapeContent::data: return "Data";
    }
    return {};
}

std::string addresses_text(const ProgramOutline& program) {
    std::string text;
    if (program.highest > 0) text = format("%04X-%04X", program.lowest, program.highest);
    if (program.entry) text += format("%sstart %04X", text.empty() ? "" : ", ", *program.entry);
    return text;
}
