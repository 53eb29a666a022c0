#pragma once
/// The firmware that the machine starts with: seven images built into the program, each of which a
/// file of the user's replaces when it has the right name and exactly the right size.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

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
/// Looks for the seven names in `directory`. A file of a wrong size or one that cannot be read is
/// refused with a warning, and the built-in image stays. Returns the number of images taken.
int firmware_load_user_images(const std::string& directory);
/// Back to the built-in images.
void firmware_forget_user_images();
