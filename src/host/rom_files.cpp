#include "host/rom_files.h"

#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "files/file_handle.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "media/traps.h"
#include "platform/platform.h"
#include "z80/disassembler.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>
#include <span>
#include <utility>
#include <vector>

namespace {

const char* path_setting(rom_file which) {
    switch (which) {
    case ROM_BASIC: return "BasicROMPath";
    case ROM_EXPANSION: return "ExpansionROMPath";
    default: return "CharROMPath";
    }
}

constexpr size_t PART = 4096; ///< bytes of a ROM chip of four

/// The four chips of a BASIC ROM: the chosen file, whose name ends in 0 or 1, and the three that
/// count on from it, beside it. Empty when the file is not one of four.
std::vector<std::string> chips(const std::string& path) {
    const size_t point = extension_point(path);
    // "rom0.bin" and "rom.0"
    const size_t digit = (path.back() == '0' || path.back() == '1' ? path.size() : point) - 1;
    if (digit >= path.size() || (path[digit] != '0' && path[digit] != '1')) return {};
    std::string name = file_name_of(path);
    const size_t place = digit - (path.size() - name.size());
    std::vector<std::string> found = {path};
    while (found.size() < BASIC_ROM_SIZE / PART) {
        ++name[place];
        found.push_back(find_in_any_case(folder_of(path), name));
    }
    const bool whole = std::ranges::all_of(
        found, [](const std::string& chip) { return size_of_file(chip) == PART; });
    return whole ? found : std::vector<std::string>();
}

void tell_once(const std::string& path, const std::string& text, const std::string& reason,
               const std::string& remedy) {
    static std::set<std::string> told;
    if (!told.insert(path + text).second) return;
    report({.text = text,
            .file = path,
            .reason = reason,
            .remedy = remedy,
            .severity = Severity::warning});
}

/// Tells what is odd about a ROM: `bytes` are those of the file, `basic` is all of a BASIC ROM.
void judge(const std::string& path, std::span<const uint8_t> bytes, const uint8_t* basic) {
    if (bytes.size() < 2) return;
    if (std::ranges::all_of(bytes, [&](uint8_t byte) { return byte == bytes.front(); })) {
        return tell_once(path, "The ROM image is empty", "all of its bytes are the same", "");
    }
    if (!basic || tape_traps_fit(basic)) return;
    tell_once(path, "Cassettes run in real time with this ROM",
              "its cassette routines are not those that Tarvelin can cut short",
              "F5 plays a tape; to save one, record a WAV.");
}

bool refuse(const std::string& path, const std::string& reason) {
    report({.text = "The built-in firmware is used.",
            .file = path,
            .reason = reason,
            .severity = Severity::warning});
    return false;
}

/// Takes the file as the image's replacement. A missing file is not reported.
bool load_user_image(FirmwareImage image, const std::string& path) {
    if (path.empty()) return false;
    const size_t needed = firmware_bytes(image).size();
    const auto found = size_of_file(path);
    if (found && *found != needed) {
        return refuse(path, std::to_string(*found) + " bytes found, " + std::to_string(needed) +
                                " bytes needed");
    }
    std::vector<uint8_t> bytes(needed);
    if (memory_load_rom(bytes.data(), 0, needed - 1, path.c_str()) != needed) {
        return refuse(path, std::string("cannot be read (") + std::strerror(errno) + ")");
    }
    judge(path, bytes, needed == BASIC_ROM_SIZE ? bytes.data() : nullptr);
    return firmware_use_image(image, std::move(bytes)) != 0;
}

} // namespace

size_t memory_load_rom(uint8_t* destination, size_t first, size_t last, const char* path) {
    const FileHandle file = open_file(path, "rb");
    return file ? std::fread(destination + first, 1, last - first + 1, file.get()) : 0;
}

int read_rom_file(rom_file which, uint8_t* to, size_t size) {
    const auto path = platform().settings().text(path_setting(which));
    if (!path || path->empty()) return ROM_NOT_NAMED;
    const bool is_basic = which == ROM_BASIC;
    size_t count = 0;
    for (const std::string& chip : is_basic ? chips(*path) : std::vector<std::string>()) {
        count += memory_load_rom(to, count, count + PART - 1, chip.c_str());
    }
    if (count == 0) count = memory_load_rom(to, 0, size - 1, path->c_str());
    judge(*path, {to, count}, is_basic ? to : nullptr);
    return int(count);
}

int firmware_load_user_images(const std::string& directory) {
    int taken = 0;
    for (size_t i = 0; i < FIRMWARE_IMAGES; ++i) {
        const auto image = FirmwareImage(i);
        taken += load_user_image(image, find_in_any_case(directory, firmware_file_name(image)));
    }
    return taken;
}

int mem_dump() { return save_binary("memdump.bin", memory, MEMORY_SIZE); }

int fulldisasm(const std::string& path) {
    return replace_whole_file(path, disassembly_listing()) ? 1 : 0;
}

int save_binary(const char* path, const uint8_t* data, size_t size) {
    return replace_whole_file(path, {data, size}) ? 1 : 0;
}
