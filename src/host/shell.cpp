#include "host/shell.h"

#include "cgenie/firmware_images.h"
#include "cgenie/hires_lowe.h"
#include "cgenie/joystick.h"
#include "cgenie/keyboard.h"
#include "cgenie/memory/memory.h"
#include "cgenie/palette.h"
#include "cgenie/typing/typing.h"
#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "files/unfinished_writes.h"
#include "host/autostart.h"
#include "host/avi.h"
#include "host/canvas.h"
#include "host/commands.h"
#include "host/dialogs/dialogs.h"
#include "host/disk_rom.h"
#include "host/disks.h"
#include "host/display.h"
#include "host/interrupted_writes.h"
#include "host/machine_callbacks.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/prefs.h"
#include "host/screen_text.h"
#include "host/screenshot.h"
#include "host/status.h"
#include "media/printer.h"
#include "media/tape.h"
#include "media/traps.h"
#include "media/wd1771.h"
#include "monitor/monitor.h"
#include "platform/platform.h"
#include "sound/output/sound_output.h"
#include "sound/output/sound_ring.h"
#include "sound/ym2149.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>

bool g_bActive = true;
bool g_bPaused = false;
bool g_bDebug = false;
bool breakpoint_opens_monitor = true;
bool g_bRunInBackground = false;
bool g_bSound = true;
bool g_KeyMapping = false;
bool kept_key_mapping = false;
std::string emu_path;
std::string avi_name;

namespace {

namespace fs = std::filesystem;

constexpr const char* WINDOW_TITLE = "Tarvelin - EACA EG2000 Colour Genie emulator";
constexpr uint32_t MONOCHROME = 1; ///< "BitDepth" of the 1-bit canvas
constexpr uint32_t COLOUR_DEPTH = 8;
constexpr uint32_t LOWEST_SCREEN_FREQUENCY = 5; ///< Hz
constexpr uint32_t HIGHEST_SCREEN_FREQUENCY = 150;
constexpr uint32_t DEFAULT_SCREEN_FREQUENCY = 50;
constexpr uint32_t STRONGEST_BLUR = 99;
constexpr int WHEEL_NOTCH = 120;
constexpr int WHEEL_SCALE = 256;

/// A flag as the store keeps it.
struct FlagSetting {
    const char* name;
    bool* flag;
};
/// A number as the store keeps it.
struct NumberSetting {
    const char* name;
    uint32_t* number;
};

machine_configuration& custom() { return machine_cfg[CUSTOM_CONFIGURATION]; }

void read_flag(const char* name, bool& flag) {
    uint32_t value = flag ? 1 : 0;
    GetValueDword(name, &value);
    flag = value != 0;
}
void write_flag(const char* name, bool flag) {
    const uint32_t value = flag ? 1 : 0;
    SetValueDword(name, &value);
}

const std::array<NumberSetting, 8> configuration_settings = {{
    {"ActiveConfig", &active_machine_cfg},
    {"CustomRomBASIC", &machine_cfg[CUSTOM_CONFIGURATION].basic_rom},
    {"CustomRomChar", &machine_cfg[CUSTOM_CONFIGURATION].character_rom},
    {"CustomRomExpansion", &machine_cfg[CUSTOM_CONFIGURATION].expansion_rom},
    {"CustomRamSize", &machine_cfg[CUSTOM_CONFIGURATION].ram_size},
    {"CustomCpuClockFreq", &machine_cfg[CUSTOM_CONFIGURATION].cpu_clock},
    {"CustomScreenFreq", &machine_cfg[CUSTOM_CONFIGURATION].screen_frequency},
    {"CustomPalette", &machine_cfg[CUSTOM_CONFIGURATION].palette},
}};
constexpr size_t PALETTE_SETTING = 7; ///< read later than the others

/// The options read before the disks, and written together at the end.
const std::array<FlagSetting, 5> options_read_early = {{
    {"VideoCut", &video_cut},
    {"VideoPage", &video_page},
    {"KeyMapping", &kept_key_mapping},
    {"GiantScreen", &g_GiantScreen},
    {"CleanSound", &ym2149_clean},
}};

/// The display parameters, none above 100.
const std::array<NumberSetting, 5> display_settings = {{
    {"Saturation", &display_params.saturation},
    {"Brightness", &display_params.brightness},
    {"Gamma", &display_params.gamma},
    {"Contrast", &display_params.contrast},
    {"InterlacedLine", &display_params.interlaced_line},
}};

void read_display_settings() {
    palette_get_saturation(); // is unset until somebody asks
    for (const auto& [name, number] : display_settings) {
        GetValueDword(name, number);
        *number = std::min(*number, HIGHEST_DISPLAY_PARAMETER);
    }
}

void read_sound_latency() {
    uint32_t latency = DEFAULT_LATENCY;
    GetValueDword("SoundLatency", &latency);
    const uint32_t possible = dsound_set_latency(latency);
    if (possible != latency) SetValueDword("SoundLatency", &possible);
}

/// The path as it is from wherever the next run starts.
std::string lasting_path(const std::string& path) {
    std::error_code error;
    const fs::path absolute = path.empty() ? fs::path() : fs::absolute(path, error);
    return error ? path : absolute.string();
}

std::string disk_setting(unsigned drive) { return "Disk" + std::to_string(drive); }

void read_options(uint32_t& bit_depth) {
    read_flag("DoubleScan", g_bDblScan);
    GetValueDword("HiResLowe", &lowe.enabled);
    GetValueDword("BitDepth", &bit_depth);
    read_flag("SyncSpeed", g_Timer);
    read_flag("RunInBackground", g_bRunInBackground);
    GetValueDword("CompositeBlur", &g_CompositeBlur);
    const uint32_t standard_clock = custom().cpu_clock;
    for (size_t n = 0; n < PALETTE_SETTING; ++n) {
        GetValueDword(configuration_settings[n].name, configuration_settings[n].number);
    }
    uint32_t& clock = custom().cpu_clock;
    if (clock > FASTEST_CLOCK || clock < SLOWEST_CLOCK) clock = standard_clock;
    uint32_t& frequency = custom().screen_frequency;
    if (frequency > HIGHEST_SCREEN_FREQUENCY || frequency < LOWEST_SCREEN_FREQUENCY) {
        frequency = DEFAULT_SCREEN_FREQUENCY;
    }
    uint32_t pattern = 0;
    GetValueDword("CustomRamStartupPattern", &pattern);
    memory_set_startup_pattern(pattern);
    read_display_settings();
    for (const auto& [name, flag] : options_read_early) read_flag(name, *flag);
    read_flag("EnablePrinter", printer_enabled);
}

void attach_remembered_disks() {
    std::array<std::string, DISK_DRIVES> paths;
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
        GetValueStr(disk_setting(drive).c_str(), &paths[drive]);
    }
    main_disk_image_attach_again(paths);
}

