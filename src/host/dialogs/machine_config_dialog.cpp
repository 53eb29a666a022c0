#include "cgenie/memory/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "host/settings/choices.h"
#include "host/settings/prefs.h"
#include "platform/platform.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace {

constexpr int LONGEST_TEXT = 260; ///< characters of a path and of the start-up pattern
constexpr uint32_t FIRST_RANDOM_PATTERN = 256;
constexpr uint32_t RANDOM_PATTERN = 0xFFFFFFFF;
constexpr const char* RANDOM_TEXT = "Random";

enum MachineControl : int {
    MACHINE_OK = 1,
    MACHINE_CANCEL = 2,
    MACHINE_BASIC = 1002,
    MACHINE_EXPANSION = 1003,
    MACHINE_RAM = 1004,
    MACHINE_CHARACTERS = 1005,
    MACHINE_STANDARD = 1006,
    MACHINE_CUSTOM = 1007,
    MACHINE_MODEL = 1008,
    MACHINE_BASIC_BROWSE = 1014,
    MACHINE_EXPANSION_BROWSE = 1015,
    MACHINE_CHARACTERS_BROWSE = 1016,
    MACHINE_BASIC_PATH = 1017,
    MACHINE_EXPANSION_PATH = 1018,
    MACHINE_CHARACTERS_PATH = 1019,
    MACHINE_CLOCK = 1020,
    MACHINE_PALETTE = 1030,
    MACHINE_PATTERN = 40124,
    MACHINE_CYCLE_BASED = 40125,
    MACHINE_LABEL = 100'000 ///< + control that the label names
};

/// A list of ROMs whose last entry is a file of the user's.
struct RomChoice {
    int list, path, browse;
    uint32_t file_entry;
    uint32_t machine_configuration::*chosen;
    bool restarts; ///< the machine has to, when another one is chosen
    const char* setting;
};

constexpr std::array<RomChoice, 3> rom_choices = {{
    {MACHINE_BASIC, MACHINE_BASIC_PATH, MACHINE_BASIC_BROWSE, 3, &machine_configuration::basic_rom,
     true, "BasicROMPath"},
    {MACHINE_EXPANSION, MACHINE_EXPANSION_PATH, MACHINE_EXPANSION_BROWSE, 2,
     &machine_configuration::expansion_rom, true, "ExpansionROMPath"},
    {MACHINE_CHARACTERS, MACHINE_CHARACTERS_PATH, MACHINE_CHARACTERS_BROWSE, 3,
     &machine_configuration::character_rom, false, "CharROMPath"},
}};

uint32_t new_cfg = 0;
uint32_t new_cfg_backup = 0;          ///< the standard model to return to
machine_configuration new_custom_cfg; ///< the user's, as it is being changed
bool restart_reqd = false;

// ---- what it looks like ------------------------------------------------------------------------

template <size_t Count>
FormControl list_of(int id, const char* const (&names)[Count]) {
    return {.kind = ControlKind::list, .id = id, .items = {names, names + Count}};
}

FormControl labelled(const char* text, const FormControl& control) {
    using enum ControlKind;
    return {.kind = row,
            .children = {{.kind = label, .id = MACHINE_LABEL + control.id, .text = text}, control}};
}

FormControl file_row(const char* text, const char* browse_name, int path, int browse) {
    using enum ControlKind;
    FormControl cells = labelled(text, {.kind = edit, .id = path, .limit = LONGEST_TEXT});
    cells.children.push_back({.kind = button, .id = browse, .text = "...", .name = browse_name});
    return cells;
}

