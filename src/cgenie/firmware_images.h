#pragma once
/// The firmware that the machine starts with: seven images built into the program, each of which
/// the user may replace by one of exactly the same size.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

enum class FirmwareImage : uint8_t {
    basic_v1,
    basic_v2,
    basic_v2sn,
    disk,
    charset_original,
    charset_german,
    charset_emulator
};
constexpr size_t FIRMWARE_IMAGES = 7;

/// File name of the image in the user's firmware folder.
const char* firmware_file_name(FirmwareImage image);
/// The bytes in use: the user's when there are any, else the built-in ones.
std::span<const uint8_t> firmware_bytes(FirmwareImage image);
/// Those of the program, whatever the user has.
std::span<const uint8_t> firmware_built_in(FirmwareImage image);
/// Takes the user's bytes in place of the image, for the rest of the run; 0, and no change, when
/// their number differs. The machine gets them the next time it loads the image.
int firmware_use_image(FirmwareImage image, std::vector<uint8_t> bytes);
/// Back to the built-in images.
void firmware_forget_user_images();