void correct_options(uint32_t bit_depth) {
    if (g_CompositeBlur > STRONGEST_BLUR) {
        g_CompositeBlur = 0;
        SetValueDword("CompositeBlur", &g_CompositeBlur);
    }
    read_flag("SaveVideoRamWithScreenShots", save_video_ram_w_screenshot);
    g_1bitDisplay = bit_depth == MONOCHROME;
    GetValueDword("CustomPalette", &custom().palette);
    custom().palette &= 1;
    if (!machine_is_valid_cfg(active_machine_cfg)) active_machine_cfg = 0;
}

void set_check_marks() {
    check_menu_item(COMMAND_SOUND, g_bSound);
    check_menu_item(COMMAND_CLEAN_SOUND, ym2149_clean);
    check_menu_item(COMMAND_DOUBLE_SCAN, g_bDblScan);
    check_menu_item(COMMAND_1BIT_DISPLAY, g_1bitDisplay);
    check_menu_item(COMMAND_TV_BLUR, g_CompositeBlur != 0);
    check_menu_item(COMMAND_LOWE_OFF, lowe.enabled == 0);
    check_menu_item(COMMAND_LOWE_ON, lowe.enabled != 0);
    check_menu_item(COMMAND_50HZ_TIMER, g_Timer);
    check_menu_item(COMMAND_VIDEO_CUT, video_cut);
    check_menu_item(COMMAND_VIDEO_PAGE, video_page);
    check_menu_item(COMMAND_SYMBOLIC_KEYS, g_KeyMapping);
    check_menu_item(COMMAND_GIANT_SCREEN, g_GiantScreen);
    check_menu_item(COMMAND_PRINTER, printer_enabled);
    check_menu_item(COMMAND_BACKGROUND, g_bRunInBackground);
    check_menu_item(COMMAND_SAVE_VIDEO_RAM, save_video_ram_w_screenshot);
}

