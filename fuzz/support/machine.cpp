#include "support/machine.h"

#include "cgenie/crtc.h"
#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "cgenie/video.h"
#include "cgenie/video_beam.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "media/files/cassette_files.h"
#include "media/printer.h"
#include "media/tape_audio.h"
#include "media/traps.h"
#include "media/wd1771.h"
#include "sound/sound_core.h"
#include "sound/ym2149.h"
#include "support/files.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>

namespace {

void program_crtc(std::span<const uint8_t> values) {
    for (uint32_t number = 0; number < values.size(); ++number) {
        crtc_write_register(number, values[number]);
    }
}

} // namespace

HeadlessPlatform& fuzz_platform() {
    static HeadlessPlatform host{HeadlessOptions{}};
    static const bool installed = [] {
        use_own_folder();
        install_platform(host);
        return true;
    }();
    (void)installed;
    return host;
}

void fresh_machine(uint32_t configuration) {
    fuzz_platform().release_all_keys();
    tape_close_wav();
    tape_rewind();
    tape_detach_cas();
    keyboard_type_reset();
    printer_enabled = false;
    g_bCycleBasedEngine = false;
    leftover = 0;

    z80_state = {};
    crtc = {};
    ay = {};
    sound_core = {};
    video_state = {};
    beam_state = {};
    std::ranges::fill(ports, uint8_t(0));
    machine_init();
    video_reset();
    z80_out(0xFF, 0);
    active_machine_cfg = machine_is_valid_cfg(configuration) ? configuration : CUSTOM_CONFIGURATION;
    if (active_machine_cfg != 0) machine_change_cfg(machine_cfg[active_machine_cfg], 1);
    tape_init();
    printer_reset();
    traps.last_trap = -1;
    z80_state.t_count = 0;
    sound_update(0);
}

void program_standard_picture() {
    constexpr std::array<uint8_t, 14> STANDARD = {70, 40, 54, 0x3C, 38, 0, 25,
                                                  30, 0,  7,  0x47, 7,  4, 0};
    program_crtc(STANDARD);
}

void load_registers(Input& input) {
    for (uint16_t z80_record::*pair :
         {&z80_record::af, &z80_record::bc, &z80_record::de, &z80_record::hl, &z80_record::ix,
          &z80_record::iy, &z80_record::sp, &z80_record::pc}) {
        z80_state.*pair = input.word();
    }
    z80_state.i = input.byte();
    z80_state.r = input.byte();
    const uint8_t interrupts = input.byte();
    z80_state.iff1 = z80_state.iff2 = interrupts & 1;
    z80_state.interrupt_mode = uint8_t((interrupts >> 1) % 3);
    z80_state.irq = interrupts >> 3 & 1;
    z80_state.nmi = interrupts >> 4 & 1;
}
