#pragma once
/// Machine configurations: three standard models and one of the user's own, in one table, and the
/// operations on the whole machine.

#include "wall/state_record.h"

#include <cstdint>

struct machine_configuration {
    uint32_t basic_rom;        ///< 0 v1, 1 v2, 2 v2.0 s/n, 3 a file
    uint32_t expansion_rom;    ///< 0 disk ROM, 1 none, 2 a file
    uint32_t character_rom;    ///< 0 original, 1 German, 2 emulator, 3 a file
    uint32_t ram_size;         ///< 0 = 16 KB, 1 = 32 KB; the standard models hold 2
    uint32_t cpu_clock;        ///< Hz
    uint32_t screen_frequency; ///< frames per second
    uint32_t palette;          ///< bit 0: 0 Southern, 1 Northern
    uint32_t psg_divider;      ///< sound chip clock = CPU clock / this
    char name[32];             ///< shown in status bar part 0
};

constexpr uint32_t STANDARD_MODELS = 3; ///< the slots before the empty one
constexpr uint32_t CUSTOM_CONFIGURATION = 4;
constexpr uint32_t MACHINE_CONFIGURATIONS = 5; ///< slot 3 stays empty
constexpr uint32_t SLOWEST_CLOCK = 50'000;     ///< Hz, of a custom configuration
constexpr uint32_t FASTEST_CLOCK = 100'000'000;
constexpr uint32_t LOWEST_SCREEN_FREQUENCY = 5; ///< Hz, of a custom configuration
constexpr uint32_t HIGHEST_SCREEN_FREQUENCY = 150;

/// What has happened in this run; it is not kept in the settings.
struct machine_run_state {
    /// 1 when BASIC has come to its prompt since the last cold start: power-on, restart, or a
    /// configuration that restarts the machine.
    uint8_t prompt_reached = 0;
    /// 1 when the disk ROM is in the machine, whatever expansion ROM a configuration names.
    uint8_t disk_rom = 0;
    uint8_t unused[2] = {};
};

struct machine_setup_record {
    machine_configuration configurations[MACHINE_CONFIGURATIONS];
    uint32_t active;
    machine_run_state run;
};
extern machine_setup_record machine_setup;
extern const state_record machine_setup_state;

inline auto& machine_cfg = machine_setup.configurations;
inline uint32_t& active_machine_cfg = machine_setup.active;
inline machine_run_state& machine_run_now = machine_setup.run;

// The choices of the configuration dialog, in the order of their values.
extern const char* const models[STANDARD_MODELS];
extern const char* const basic_roms[4];
extern const char* const exp_roms[3];
extern const char* const char_roms[4];
extern const char* const palette_type[2];
extern const char* const ram_size[2];

/// Is `index` one of the four configurations that can be active?
bool machine_is_valid_cfg(uint32_t index);

/// Whether a machine can run with these clocks and this name.
bool machine_is_possible(const machine_configuration& configuration);

/// Power-on of the whole machine with model 0; once, before the settings are read.
void machine_init();
/// Applies a configuration. With `full` 0 only the character set and the palette change; otherwise
/// the machine restarts cold with fresh RAM. The cycle counter never goes back.
void machine_change_cfg(const machine_configuration& configuration, int full);
/// As after switching off and on: fresh RAM, the processor at its start, disks and sound at rest.
void machine_restart();
/// Puts the disk ROM in until the program ends or machine_run_now.disk_rom is cleared, and
/// restarts.
void machine_restart_with_disk_rom();
/// Notes when BASIC has come to its prompt; the frame driver asks for it after each frame.
void machine_look_for_prompt();
/// The reset key: an NMI. Memory and registers stay; typing stops, the heads go to track 0, the
/// sound and the picture are cleared, and the base name of screenshots is forgotten.
void machine_reset();
/// Sets the main clock and reclocks the sound chip. The sound core's cycles per line stay.
void machine_set_main_clock(uint32_t hz);
/// Shows the active configuration's name in status bar part 0.
void machine_show_cfg();
/// Power-on of what only this machine has: the CRT controller.
void machine_specific_init();
void machine_specific_reset();
