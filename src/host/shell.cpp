#include "host/shell.h"

#include "cgenie/joystick.h"
#include "cgenie/keyboard.h"
#include "cgenie/memory/memory.h"
#include "cgenie/video.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "files/unfinished_writes.h"
#include "host/autostart.h"
#include "host/avi.h"
#include "host/canvas.h"
#include "host/commands.h"
#include "host/debugger_window.h"
#include "host/debugging.h"
#include "host/dialogs/compression_dialog.h"
#include "host/dialogs/dialogs.h"
#include "host/dialogs/hold.h"
#include "host/disk_rom.h"
#include "host/disks.h"
#include "host/display.h"
#include "host/interrupted_writes.h"
#include "host/joysticks.h"
#include "host/keep_history.h"
#include "host/key_map.h"
#include "host/links.h"
#include "host/loaded_program.h"
#include "host/machine_callbacks.h"
#include "host/media_panels.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/options.h"
#include "host/previews.h"
#include "host/remote.h"
#include "host/replays.h"
#include "host/resume.h"
#include "host/rom_files.h"
#include "host/screen_keyboard.h"
#include "host/screen_text.h"
#include "host/settings/choices.h"
#include "host/settings/prefs.h"
#include "host/state_files.h"
#include "host/states.h"
#include "host/status.h"
#include "host/turn.h"
#include "host/welcome.h"
#include "media/files/cassette_files.h"
#include "media/files/drive_files.h"
#include "media/files/printer_file.h"
#include "media/printer.h"
#include "media/tape.h"
#include "media/traps.h"
#include "platform/platform.h"
#include "sound/output/sound_output.h"
#include "sound/output/sound_ring.h"
#include "sound/ym2149.h"
#include "wall/machine_host.h"

#include <random>
#include <string>
#include <utility>

shell_record shell_state;

namespace {

constexpr const char* WINDOW_TITLE = "Tarvelin - EACA EG2000 Colour Genie emulator";

/// Reports the switches of the command line that are left out, and what is wrong with the files
/// that are named but not started. The one that is started is not looked at here: starting it
/// reports that.
void tell_what_is_left_out(const CommandLine& line) {
    for (const std::string& problem : line.problems) report({.text = problem});
    const size_t started = line.starts_file ? 1 : 0;
    for (size_t n = 0; n + started < line.files.size(); ++n) {
        const std::string problem = start_problem(line.files[n]);
        if (!problem.empty()) report({.text = problem});
    }
}

void take_over(const ShellOptions& options) {
    shell_state.start = options;
    shell_state.keep_history = options.keep_history;
    shell_state.keyboard_place =
        options.touch_screen ? KeyboardPlace::docked : KeyboardPlace::hidden;
    shell_state.history_limit = options.history_limit;
    for (const auto& [name, value] : options.line.settings) store_setting(name, value);
    if (!options.unattended) return;
    answer_video_compression(platform().settings().text("VideoCodec").value_or("uncompressed"));
}

} // namespace

void activate_after_toggle() { g_bActive = !g_bActive && !machine_is_held(); }

void activate_unless_held() { g_bActive = !machine_is_held(); }

bool machine_is_held() { return g_bPaused || g_bDebug || shell_state.debugger_stands; }

