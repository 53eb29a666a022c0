#include "cgenie/firmware_images.h"

#include "firmware/firmware_data.h"

#include <array>
#include <utility>

namespace {

struct Image {
    const char* file_name;
    std::span<const uint8_t> built_in;
};

constexpr std::array<Image, FIRMWARE_IMAGES> images = {{
    {"basic-v1.rom", firmware_basic_v1},
    {"basic-v2.rom", firmware_basic_v2},
    {"basic-v2sn.rom", firmware_basic_v2sn},
    {"disk.rom", firmware_disk},
    {"charset-original.rom", firmware_charset_original},
    {"charset-german.rom", firmware_charset_german},
    {"charset-emulator.rom", firmware_charset_emulator},
}};

/// An empty one stands for the built-in image.
std::array<std::vector<uint8_t>, FIRMWARE_IMAGES> user_images;

} // namespace

const char* firmware_file_name(FirmwareImage image) { return images[size_t(image)].file_name; }

std::span<const uint8_t> firmware_bytes(FirmwareImage image) {
    const std::vector<uint8_t>& user = user_images[size_t(image)];
    return user.empty() ? images[size_t(image)].built_in : std::span<const uint8_t>(user);
}

std::span<const uint8_t> firmware_built_in(FirmwareImage image) {
    return images[size_t(image)].built_in;
}

int firmware_use_image(FirmwareImage image, std::vector<uint8_t> bytes) {
    if (bytes.size() != images[size_t(image)].built_in.size()) return 0;
    user_images[size_t(image)] = std::move(bytes);
    return 1;
}

void firmware_forget_user_images() { user_images = {}; }