void write_settings() {
    const UserCommand failures_open_a_box;
    prefs_hold();
    write_flag("Sound", g_bSound);
    write_flag("DoubleScan", g_bDblScan);
    SetValueDword("HiResLowe", &lowe.enabled);
    const uint32_t bit_depth = g_1bitDisplay ? MONOCHROME : COLOUR_DEPTH;
    SetValueDword("BitDepth", &bit_depth);
    write_flag("SyncSpeed", g_Timer);
    write_flag("RunInBackground", g_bRunInBackground);
    SetValueDword("CompositeBlur", &g_CompositeBlur);
    for (const auto& [name, number] : configuration_settings) SetValueDword(name, number);
    for (const auto& [name, number] : display_settings) SetValueDword(name, number);
    for (const auto& [name, flag] : options_read_early) write_flag(name, *flag);
    write_flag("EnablePrinter", printer_enabled);
    write_flag("SaveVideoRamWithScreenShots", save_video_ram_w_screenshot);
    const uint32_t pattern = memory_get_startup_pattern();
    SetValueDword("CustomRamStartupPattern", &pattern);
    write_flag("CycleBasedEmulation", g_bCycleBasedEngine);
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
        SetValueStr(disk_setting(drive).c_str(),
                    lasting_path(main_disk_image_remembered(drive)).c_str());
    }
    // One that is in is taken out next.
    SetValueStr("Tape", tape_cas_is_attached() ? "" : tape_get_cas_name().c_str());
    prefs_flush();
}

/// Run-in-background keeps the machine going while another program is active.
void application_activated(bool active) {
    g_bActive = !g_bPaused && !g_bDebug && (g_bRunInBackground || active);
    reset_timer();
}

void paint() {
    if (g_bDebug) return monitor_update();
    update_screen(1);
    reset_timer();
}

void wheel_turned(int delta) {
    if (!g_bDebug) return;
    const int notches = delta / WHEEL_NOTCH;
    step_dir_rows(notches < 0 ? 1 : -1, std::abs(notches * WHEEL_SCALE / WHEEL_NOTCH));
}

void key_pressed(const Event& event) {
    const UserCommand failures_open_a_box;
    const int command = accelerator_command(event.value, event.modifiers);
    if (command) return handle_command(command);
    handle_key(event);
}

void file_dropped(const std::string& path) {
    const UserCommand failures_open_a_box;
    autostart_file(path);
    reset_timer();
}

/// Whoever chooses another layout wants its characters: the symbolic mapping is on from then on, as
/// long as the program runs.
void layout_changed(bool by_user) {
    if (by_user) g_KeyMapping = true;
    keyboard_init();
    keyboard_change_mapping(g_KeyMapping);
    check_menu_item(COMMAND_SYMBOLIC_KEYS, g_KeyMapping);
}

void leave_menu() {
    reset_timer();
    sound_resume();
    keyboard_reset();
}

/// A file that is started tells by itself what is wrong with it.
void tell_what_is_left_out(const CommandLine& line) {
    for (const std::string& problem : line.problems) report({.text = problem});
    const size_t started = line.starts_file ? 1 : 0;
    for (size_t n = 0; n + started < line.files.size(); ++n) {
        const std::string problem = start_problem(line.files[n]);
        if (!problem.empty()) report({.text = problem});
    }
}

} // namespace

void activate_after_toggle() { g_bActive = !g_bActive && !g_bDebug && !g_bPaused; }

void activate_unless_held() { g_bActive = !g_bPaused && !g_bDebug; }

