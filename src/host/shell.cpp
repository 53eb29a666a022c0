#include "host/shell.h"

#include "cgenie/firmware_images.h"
#include "cgenie/memory.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "host/autostart.h"
#include "host/canvas.h"
#include "host/display.h"
#include "host/screenshot.h"
#include "platform/host_services.h"
#include "platform/platform.h"

bool g_bActive = true;

namespace {

constexpr uint32_t LOWEST_SCREEN_FREQUENCY = 5; ///< Hz
constexpr uint32_t HIGHEST_SCREEN_FREQUENCY = 150;
constexpr uint32_t STRONGEST_BLUR = 99;

uint32_t number_setting(const char* name, uint32_t value_if_missing) {
    return platform().settings().number(name).value_or(value_if_missing);
}

void read_custom_configuration() {
    machine_configuration& custom = machine_cfg[CUSTOM_CONFIGURATION];
    custom.basic_rom = number_setting("CustomRomBASIC", custom.basic_rom);
    custom.character_rom = number_setting("CustomRomChar", custom.character_rom);
    custom.expansion_rom = number_setting("CustomRomExpansion", custom.expansion_rom);
    custom.ram_size = number_setting("CustomRamSize", custom.ram_size);
    custom.cpu_clock = number_setting("CustomCpuClockFreq", custom.cpu_clock);
    custom.screen_frequency = number_setting("CustomScreenFreq", custom.screen_frequency);
    if (custom.screen_frequency < LOWEST_SCREEN_FREQUENCY ||
        custom.screen_frequency > HIGHEST_SCREEN_FREQUENCY) {
        custom.screen_frequency = 50;
    }
    custom.palette = number_setting("CustomPalette", custom.palette) & 1;
}

void read_display_settings() {
    g_bDblScan = number_setting("DoubleScan", 1) != 0;
    g_GiantScreen = number_setting("GiantScreen", 0) != 0;
    g_CompositeBlur = number_setting("CompositeBlur", 0);
    if (g_CompositeBlur > STRONGEST_BLUR) g_CompositeBlur = 0;
    save_video_ram_w_screenshot = number_setting("SaveVideoRamWithScreenShots", 0) != 0;
}

} // namespace

void emu_init(const Arguments& arguments) {
    firmware_load_user_images(platform().paths().data_directory() + "/firmware");
    machine_init();
    video_init(machine_cfg[active_machine_cfg].palette & 1);
    read_display_settings();
    g_Timer = number_setting("SyncSpeed", 1) != 0;
    active_machine_cfg = number_setting("ActiveConfig", 0);
    if (!machine_is_valid_cfg(active_machine_cfg)) active_machine_cfg = 0;
    read_custom_configuration();
    memory_set_startup_pattern(number_setting("CustomRamStartupPattern", 0));
    machine_change_cfg(machine_cfg[active_machine_cfg], 1);
    init_timers();
    g_bCycleBasedEngine = number_setting("CycleBasedEmulation", 0) != 0;
    get_command_line(arguments);
    recreate_bitmap(g_GiantScreen, 8);
}

int run_message_loop() {
    for (;;) {
        const Event event = g_bActive ? platform().events().poll() : platform().events().wait();
        if (event.kind == Event::Kind::quit) return event.value;
        if (event.kind == Event::Kind::none) {
            paced_frame_step();
            continue;
        }
        if (event.kind == Event::Kind::drop) {
            autostart_file(event.text);
            reset_timer();
        }
        if (!g_bActive) reset_timer();
    }
}

void emu_close() { dib_destroy(canvas); }
