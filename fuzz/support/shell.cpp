#include "support/shell.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "core/pacing/pacing.h"
#include "host/menu.h"
#include "host/shell.h"
#include "support/files.h"
#include "support/program_options.h"
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

} // namespace

FuzzShell::FuzzShell() : host(options()) {
    install_platform(host);
    reset_program_options();
    g_Timer = false;
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