void emu_init(const ShellOptions& options) {
    const CommandLine& line = options.line;
    connect_machine();
    take_immediate_events();
    take_over(options);
    const std::string data_directory = platform().paths().data_directory();
    CreateStatusBar();
    emu_path = platform().paths().program_directory() + "/";
    prefs_init();
    prefs_hold();
    read_options(StartStep::sound_device);
    if (g_bSound) {
        dsound_init(SOUND_RATE);
        ym2149_reset();
    }
    firmware_load_user_images(data_directory + "/firmware");
    std::random_device seed;
    memory_seed_random(options.repeatable ? 0 : uint64_t(seed()) << 32 | seed());
    host_keyboard_init();
    program_is({});
    machine_init();
    choices = {.custom = machine_cfg[CUSTOM_CONFIGURATION]};
    video_init(machine_cfg[active_machine_cfg].palette & 1);
    joystick_init();
    printer_set_filename(platform().paths().printer_directory() + "/");
    ui_offer_filter(DIALOG_AUTOSTART,
                    {"All that can be started", patterns_of(ROLE_START) + ";*.zip"});
    ui_offer_preview(preview_of);
    for (const StartStep step :
         {StartStep::options, StartStep::startup_pattern, StartStep::picture, StartStep::disks}) {
        read_options(step);
    }
    main_disk_image_attach_remembered();
    if (!drive_files[0].path.empty()) program_is_loaded(drive_files[0].path);
    read_options(StartStep::screenshots);
    read_options(StartStep::palette);
    choices_apply();
    init_timers();
    tape_init();
    if (printer_enabled) printer_init();
    read_options(StartStep::tape);
    read_options(StartStep::engine);
    machine_apply(event_kind::engine, choices.cycle_based);
    g_KeyMapping = kept_key_mapping;
    machine_apply(event_kind::key_mapping, g_KeyMapping);
    prefs_flush();
    if (!line.wav.empty()) start_sound_recording(line.wav); // from the first frame on
    if (!line.load_state.empty()) load_state_file(line.load_state);
    get_command_line(line);
    if (!g_bSound) sound_null_driver_init(); // the command line may have switched it off
    set_check_marks();
    start_screen_keyboard();
    set_screen_params(g_GiantScreen, canvas_bits());
    take_late_screenshot();
    if (!avi_name.empty()) video_save_to_avi(false, avi_name);
    StatusBarText("%s", "");
    const bool sound_begins = line.load_state.empty() && !replay_plays(); // else it goes on
    if (g_bSound && g_Timer && sound_begins) machine_apply(event_kind::start_sound);
    initJoyInput();
    history_switched();
    if (!line.link.empty()) start_link(line.link);
    if (!line.replay.empty()) play_replay_file(line.replay, line.to_frame.value_or(INT64_MAX));
    if (!line.record.empty()) start_replay_recording(line.record);
    expect_welcome();
    if (line.gdb_port) remote_start(*line.gdb_port);
}

void emu_close(std::function<void()> done) {
    remote_end();
    debugging_end_all();
    end_history();
    const CommandLine& line = shell_state.start.line;
    if (!line.save_state.empty()) {
        save_state_file(line.save_state,
                        line.whole_state ? MediaInState::all : MediaInState::changed);
    }
    ui_free_forms();
    end_welcome();
    media_panels_end();
    end_replays();
    const bool goes_on = resume_keep_now();
    printer_close();
    if (g_bRecordingVideo) Video_CloseOutput();
    {
        const UserCommand failures_open_a_box;
        write_options();
    }
    end_debugger_window();
    sound_close();
    const auto end_disks = goes_on ? main_disk_leave : main_disk_end;
    end_disks([done = std::move(done)] {
        tape_detach_cas();
        end_states();
        resume_end();
        machine_apply(event_kind::stop_typing);
        dib_destroy(canvas);
        prefs_done();
        if (done) done();
    });
}

bool start_shell(const ShellOptions& options) {
    const CommandLine& line = options.line;
    shell_state.start = options; // which the menu is made by
    connect_machine();
    Window& window = platform().window();
    if (!window.create(WINDOW_TITLE)) return false;
    create_menu();
    window.set_readable("Colour Genie screen", shown_text);
    remove_unfinished_files();
    hold_message_boxes();
    emu_init(options);
    window.show();
    const std::string complaint = platform().settings().complaint();
    if (!complaint.empty()) report({.text = complaint, .severity = Severity::warning});
    tell_what_is_left_out(line);
    show_held_message_boxes();
    when_free(offer_interrupted_writes);
    when_free(resume_where_left);
    when_free(main_disk_offer_journals);
    when_free(offer_disk_rom_late);
    when_free(start_debugger_window);
    when_free(reset_timer); // the time that the start took is not caught up
    return true;
}

int run_shell(const ShellOptions& options) { return start_shell(options) ? run_message_loop() : 0; }
