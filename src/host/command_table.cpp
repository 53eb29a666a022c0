#include "host/command_table.h"

#include "cgenie/hires_lowe.h"
#include "cgenie/palette.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "files/file_identity.h"
#include "host/autostart.h"
#include "host/command_table_debugger.h"
#include "host/command_table_downloads.h"
#include "host/command_table_files.h"
#include "host/command_table_help.h"
#include "host/command_table_keyboard.h"
#include "host/command_table_media.h"
#include "host/command_table_pads.h"
#include "host/command_table_panels.h"
#include "host/command_table_share.h"
#include "host/command_table_time.h"
#include "host/command_table_tube.h"
#include "host/command_table_window.h"
#include "host/commands.h"
#include "host/dialogs/dialogs.h"
#include "host/disk_rom.h"
#include "host/disks.h"
#include "host/display.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/recent.h"
#include "host/screen_text.h"
#include "host/screenshot.h"
#include "host/settings/choices.h"
#include "host/shell.h"
#include "media/files/cassette_files.h"
#include "media/files/tape_sound_files.h"
#include "media/printer.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "sound/output/sound_output.h"
#include "sound/ym2149.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <vector>

namespace {

constexpr uint32_t MONOCHROME = 1; ///< "BitDepth" of the 1-bit canvas
constexpr uint32_t COLOUR_DEPTH = 8;
constexpr uint32_t DEFAULT_SCREEN_FREQUENCY = 50;
constexpr uint32_t DEFAULT_CLOCK = 2'216'750; ///< Hz, of a custom configuration
constexpr uint32_t STRONGEST_BLUR = 99;

constexpr uint8_t ALT = MODIFIER_ALT;
constexpr uint8_t SHIFT = MODIFIER_SHIFT;

constexpr SettingPlace OF_THE_DIALOG = TextAccess{};

// ---- settings ----------------------------------------------------------------------------------

/// A display parameter, none above 100.
Setting display_setting(const char* name, uint32_t* parameter) {
    return {.name = name,
            .place = parameter,
            .read = StartStep::picture,
            .possible = [](uint32_t n) { return std::min(n, HIGHEST_DISPLAY_PARAMETER); }};
}

Setting custom_setting(const char* name, uint32_t machine_configuration::*choice) {
    return {.name = name, .place = &(choices.custom.*choice), .read = StartStep::options};
}

template <unsigned DRIVE>
Setting disk_setting(const char* name) {
    return {.name = name,
            .place =
                TextAccess{[] { return lasting_path(main_disk_image_remembered(DRIVE)); },
                           [](const std::string& path) { main_disk_image_remember(DRIVE, path); }},
            .read = StartStep::disks};
}

uint32_t possible_clock(uint32_t hz) {
    return hz < SLOWEST_CLOCK || hz > FASTEST_CLOCK ? DEFAULT_CLOCK : hz;
}

uint32_t possible_screen_frequency(uint32_t hz) {
    const bool possible = hz >= LOWEST_SCREEN_FREQUENCY && hz <= HIGHEST_SCREEN_FREQUENCY;
    return possible ? hz : DEFAULT_SCREEN_FREQUENCY;
}

uint32_t possible_configuration(uint32_t index) { return machine_is_valid_cfg(index) ? index : 0; }

constexpr NumberAccess bit_depth = {[] { return g_1bitDisplay ? MONOCHROME : COLOUR_DEPTH; },
                                    [](uint32_t bits) { g_1bitDisplay = bits == MONOCHROME; }};
/// Read through a function, since the parameter is unset until it is asked for.
constexpr NumberAccess saturation = {palette_get_saturation,
                                     [](uint32_t n) { display_params.saturation = n; }};
/// Empty while a tape is in: the program's end takes it out.
constexpr TextAccess tape_name = {
    [] { return tape_cas_is_attached() ? std::string() : tape_get_cas_name(); },
    [](const std::string& name) { tape_get_cas_name() = name; }};

// ---- switches ----------------------------------------------------------------------------------

using Given = CommandLine::Switch;
using Value = LineSwitch::Value;

/// From now on: the machine may begin with a state that has run for a while.
int64_t cycles(const Given& given) {
    const int64_t wait = given.seconds * int64_t(z80_state.clock_hz);
    return z80_state.t_count + std::min(wait, EVENT_DISARMED - z80_state.t_count);
}

void insert_disk(const std::string& path) {
    main_disk_image_attach(0, path, [path](bool attached) {
        if (attached) note_opened(Opened::in_drive_0, path);
    });
}

void apply_model(const Given& given) {
    const auto number = uint32_t(std::atoi(given.value.c_str()));
    const bool known = number >= 1 && number <= STANDARD_MODELS;
    machine_apply(event_kind::configure, known ? int32_t(number) - 1 : 0, 1);
}

// ---- rows --------------------------------------------------------------------------------------

const CommandRow rows[] = {
    // Options with a setting.
    {.id = COMMAND_SOUND,
     .label = "&Sound",
     .tip = "Sound on or off.",
     .flag = &g_bSound,
     .run = sound_switched,
     .setting = {.name = "Sound", .initial = 1, .read = StartStep::sound_device},
     .line_switch = {.letter = 'h',
                     .usage = "        without sound",
                     .obey = [](const Given&) { g_bSound = false; }}},
    {.setting = {.name = "SoundLatency",
                 .place = &shell_state.sound_latency,
                 .initial = DEFAULT_LATENCY,
                 .read = StartStep::sound_device,
                 .written = false,
                 .possible = dsound_set_latency,
                 .mended = StartStep::sound_device}},
    {.id = COMMAND_DOUBLE_SCAN,
     .label = "&Double scan",
     .tip = "Fills every second line of the giant picture, or leaves it black.",
     .flag = &g_bDblScan,
     .run = double_scan_switched,
     .setting = {.name = "DoubleScan", .initial = 1, .read = StartStep::options},
     .line_switch = {.letter = 'd',
                     .usage = "        giant picture: leave every second line black",
                     .obey = [](const Given&) { g_bDblScan = false; }}},
    {.id = COMMAND_LOWE_ON,
     .run = [] { choose_lowe_board(true); },
     .marked = [] { return lowe.enabled != 0; },
     .setting = {.name = "HiResLowe",
                 .place = &choices.graphics_board,
                 .initial = 0,
                 .read = StartStep::options},
     .line_switch = {.letter = 'g',
                     .usage = "        with the high-resolution graphics board, which changes"
                              " nothing",
                     .obey = [](const Given&) { choose_lowe_board(true); }}},
    {.id = COMMAND_1BIT_DISPLAY,
     .flag = &g_1bitDisplay,
     .run = canvas_depth_switched,
     .setting = {.name = "BitDepth",
                 .place = bit_depth,
                 .initial = COLOUR_DEPTH,
                 .read = StartStep::options}},
    {.id = COMMAND_50HZ_TIMER,
     .label = "&50 Hz timer",
     .hint = "Alt+F3",
     .tip = "On: the speed of the real machine. Off: as fast as possible.",
     .keys = {{{KEY_F3, ALT}}},
     .flag = &g_Timer,
     .run = pacing_switched,
     .setting = {.name = "SyncSpeed", .initial = 1, .read = StartStep::options},
     .line_switch = {.letter = 'w',
                     .usage = "        do not wait for real time",
                     .obey = [](const Given&) { g_Timer = false; }}},
    {.id = COMMAND_BACKGROUND,
     .flag = &g_bRunInBackground,
     .run = activate_unless_held,
     .setting = {.name = "RunInBackground", .initial = 0, .read = StartStep::options}},
    {.id = COMMAND_TV_BLUR,
     .label = "&TV blur",
     .tip = "The soft picture of a television set.",
     .run = toggle_tv_blur,
     .marked = [] { return g_CompositeBlur != 0; },
     .setting = {.name = "CompositeBlur",
                 .place = &g_CompositeBlur,
                 .initial = 0,
                 .read = StartStep::options,
                 .possible = [](uint32_t blur) { return blur > STRONGEST_BLUR ? 0 : blur; },
                 .mended = StartStep::screenshots}},
    {.setting = {.name = "ActiveConfig",
                 .place = &choices.active,
                 .initial = 0,
                 .read = StartStep::options,
                 .possible = possible_configuration}},
    {.setting = custom_setting("CustomRomBASIC", &machine_configuration::basic_rom)},
    {.setting = custom_setting("CustomRomChar", &machine_configuration::character_rom)},
    {.setting = custom_setting("CustomRomExpansion", &machine_configuration::expansion_rom)},
    {.setting = custom_setting("CustomRamSize", &machine_configuration::ram_size)},
    {.setting = {.name = "CustomCpuClockFreq",
                 .place = &choices.custom.cpu_clock,
                 .initial = DEFAULT_CLOCK,
                 .read = StartStep::options,
                 .possible = possible_clock}},
    {.setting = {.name = "CustomScreenFreq",
                 .place = &choices.custom.screen_frequency,
                 .initial = DEFAULT_SCREEN_FREQUENCY,
                 .read = StartStep::options,
                 .possible = possible_screen_frequency}},
    {.setting = {.name = "CustomPalette",
                 .place = &choices.custom.palette,
                 .initial = 0,
                 .read = StartStep::palette,
                 .possible = [](uint32_t palette) { return palette & 1; }}},
    {.setting = {.name = "Saturation",
                 .place = saturation,
                 .read = StartStep::picture,
                 .possible = [](uint32_t n) { return std::min(n, HIGHEST_DISPLAY_PARAMETER); }}},
    {.setting = display_setting("Brightness", &display_params.brightness)},
    {.setting = display_setting("Gamma", &display_params.gamma)},
    {.setting = display_setting("Contrast", &display_params.contrast)},
    {.setting = display_setting("InterlacedLine", &display_params.interlaced_line)},
    {.id = COMMAND_VIDEO_CUT,
     .flag = &video_cut,
     .setting = {.name = "VideoCut", .initial = 0, .read = StartStep::picture}},
    {.id = COMMAND_VIDEO_PAGE,
     .flag = &video_page,
     .setting = {.name = "VideoPage", .initial = 0, .read = StartStep::picture}},
    {.id = COMMAND_SYMBOLIC_KEYS,
     .label = "&Symbolic keymapping",
     .tip = "On: keys type what is printed on them. Off: keys by their place.",
     .flag = &g_KeyMapping,
     .run = key_mapping_switched,
     .setting = {.name = "KeyMapping",
                 .place = &kept_key_mapping,
                 .initial = 0,
                 .read = StartStep::picture}},
    {.id = COMMAND_GIANT_SCREEN,
     .label = "&Giant screen",
     .hint = "Alt+F2",
     .tip = "A picture of twice the size.",
     .keys = {{{KEY_F2, ALT}}},
     .flag = &g_GiantScreen,
     .run = giant_screen_switched,
     .setting = {.name = "GiantScreen", .initial = 0, .read = StartStep::picture}},
    {.id = COMMAND_CLEAN_SOUND,
     .label = "&Clean sound",
     .tip = "High notes without false tones.",
     .run = switch_clean_sound,
     .marked = [] { return ym2149_clean; },
     .setting = {.name = "CleanSound",
                 .place = &choices.clean_sound,
                 .initial = 0,
                 .read = StartStep::picture}},
    {.id = COMMAND_PRINTER,
     .label = "&Enable printer (no joypad)",
     .tip = "What the machine prints goes to a file; the joysticks are off.",
     .run = switch_printer,
     .marked = [] { return printer_enabled; },
     .setting = {.name = "EnablePrinter",
                 .place = &choices.printer,
                 .initial = 0,
                 .read = StartStep::picture}},
    {.id = COMMAND_SAVE_VIDEO_RAM,
     .label = "Save video memory with screenshots (.V80)",
     .tip = "Every screenshot comes with a file of the screen memory.",
     .flag = &save_video_ram_w_screenshot,
     .setting = {.name = "SaveVideoRamWithScreenShots",
                 .initial = 0,
                 .read = StartStep::screenshots}},
    {.setting = {.name = "CustomRamStartupPattern",
                 .place = &choices.startup_pattern,
                 .initial = 0,
                 .read = StartStep::startup_pattern}},
    {.setting = {.name = "CycleBasedEmulation",
                 .place = &choices.cycle_based,
                 .initial = 0,
                 .read = StartStep::engine}},
    {.id = COMMAND_ATTACH_DISK,
     .label = "Drive :&0 - <no disk>",
     .tip = "Puts a disk image into drive 0.",
     .keys = {{{'0', ALT}}},
     .run = [] { select_disk(0); },
     .setting = disk_setting<0>("Disk0"),
     .line_switch = {.letter = 'i',
                     .value = Value::text,
                     .usage = " FILE   put a disk image into drive 0",
                     .obey = [](const Given& given) { insert_disk(given.value); },
                     .problem = file_problem}},
    {.id = COMMAND_ATTACH_DISK + 1,
     .label = "Drive :&1 - <no disk>",
     .tip = "Puts a disk image into drive 1.",
     .keys = {{{'1', ALT}}},
     .run = [] { select_disk(1); },
     .setting = disk_setting<1>("Disk1")},
    {.id = COMMAND_ATTACH_DISK + 2,
     .label = "Drive :&2 - <no disk>",
     .tip = "Puts a disk image into drive 2.",
     .keys = {{{'2', ALT}}},
     .run = [] { select_disk(2); },
     .setting = disk_setting<2>("Disk2")},
    {.id = COMMAND_ATTACH_DISK + 3,
     .label = "Drive :&3 - <no disk>",
     .tip = "Puts a disk image into drive 3.",
     .keys = {{{'3', ALT}}},
     .run = [] { select_disk(3); },
     .setting = disk_setting<3>("Disk3")},
    {.id = COMMAND_ATTACH_CAS,
     .label = "&Attach CAS...",
     .hint = "Alt+T",
     .tip = "Puts a cassette image into the recorder.",
     .keys = {{{'T', ALT}}},
     .run = [] { with_file(DIALOG_ATTACH_CAS, attach_cas_of); },
     .setting = {.name = "Tape", .place = tape_name, .read = StartStep::tape}},
    {.setting = {.name = "BasicROMPath", .place = OF_THE_DIALOG, .written = false}},
    {.setting = {.name = "ExpansionROMPath", .place = OF_THE_DIALOG, .written = false}},
    {.setting = {.name = "CharROMPath", .place = OF_THE_DIALOG, .written = false}},
    {.setting = {.name = "VideoCodec", .place = OF_THE_DIALOG, .written = false}},

    // File.
    {.id = COMMAND_AUTOSTART,
     .label = "&Autostart file...",
     .tip = "Loads a program, cassette, disk or state, and starts it.",
     .run = [] { with_file(DIALOG_AUTOSTART, autostart_file); },
     .line_switch = {.letter = 'b',
                     .value = Value::text,
                     .usage = " FILE   start FILE at once",
                     .obey = [](const Given& given) { autostart_file(given.value); },
                     .problem = start_problem}},
    {.line_switch = {.letter = 'a',
                     .usage = "        load FILE, but do not start it",
                     .obey = [](const Given&) { g_bAutoStart = false; }}},
    {.id = COMMAND_LOAD_CMD, .run = [] { with_file(DIALOG_LOAD_CMD, autostart_file); }},
    {.id = COMMAND_LOAD_BAS,
     .label = "Load or type &BAS/TXT...",
     .tip = "Loads a BASIC program or types in a listing, without starting it.",
     .run = [] { with_file(DIALOG_LOAD_BAS, main_load_bas_file); }},
    {.id = COMMAND_MEMORY_AS_CAS,
     .label = "Save &memory as CAS...",
     .tip = "Saves a part of the memory as a machine-code cassette.",
     .run = [] { with_file(DIALOG_MEMORY_AS_CAS, save_memory_as_cas); }},
    {.id = COMMAND_DETACH_DISK,
     .label = "Drive :&0",
     .tip = "Takes the disk out of drive 0.",
     .run = [] { main_disk_image_detach(0); }},
    {.id = COMMAND_DETACH_DISK + 1,
     .label = "Drive :&1",
     .tip = "Takes the disk out of drive 1.",
     .run = [] { main_disk_image_detach(1); }},
    {.id = COMMAND_DETACH_DISK + 2,
     .label = "Drive :&2",
     .tip = "Takes the disk out of drive 2.",
     .run = [] { main_disk_image_detach(2); }},
    {.id = COMMAND_DETACH_DISK + 3,
     .label = "Drive :&3",
     .tip = "Takes the disk out of drive 3.",
     .run = [] { main_disk_image_detach(3); }},
    {.id = COMMAND_DETACH_ALL,
     .label = "&All",
     .tip = "Takes the disks out of all drives.",
     .run = [] { main_disk_image_detach_all(); }},
    {.id = COMMAND_LOAD_SNAPSHOT,
     .label = "&Load snapshot ...",
     .tip = "Goes on with the machine in a snapshot file.",
     .run =
         [] { with_file(DIALOG_LOAD_SNAPSHOT, [](const std::string& s) { load_snapshot(s); }); }},
    {.id = COMMAND_SAVE_SNAPSHOT,
     .label = "Sa&ve snapshot as ...",
     .tip = "Keeps the machine in a snapshot file.",
     .run = [] { with_file(DIALOG_SAVE_SNAPSHOT, save_snapshot); }},
    {.id = COMMAND_SCREENSHOT,
     .label = "&Save screenshot",
     .hint = "F6",
     .tip = "Saves the picture under the next free name.",
     .run = host_save_screenshot,
     .line_switch = {.letter = 's',
                     .value = Value::seconds,
                     .usage = " N      take a screenshot after N seconds of machine time",
                     .obey = [](const Given& given) { event_screenshot_timout = cycles(given); }}},
    {.id = COMMAND_SCREENSHOT_AS,
     .label = "S&ave screenshot as...",
     .tip = "Saves the picture under a name of yours.",
     .run = [] { with_file(DIALOG_SCREENSHOT_AS, save_screenshot_as); }},
    {.id = COMMAND_SAVE_VIDEO,
     .label = "Sa&ve to video...",
     .hint = "Alt+I",
     .tip = "Records picture and sound as a film, until you choose it again.",
     .keys = {{{'I', ALT}}},
     .run = save_to_video,
     .line_switch = {.letter = 'v',
                     .value = Value::text,
                     .usage = " FILE   record a video",
                     .obey = [](const Given& given) { avi_name = given.value; }}},
    {.id = COMMAND_SAVE_WAV,
     .label = "Sa&ve to WAV...",
     .hint = "Alt+U",
     .tip = "Records the sound, until you choose it again.",
     .keys = {{{'U', ALT}}},
     .run = save_to_wav},
    {.id = COMMAND_EXIT,
     .label = "E&xit",
     .tip = "Ends Tarvelin.",
     .run = exit_program,
     .line_switch = {.letter = 't',
                     .value = Value::seconds,
                     .usage = " N      quit after N seconds of machine time",
                     .obey = [](const Given& given) { event_shutdown_timout = cycles(given); }}},

    // Machine.
    {.id = COMMAND_PAUSE,
     .label = "&Pause",
     .hint = "Pause",
     .tip = "Stops the machine until you choose it again.",
     .keys = {{{KEY_PAUSE, 0}}},
     .run = pause_machine},
    {.id = COMMAND_RESET,
     .label = "&Reset",
     .hint = "F11",
     .tip = "The machine's reset key; BASIC keeps your program.",
     .keys = {{{KEY_F11, 0}}},
     .run = [] { machine_apply(event_kind::reset); }},
    {.id = COMMAND_RESTART,
     .label = "R&estart",
     .hint = "Alt+F1",
     .tip = "Switches the machine off and on again.",
     .keys = {{{KEY_F1, ALT}, {KEY_F11, SHIFT}}},
     .run = restart_machine},
    {.id = COMMAND_COPY,
     .label = "C&opy to clipboard",
     .hint = "Alt+C",
     .tip = "Copies the text on the screen.",
     .keys = {{{'C', ALT}}},
     .run = ui_copy_to_clipboard},
    {.id = COMMAND_PASTE,
     .label = "P&aste from clipboard",
     .hint = "Alt+V",
     .tip = "Types in the text of the clipboard.",
     .keys = {{{'V', ALT}}},
     .run = paste_from_clipboard},
    {.id = COMMAND_MONITOR,
     .label = "&Monitor",
     .hint = "ESC",
     .tip = "Looks into the machine: registers, instructions, memory.",
     .run = toggle_monitor},
    {.id = COMMAND_CONFIGURATION,
     .label = "&Configuration...",
     .hint = "Alt+Q",
     .tip = "Chooses the model, the firmware and the memory.",
     .keys = {{{'Q', ALT}}},
     .run = configure_machine,
     .line_switch = {.letter = 'm',
                     .value = Value::digits,
                     .usage = "N       standard model N, 1 to 3",
                     .obey = apply_model}},
    {.id = COMMAND_PLACE_TRAPS, .run = [] { machine_apply(event_kind::tape_traps); }},
    {.id = COMMAND_LOWE_OFF,
     .run = [] { choose_lowe_board(false); },
     .marked = [] { return lowe.enabled == 0; }},
    // /r is accepted with its value, which selects nothing.
    {.line_switch = {.letter = 'r', .value = Value::text, .obey = [](const Given&) {}}},

    // Tape.
    {.id = COMMAND_DETACH_CAS,
     .label = "Detach &CAS",
     .tip = "Takes the cassette image out of the recorder.",
     .run = detach_cas},
    {.id = COMMAND_ATTACH_WAV,
     .label = "Attach &WAV...",
     .tip = "Puts a recording of a cassette into the recorder.",
     .keys = {{{'W', ALT}}},
     .run = [] { with_file(DIALOG_ATTACH_WAV, attach_wav); }},
    {.id = COMMAND_CREATE_WAV,
     .label = "&Create WAV...",
     .tip = "Puts a blank recording into the recorder.",
     .run = [] { with_file(DIALOG_CREATE_WAV, create_wav); }},
    {.id = COMMAND_CLOSE_WAV,
     .label = "C&lose WAV",
     .tip = "Takes the recording out of the recorder.",
     .run = close_wav},
    {.id = COMMAND_PLAY_RECORD,
     .label = "&Play/Record",
     .hint = "F5",
     .tip = "Starts or stops the recorder's motor.",
     .keys = {{{KEY_F5, 0}}},
     .run = play_or_record,
     .marked = [] { return tape_is_rolling() != 0; }},
    {.id = COMMAND_REWIND,
     .label = "&Rewind tape",
     .tip = "Winds the tape back to its beginning.",
     .run = rewind_tape},
    {.id = COMMAND_ADJUST_HEAD,
     .label = "Adj&ust head...",
     .tip = "Sets the level at which a weak recording is heard.",
     .run = adjust_head},

    // Options without a setting, and Help.
    {.id = COMMAND_DISPLAY_SETTINGS,
     .label = "&Display settings...",
     .tip = "Colours, brightness and contrast of the picture.",
     .run = [] { ui_display_setup(show_palette); }},
    {.id = COMMAND_FULL_SCREEN,
     .label = "Toggle fullscreen",
     .hint = "Alt+Enter",
     .tip = "The picture alone on the whole screen, and back.",
     .keys = {{{KEY_RETURN, ALT}}},
     .run = toggle_full_screen},
    {.id = COMMAND_ABOUT,
     .label = "&About...",
     .tip = "Name and version of the program.",
     .run = ui_about_dialog},
    {.id = COMMAND_MESSAGES,
     .label = "&Messages...",
     .tip = "All messages since the program was started.",
     .run = ui_messages},
};

} // namespace

std::span<const CommandRow> command_table() {
    static const std::vector<CommandRow> all = [] {
        std::vector<CommandRow> table(std::begin(rows), std::end(rows));
        for (const auto behind :
             {time_command_rows(), file_command_rows(), help_command_rows(), pad_command_rows(),
              window_command_rows(), panel_command_rows(), tube_command_rows(),
              media_command_rows(), keyboard_command_rows(), download_command_rows(),
              share_command_rows(), debugger_command_rows()}) {
            table.insert(table.end(), behind.begin(), behind.end());
        }
        return table;
    }();
    return all;
}

const CommandRow* find_command(int id) {
    const auto found = std::ranges::find(command_table(), id, &CommandRow::id);
    return id == 0 || found == command_table().end() ? nullptr : &*found;
}

const LineSwitch* find_switch(char letter) {
    const auto found = std::ranges::find_if(command_table(), [letter](const CommandRow& row) {
        return row.line_switch.letter == letter;
    });
    return letter == 0 || found == command_table().end() ? nullptr : &found->line_switch;
}
