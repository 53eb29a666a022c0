/// ROM images of the user's: replacements by name, and the files that the settings name.

#include "cgenie/firmware_images.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "support/fake_host.h"
#include "support/files.h"
#include "support/machine.h"

#include <filesystem>

namespace {

constexpr const char* FOLDER = "firmware";
constexpr const char* CUSTOM_FILE = "custom.rom";

void replace_image(uint8_t choice, std::span<const uint8_t> pattern) {
    const auto image = FirmwareImage(choice % FIRMWARE_IMAGES);
    const size_t needed = firmware_bytes(image).size();
    std::vector<uint8_t> file(choice & 0x80 ? pattern.size() : needed);
    tile(file, pattern);
    const std::string name = std::string(FOLDER) + "/" + firmware_file_name(image);
    std::filesystem::create_directories(FOLDER);
    write_file(name, file);
    const int taken = firmware_load_user_images(FOLDER);
    require(taken == (file.size() == needed), "an image of the right size is taken");
    std::filesystem::remove(name);
}

/// Any numbers, as a settings file may hold.
void use_custom_files(Input& input, std::span<const uint8_t> pattern) {
    std::vector<uint8_t> file(input.word());
    tile(file, pattern);
    write_file(CUSTOM_FILE, file);
    Settings& settings = fuzz_platform().settings();
    settings.open();
    for (const char* name : {"BasicROMPath", "ExpansionROMPath", "CharROMPath"}) {
        settings.set_text(name, input.byte() & 1 ? CUSTOM_FILE : "");
    }
    machine_configuration& custom = machine_cfg[CUSTOM_CONFIGURATION];
    custom.basic_rom = input.byte() & 0x80 ? input.dword() : 3;
    custom.expansion_rom = input.byte() & 0x80 ? input.dword() : 2;
    custom.character_rom = input.byte() & 0x80 ? input.dword() : 3;
    machine_change_cfg(custom, 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    fake_host = {};
    fresh_beam();
    fresh_machine(CUSTOM_CONFIGURATION);
    const uint8_t choice = input.byte();
    Input custom = input;
    custom.take(32);
    const auto pattern = custom.rest();
    replace_image(choice, pattern);
    use_custom_files(input, pattern);
    machine_run();
    video_render_frame();
    run_beam_frame();
    firmware_forget_user_images();
    return 0;
}
