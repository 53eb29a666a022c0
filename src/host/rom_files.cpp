#include "host/rom_files.h"

#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "files/file_handle.h"
#include "files/whole_file.h"
#include "platform/platform.h"
#include "z80/disassembler.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
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

bool refuse(const std::filesystem::path& path, const std::string& reason) {
    report({.text = "The built-in firmware is used.",
            .file = path.string(),
            .reason = reason,
            .severity = Severity::warning});
    return false;
}

/// Takes the file as the image's replacement. A missing file is not reported.
bool load_user_image(FirmwareImage image, const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) return false;
    const size_t needed = firmware_bytes(image).size();
    const auto found = std::filesystem::file_size(path, error);
    if (!error && found != needed) {
        return refuse(path, std::to_string(found) + " bytes found, " + std::to_string(needed) +
                                " bytes needed");
    }
    std::vector<uint8_t> bytes(needed);
    if (memory_load_rom(bytes.data(), 0, needed - 1, path.c_str()) != needed) {
        return refuse(path, std::string("cannot be read (") + std::strerror(errno) + ")");
    }
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
    return int(memory_load_rom(to, 0, size - 1, path->c_str()));
}

int firmware_load_user_images(const std::string& directory) {
    int taken = 0;
    for (size_t i = 0; i < FIRMWARE_IMAGES; ++i) {
        const auto image = FirmwareImage(i);
        const auto path = std::filesystem::path(directory) / firmware_file_name(image);
        taken += load_user_image(image, path);
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