void emu_init(const CommandLine& line) {
    connect_machine();
    uint32_t bit_depth = COLOUR_DEPTH;
    const std::string data_directory = platform().paths().data_directory();
    CreateStatusBar();
    emu_path = platform().paths().program_directory() + "/";
    prefs_init();
    prefs_hold();
    read_flag("Sound", g_bSound);
    read_sound_latency();
    if (g_bSound) {
        dsound_init(SOUND_RATE);
        ym2149_reset();
    }
    firmware_load_user_images(data_directory + "/firmware");
    machine_init();
    video_init(machine_cfg[active_machine_cfg].palette & 1);
    joystick_init();
    printer_set_filename(data_directory + "/");
    read_options(bit_depth);
    attach_remembered_disks();
    correct_options(bit_depth);
    machine_change_cfg(machine_cfg[active_machine_cfg], 1);
    init_timers();
    tape_init();
    if (printer_enabled) printer_init();
    GetValueStr("Tape", &tape_get_cas_name());
    read_flag("CycleBasedEmulation", g_bCycleBasedEngine);
    g_KeyMapping = kept_key_mapping;
    keyboard_change_mapping(g_KeyMapping);
    prefs_flush();
    if (!line.wav.empty()) start_sound_recording(line.wav); // from the first frame on
    get_command_line(line);
    if (!g_bSound) sound_null_driver_init(); // the command line may have switched it off
    set_check_marks();
    set_screen_params(g_GiantScreen, canvas_bits());
    take_late_screenshot();
    if (!avi_name.empty()) video_save_to_avi(false, &avi_name);
    StatusBarText("%s", "");
    if (g_bSound && g_Timer) sound_init();
    initJoyInput();
}

void emu_close() {
    ui_free_forms();
    printer_close();
    if (g_bRecordingVideo) Video_CloseOutput();
    write_settings();
    sound_close();
    main_disk_end();
    tape_detach_cas();
    keyboard_type_reset();
    dib_destroy(canvas);
    prefs_done();
}

void WindowProcedure(const Event& event) {
    switch (event.kind) {
    case Event::Kind::close:
        platform().window().destroy();
        platform().events().post_quit(0);
        break;
    case Event::Kind::moved: reset_timer(); break;
    case Event::Kind::resized:
        StatusBarRedraw();
        reset_timer();
        break;
    case Event::Kind::focus: update_screen(1); break;
    case Event::Kind::paint: paint(); break;
    case Event::Kind::activate: application_activated(event.value != 0); break;
    case Event::Kind::layout_changed: layout_changed(event.value != 0); break;
    case Event::Kind::key_down: key_pressed(event); break;
    case Event::Kind::command: handle_command(event.value); break;
    case Event::Kind::double_click: handle_command(COMMAND_GIANT_SCREEN); break;
    case Event::Kind::wheel: wheel_turned(event.value); break;
    case Event::Kind::menu_loop_enter: sound_pause(); break;
    case Event::Kind::menu_loop_exit: leave_menu(); break;
    case Event::Kind::drop: file_dropped(event.text); break;
    case Event::Kind::draw_status: led_redraw(1); break;
    case Event::Kind::none:
    case Event::Kind::quit: break;
    }
}

int run_message_loop() {
    Events& events = platform().events();
    for (;;) {
        const bool halted = !g_bActive;
        if (halted) main_disk_keep_journals(); // nobody knows for how long
        const Event event = halted ? events.wait() : events.poll();
        if (event.kind == Event::Kind::quit) return event.value;
        if (event.kind == Event::Kind::none) {
            if (halted) continue;
            paced_frame_step();
            main_disk_keep_journals_when_due();
            continue;
        }
        main_disk_keep_journals(); // the message may open a dialog
        WindowProcedure(event);
        if (halted) reset_timer();
    }
}

int run_shell(const CommandLine& line) {
    connect_machine();
    Window& window = platform().window();
    if (!window.create(WINDOW_TITLE)) return 0;
    create_menu();
    window.set_readable("Colour Genie screen", shown_text);
    remove_unfinished_files();
    hold_message_boxes();
    emu_init(line);
    window.show();
    const std::string complaint = platform().settings().complaint();
    if (!complaint.empty()) report({.text = complaint, .severity = Severity::warning});
    tell_what_is_left_out(line);
    show_held_message_boxes();
    offer_interrupted_writes();
    main_disk_offer_journals();
    offer_disk_rom_late();
    reset_timer(); // the start is no time to catch up
    const int exit_code = run_message_loop();
    emu_close();
    return exit_code;
}
