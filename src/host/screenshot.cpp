#include "host/screenshot.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video_cell.h"
#include "core/pacing/pacing.h"
#include "files/file_handle.h"
#include "host/downloads.h"
#include "host/recording/bmp.h"
#include "host/recording/gif.h"
#include "host/rom_files.h"
#include "wall/machine_host.h"

#include <array>
#include <cerrno>
#include <cstring>

namespace {
constexpr size_t GIF_COLOURS = 256;
constexpr size_t DUMP_SIZE = 1024;
constexpr const char* DUMP_EXTENSION = ".v80";
constexpr size_t DUMP_EXTENSION_LENGTH = 4;

std::string numbered_name(const std::string& base, int number, const std::string& extension) {
    std::string digits = std::to_string(number);
    if (digits.size() < 4) {
        digits.insert(0, 4 - digits.size(), '0');
    }
    return base + digits + "." + extension;
}

std::string dump_name(const std::string& base) {
    const size_t length = base.size();
    const bool has_extension =
        length >= DUMP_EXTENSION_LENGTH && base[length - DUMP_EXTENSION_LENGTH] == '.';
    return base.substr(0, has_extension ? length - DUMP_EXTENSION_LENGTH : length) + DUMP_EXTENSION;
}
} // namespace

std::string get_next_fname(const std::string& extension, const std::string& base) {
    const std::string stem = base.empty() ? "Tarvelin" : base;
    for (int number = 0;; ++number) {
        std::string name = numbered_name(stem, number, extension);
        if (!open_file(name, "rb")) {
            return name;
        }
    }
}

int dib_save_to_file(const dib& bitmap, const std::string& path) {
    if (!bmp_save(path, bitmap)) return 0;
    StatusBarText("Screenshot saved: %s", path.c_str());
    file_is_complete(path);
    return 1;
}

int dib_save(const dib& bitmap, const std::string& base) {
    return dib_save_to_file(bitmap, get_next_fname("bmp", base));
}

int gif_write_as(const std::string& path, const dib& bitmap) {
    if (bitmap.header.bits != 8) {
        return 0;
    }
    std::array<uint8_t, GIF_COLOURS * 3> colours;
    for (size_t i = 0; i < GIF_COLOURS; ++i) {
        const uint8_t* entry = &bitmap.palette[i * PALETTE_ENTRY_BYTES];
        colours[i * 3] = entry[2];
        colours[i * 3 + 1] = entry[1];
        colours[i * 3 + 2] = entry[0];
    }
    StatusBarText("Screenshot saved: %s", path.c_str());
    if (!gif_save(path.c_str(), bitmap.width, bitmap.height, bitmap.pixels.data(),
                  colours.data())) {
        return 0;
    }
    file_is_complete(path);
    return 1;
}

int gif_write(const dib& bitmap, const std::string& base) {
    return gif_write_as(get_next_fname("gif", base), bitmap);
}

int memory_save_video_ram(const std::string& base) {
    std::array<uint8_t, DUMP_SIZE> dump;
    for (size_t i = 0; i < DUMP_SIZE; ++i) {
        dump[i] = video_ram(crtc.start_address + uint32_t(i));
    }
    return save_binary(dump_name(base).c_str(), dump.data(), dump.size());
}

void save_video_ram_when_wanted() {
    if (!save_video_ram_w_screenshot) return;
    const std::string path = dump_name(last_file_name);
    memory_save_video_ram(last_file_name) ? file_is_complete(path) : report(unwritable(path));
}

void host_save_screenshot() {
    const int written = canvas.header.bits == 8 ? gif_write(canvas, last_file_name)
                                                : dib_save(canvas, last_file_name);
    if (!written) {
        report({.text = "the screenshot cannot be written", .reason = std::strerror(errno)});
    }
    save_video_ram_when_wanted();
}