FormDescription machine_form() {
    using enum ControlKind;
    return {
        "Machine configuration",
        {{.kind = radio, .id = MACHINE_STANDARD, .text = "&Standard machine configuration"},
         {.kind = radio, .id = MACHINE_CUSTOM, .text = "&Custom machine configuration"},
         {.kind = grid,
          .children = {labelled("&Model:", list_of(MACHINE_MODEL, models)),
                       labelled("&BASIC ROM:", list_of(MACHINE_BASIC, basic_roms)),
                       file_row("BASIC file:", "Choose the BASIC file", MACHINE_BASIC_PATH,
                                MACHINE_BASIC_BROWSE),
                       labelled("&Expansion ROM:", list_of(MACHINE_EXPANSION, exp_roms)),
                       file_row("Expansion file:", "Choose the expansion file",
                                MACHINE_EXPANSION_PATH, MACHINE_EXPANSION_BROWSE),
                       labelled("C&haracter ROM:", list_of(MACHINE_CHARACTERS, char_roms)),
                       file_row("Character file:", "Choose the character file",
                                MACHINE_CHARACTERS_PATH, MACHINE_CHARACTERS_BROWSE),
                       labelled("&Palette:", list_of(MACHINE_PALETTE, palette_type)),
                       labelled("&RAM size:", list_of(MACHINE_RAM, ram_size)),
                       labelled("S&tart-up pattern:", {.kind = combo,
                                                       .id = MACHINE_PATTERN,
                                                       .limit = LONGEST_TEXT,
                                                       .items = {RANDOM_TEXT, "0", "32", "255"}}),
                       labelled(
                           "CPU &frequency (Hz):",
                           {.kind = combo, .id = MACHINE_CLOCK, .items = {"2215200", "2216750"}})}},
         {.kind = check, .id = MACHINE_CYCLE_BASED, .text = "&Cycle based emulation"},
         {.kind = buttons,
          .children = {{.kind = default_button, .id = MACHINE_OK, .text = "OK"},
                       {.kind = cancel_button, .id = MACHINE_CANCEL, .text = "Cancel"}}}}};
}

void enable(Form& form, int id, bool on) {
    form.set_enabled(id, on);
    form.set_enabled(MACHINE_LABEL + id, on);
}

void enable_file(Form& form, const RomChoice& rom, bool on) {
    const bool file_chosen = form.value(rom.list) == int(rom.file_entry);
    enable(form, rom.path, on && file_chosen);
    form.set_enabled(rom.browse, on && file_chosen);
}

void enable_custom_machine_options(Form& form, bool on) {
    enable(form, MACHINE_MODEL, !on);
    for (const int id : {MACHINE_PALETTE, MACHINE_RAM, MACHINE_CLOCK}) enable(form, id, on);
    for (const RomChoice& rom : rom_choices) {
        enable(form, rom.list, on);
        enable_file(form, rom, on);
    }
}

// ---- opening -----------------------------------------------------------------------------------

void start_with_present_state() {
    new_cfg = new_cfg_backup = active_machine_cfg;
    new_custom_cfg = machine_cfg[CUSTOM_CONFIGURATION];
    // The standard models hold 2, which means the larger size, too.
    new_custom_cfg.ram_size = std::min(new_custom_cfg.ram_size, uint32_t(std::size(ram_size) - 1));
    restart_reqd = false;
}

/// What the settings have, unless a loaded state has brought the machine something else.
uint32_t stored_or_present(const char* setting, uint32_t present, uint32_t chosen) {
    uint32_t stored = present;
    GetValueDword(setting, &stored);
    return present == chosen ? stored : present;
}

void show_choices(Form& form) {
    for (const RomChoice& rom : rom_choices) {
        std::string path;
        GetValueStr(rom.setting, &path);
        form.set_text(rom.path, path);
        form.set_value(rom.list, int(new_custom_cfg.*rom.chosen));
    }
    form.set_value(MACHINE_PALETTE, int(new_custom_cfg.palette));
    form.set_value(MACHINE_RAM, int(new_custom_cfg.ram_size));

    const bool cycle_based = g_bCycleBasedEngine;
    form.set_number(MACHINE_CLOCK, stored_or_present("CustomCpuClockFreq", new_custom_cfg.cpu_clock,
                                                     choices.custom.cpu_clock));
    form.set_value(MACHINE_CYCLE_BASED,
                   stored_or_present("CycleBasedEmulation", cycle_based, choices.cycle_based) != 0);

    const uint32_t pattern = memory_get_startup_pattern();
    form.set_text(MACHINE_PATTERN,
                  pattern < FIRST_RANDOM_PATTERN ? std::to_string(pattern) : RANDOM_TEXT);
}

void show_configuration(Form& form) {
    const bool custom = new_cfg == CUSTOM_CONFIGURATION;
    form.set_value(custom ? MACHINE_CUSTOM : MACHINE_STANDARD, 1);
    form.set_value(MACHINE_MODEL, custom ? -1 : int(new_cfg));
    enable_custom_machine_options(form, custom);
}

// ---- what the user does ------------------------------------------------------------------------

void choose_standard(Form& form) {
    enable_custom_machine_options(form, false);
    new_cfg = new_cfg_backup;
}

void choose_custom(Form& form) {
    enable_custom_machine_options(form, true);
    if (new_cfg != CUSTOM_CONFIGURATION) new_cfg_backup = new_cfg;
    new_cfg = CUSTOM_CONFIGURATION;
}

