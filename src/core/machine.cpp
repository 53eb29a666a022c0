#include "core/machine.h"

#include "cgenie/bus.h"
#include "cgenie/crtc.h"
#include "cgenie/keyboard.h"
#include "cgenie/memory/memory.h"
#include "cgenie/palette.h"
#include "cgenie/roms.h"
#include "cgenie/typing/typing.h"
#include "cgenie/video.h"
#include "media/traps.h"
#include "media/wd1771.h"
#include "sound/beeper.h"
#include "sound/sound_core.h"
#include "sound/ym2149.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <cstring>

namespace {

constexpr state_field fields[] = {
    {"configurations", sizeof(machine_setup_record::configurations)},
    {"active", sizeof(machine_setup_record::active)},
    {"run", sizeof(machine_setup_record::run)},
};

constexpr uint32_t STANDARD_CLOCK = 2216750; ///< Hz
constexpr uint32_t STANDARD_FRAMES = 50;     ///< per second

constexpr machine_configuration standard_models[STANDARD_MODELS] = {
    {0, 1, 0, 2, STANDARD_CLOCK, STANDARD_FRAMES, 0, 1, "CG NZ1"},
    {2, 1, 0, 2, STANDARD_CLOCK, STANDARD_FRAMES, 0, 1, "CG NZ2"},
    {1, 1, 0, 2, STANDARD_CLOCK, STANDARD_FRAMES, 1, 1, "CG EUR"},
};
constexpr uint32_t CUSTOM_TEMPLATE = 1;
constexpr uint32_t DISK_ROM = 0; ///< as an expansion ROM

/// Cells of BASIC, the same in every ROM of this machine.
enum : uint16_t {
    PROGRAM_START = 0x40A4,
    MEMORY_TOP = 0x40B1,
    PROGRAM_END = 0x40F9, ///< also start of the variables
    ARRAYS = 0x40FB,
    FREE_SPACE = 0x40FD
};
constexpr uint16_t LINK_SIZE = 2; ///< a link of 0000 ends a program
constexpr uint16_t RAM_END = 0xC000;

const char* fault(const machine_setup_record& setup) {
    bool possible = true;
    for (uint32_t index = 0; index < MACHINE_CONFIGURATIONS; ++index) {
        possible &=
            !machine_is_valid_cfg(index) || machine_is_possible(setup.configurations[index]);
    }
    return first_fault({{"configurations", possible},
                        {"active", machine_is_valid_cfg(setup.active)},
                        {"run", setup.run.prompt_reached <= 1 && setup.run.disk_rom <= 1}});
}

/// Reads memory directly: without wait cycles, and without asking a device.
uint16_t cell(uint16_t address) { return uint16_t(memory[address] | memory[address + 1] << 8); }

/// Once MEM SIZE? has been answered, BASIC makes an empty program and goes to its prompt. Until
/// then these cells hold zeros or what the memory is filled with at power-on, which does not look
/// like a program; of random fillings, one in millions does.
bool there_is_a_basic_program() {
    const uint16_t end = cell(PROGRAM_END);
    return cell(PROGRAM_START) > RAM_START && cell(PROGRAM_START) + LINK_SIZE <= end &&
           end <= cell(ARRAYS) && cell(ARRAYS) <= cell(FREE_SPACE) &&
           cell(FREE_SPACE) <= cell(MEMORY_TOP) && cell(MEMORY_TOP) < RAM_END &&
           cell(uint16_t(end - LINK_SIZE)) == 0;
}

/// RAM as at power-on, and the processor at its start.
void start_cold() {
    memory_reset();
    z80_reset();
    machine_run_now.prompt_reached = 0;
}

} // namespace

machine_setup_record machine_setup;
constexpr state_record machine_setup_state = {"machine_setup", &machine_setup, sizeof machine_setup,
                                              fields, fault_of<machine_setup_record, fault>};

const char* const models[STANDARD_MODELS] = {"Colour Genie EG2000 South (24 rows)",
                                             "Colour Genie EG2000 South (25 rows)",
                                             "Colour Genie EG2000 North (25 rows)"};
