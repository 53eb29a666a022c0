#include "cgenie/firmware_images.h"

#include "cgenie/memory/memory.h"
#include "files/file_handle.h"
#include "firmware/firmware_data.h"
#include "wall/machine_host.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <vector>

namespace {

struct Image {
    const char* file_name;
    std::span<const uint8_t> built_in;
    std::vector<uint8_t> user; ///< empty: the built-in one is in use
};

std::array<Image, FIRMWARE_IMAGES> images = {{
    {"basic-v1.rom", firmware_basic_v1, {}},
    {"basic-v2.rom", firmware_basic_v2, {}},
    {"basic-v2sn.rom", firmware_basic_v2sn, {}},
    {"disk.rom", firmware_disk, {}},
    {"charset-original.rom", firmware_charset_original, {}},
    {"charset-german.rom", firmware_charset_german, {}},
    {"charset-emulator.rom", firmware_charset_emulator, {}},
}};

bool refuse(const std::filesystem::path& path, const std::string& reason) {
    report({.text = "The built-in firmware is used.",
            .file = path.string(),
            .reason = reason,
            .severity = Severity::warning});
    return false;
}

/// Takes the file as the image's replacement. A missing file is no news.
bool load_user_image(Image& image, const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) return false;
    const size_t needed = image.built_in.size();
    const auto found = std::filesystem::file_size(path, error);
    if (!error && found != needed) {
        return refuse(path, std::to_string(found) + " bytes found, " + std::to_string(needed) +
                                " bytes needed");
    }
    std::vector<uint8_t> bytes(needed);
    const FileHandle file = open_file(path.c_str(), "rb");
    if (!file || std::fread(bytes.data(), 1, needed, file.get()) != needed) {
        return refuse(path, std::string("cannot be read (") + std::strerror(errno) + ")");
    }
    image.user = std::move(bytes);
    return true;
}

} // namespace

const char* firmware_file_name(FirmwareImage image) { return images[size_t(image)].file_name; }

std::span<const uint8_t> firmware_bytes(FirmwareImage image) {
    const Image& chosen = images[size_t(image)];
    return chosen.user.empty() ? chosen.built_in : std::span<const uint8_t>(chosen.user);
}

int firmware_load_user_images(const std::string& directory) {
    int taken = 0;
    for (Image& image : images) {
        taken += load_user_image(image, std::filesystem::path(directory) / image.file_name);
    }
    return taken;
}

void firmware_forget_user_images() {
    for (Image& image : images) image.user.clear();
}