/// Takes over a choice; a changed one needs a restart.
void choose_restarting(uint32_t& kept, int chosen) {
    if (kept == uint32_t(chosen)) return;
    kept = uint32_t(chosen);
    restart_reqd = true;
}

void choose_rom(Form& form, const RomChoice& rom) {
    uint32_t& kept = new_custom_cfg.*rom.chosen;
    const int chosen = form.value(rom.list);
    if (rom.restarts) {
        choose_restarting(kept, chosen);
    } else {
        kept = uint32_t(chosen);
    }
    enable_file(form, rom, true);
}

/// Lets the user choose the file. The form outlives the file dialog, which stands over it.
void browse(Form& form, const RomChoice& rom) {
    ui_select_file(DIALOG_SELECT_ROM, [&form, &rom](const std::optional<std::string>& path) {
        if (!path) return;
        if (path->size() > LONGEST_TEXT) {
            return report({.text = *path + ": the path is longer than " +
                                   std::to_string(LONGEST_TEXT) + " characters"});
        }
        form.set_text(rom.path, *path);
    });
}

void user_acts(Form& form, const FormEvent& event) {
    switch (event.control) {
    case MACHINE_STANDARD: return choose_standard(form);
    case MACHINE_CUSTOM: return choose_custom(form);
    case MACHINE_MODEL: new_cfg = uint32_t(form.value(MACHINE_MODEL)); return;
    case MACHINE_RAM: return choose_restarting(new_custom_cfg.ram_size, form.value(MACHINE_RAM));
    default: break;
    }
    for (const RomChoice& rom : rom_choices) {
        if (event.control == rom.list) choose_rom(form, rom);
        if (event.control == rom.browse) browse(form, rom);
    }
}

// ---- OK ----------------------------------------------------------------------------------------

/// Takes over the clock that was typed (Hz), when it is in the range of the machine.
void take_custom_clock(uint32_t clock) {
    if (clock < SLOWEST_CLOCK || clock > FASTEST_CLOCK) return;
    SetValueDword("CustomCpuClockFreq", &clock);
    if (clock == new_custom_cfg.cpu_clock) return;
    new_custom_cfg.cpu_clock = clock;
    machine_apply(event_kind::main_clock, int32_t(clock));
}

void choose(int32_t disk_rom_is_out) {
    machine_apply(event_kind::choose, disk_rom_is_out, 0,
                  bytes_of(machine_choice{new_custom_cfg, new_cfg}));
}

uint32_t pattern_from(const std::string& text) {
    if (text == RANDOM_TEXT) return RANDOM_PATTERN;
    return uint32_t(std::strtol(text.c_str(), nullptr, 10));
}

void take_over(Form& form) {
    if (new_cfg != active_machine_cfg) restart_reqd = true;
    // What the user chooses here takes the place of the disk ROM that was put in for a disk.
    choose(machine_cfg[CUSTOM_CONFIGURATION].expansion_rom != new_custom_cfg.expansion_rom);
    prefs_hold();
    for (const RomChoice& rom : rom_choices) {
        SetValueStr(rom.setting, form.text(rom.path).c_str());
    }
    if (new_cfg == CUSTOM_CONFIGURATION) {
        take_custom_clock(form.number(MACHINE_CLOCK));
    } else {
        machine_apply(event_kind::main_clock, int32_t(machine_cfg[new_cfg].cpu_clock));
    }
    const uint32_t cycle_based = form.value(MACHINE_CYCLE_BASED) ? 1 : 0;
    SetValueDword("CycleBasedEmulation", &cycle_based);
    prefs_flush();
    choices.cycle_based = cycle_based != 0;
    choices.startup_pattern = pattern_from(form.text(MACHINE_PATTERN));
    machine_apply(event_kind::engine, choices.cycle_based);
    machine_apply(event_kind::startup_pattern, int32_t(choices.startup_pattern));
    new_custom_cfg.palette = uint32_t(form.value(MACHINE_PALETTE));
    new_custom_cfg.ram_size = uint32_t(form.value(MACHINE_RAM));
    choices.custom = new_custom_cfg;
    choices.active = new_cfg;
    choose(0);
    machine_apply(event_kind::configure, int32_t(new_cfg), restart_reqd);
}

} // namespace

void ui_machine_config(std::function<void()> done) {
    start_with_present_state();
    const std::shared_ptr<Form> form = platform().forms().create(machine_form(), user_acts);
    show_choices(*form);
    show_configuration(*form);
    run_form(form, [form, done = std::move(done)](int button) {
        if (button == MACHINE_OK) take_over(*form);
        done();
    });
}