const char* const basic_roms[4] = {"EACA CG MS BASIC v1", "EACA CG MS BASIC v2",
                                   "EACA CG MS BASIC v2.0 s/n", "<...Use custom BASIC ROM...>"};
const char* const exp_roms[3] = {"Colour Genie DOS", "No ROM expansion",
                                 "<...Use custom expansion ROM...>"};
const char* const char_roms[4] = {"Original Colour Genie charset", "German Colour Genie charset",
                                  "Colour Genie emulator charset", "<...Use custom charset...>"};
const char* const palette_type[2] = {"Southern", "Northern"};
const char* const ram_size[2] = {"16 kbyte", "32 kbyte"};

bool machine_is_valid_cfg(uint32_t index) {
    return index < STANDARD_MODELS || index == CUSTOM_CONFIGURATION;
}

void machine_init() {
    machine_configuration& custom = machine_cfg[CUSTOM_CONFIGURATION];
    for (uint32_t model = 0; model < STANDARD_MODELS; ++model) {
        machine_cfg[model] = standard_models[model];
    }
    custom = standard_models[CUSTOM_TEMPLATE];
    memory_set_ram_size_source(&custom.ram_size);
    machine_specific_init();
    machine_run_now = {};
    active_machine_cfg = 0;
    machine_set_main_clock(machine_cfg[0].cpu_clock);
    machine_change_cfg(machine_cfg[0], 1);
    std::strcpy(custom.name, "Custom");
    memory_init();
    z80_init(machine_cfg[0].cpu_clock);
    beeper_init();
    wd1771_init();
    keyboard_init();
    sound_init();
}

void machine_change_cfg(const machine_configuration& configuration, int full) {
    video_set_charset(configuration.character_rom);
    calculate_palette(configuration.palette & 1);
    if (full) {
        machine_set_main_clock(configuration.cpu_clock);
        memory_set_active_setup(configuration.ram_size);
        memory_set_basic_rom(configuration.basic_rom);
        memory_set_eprom(machine_run_now.disk_rom ? DISK_ROM : configuration.expansion_rom);
        memory_init();
        start_cold();
    }
    machine_show_cfg();
}

bool machine_is_possible(const machine_configuration& configuration) {
    return configuration.psg_divider > 0 &&
           configuration.cpu_clock / configuration.psg_divider >= SLOWEST_CLOCK &&
           configuration.cpu_clock <= FASTEST_CLOCK &&
           configuration.screen_frequency >= LOWEST_SCREEN_FREQUENCY &&
           configuration.screen_frequency <= HIGHEST_SCREEN_FREQUENCY &&
           std::memchr(configuration.name, 0, sizeof configuration.name) != nullptr;
}

void machine_restart() {
    start_cold();
    memory_remove_bas_trap();
    keyboard_type_reset();
    wd1771_reset_all();
    ym2149_reset();
}

void machine_restart_with_disk_rom() {
    machine_run_now.disk_rom = 1;
    memory_set_eprom(DISK_ROM);
    machine_restart();
}

// To see the firmware arrive at its prompt, every instruction would have to be looked at. The
// memory shows it as well, also with a ROM of the user's, and a look at it once a frame costs
// nothing.
void machine_look_for_prompt() {
    if (!machine_run_now.prompt_reached)
        machine_run_now.prompt_reached = there_is_a_basic_program() ? 1 : 0;
}

void machine_reset() {
    tape_withdraw_save_question();
    wd1771_reset_all();
    z80_state.irq = 0;
    z80_state.nmi = 1;
    z80_state.nmi_in_progress = 0;
    memory_remove_bas_trap();
    keyboard_type_reset();
    tape_reset();
    ym2149_reset();
    sound_reset();
    video_reset();
    machine_host.was_reset();
}

void machine_set_main_clock(uint32_t hz) {
    z80_state.clock_hz = hz;
    ym2149_init(hz / machine_cfg[active_machine_cfg].psg_divider);
}

void machine_show_cfg() {
    StatusBarPartText(PART_CONFIGURATION, "%s", machine_cfg[active_machine_cfg].name);
}

void machine_specific_init() { crtc_reset(); }
void machine_specific_reset() { crtc_reset(); }
