#include "support/shell.h"

#include "cgenie/crtc.h"
#include "cgenie/hires_lowe.h"
#include "cgenie/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "host/display.h"
#include "host/menu.h"
#include "host/shell.h"
#include "media/printer.h"
#include "monitor/monitor.h"
#include "support/files.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

HeadlessOptions options() {
    use_own_folder();
    HeadlessOptions options;
    options.look_ns = 0;
    options.refresh_rate = 60;
    options.data_directory = options.config_directory = "data";
    return options;
}

/// The program ends with these; here it goes on.
void reset_options() {
    g_bActive = g_bDblScan = g_bSound = g_bUseGDI = true;
    g_bPaused = g_bDebug = g_bRunInBackground = g_GiantScreen = g_KeyMapping = g_Timer = false;
    g_1bitDisplay = printer_enabled = g_bCycleBasedEngine = false;
    video_cut = video_page = false;
    g_CompositeBlur = 0;
    lowe.enabled = 0;
    g_bFullScreen = 0;
    leftover = 0;
    event_screenshot_timout = event_shutdown_timout = EVENT_DISARMED;
    local_pc.reset();
    monitor_page = MONITOR_DISASSEMBLY;
    memdump_pc = 0;
}

} // namespace

FuzzShell::FuzzShell() : host(options()) {
    install_platform(host);
    reset_options();
}

FuzzShell::~FuzzShell() {
    if (started) emu_close();
}

void FuzzShell::start() {
    constexpr int64_t SINCE_POWER_ON = 100'000'000; ///< cycles; nothing waits for the firmware
    host.window().create("fuzz");
    create_menu();
    z80_state = {};
    z80_state.t_count = SINCE_POWER_ON;
    crtc = {};
    std::ranges::fill(ports, uint8_t(0));
    emu_init({});
    started = true;
}
