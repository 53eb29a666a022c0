#include "host/commands.h"

#include "cgenie/hires_lowe.h"
#include "cgenie/memory/memory.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "host/autostart.h"
#include "host/avi.h"
#include "host/canvas.h"
#include "host/command_table.h"
#include "host/dialogs/dialogs.h"
#include "host/dialogs/hold.h"
#include "host/disk_rom.h"
#include "host/disks.h"
#include "host/display.h"
#include "host/downloads.h"
#include "host/loaded_program.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/recent.h"
#include "host/save_question.h"
#include "host/screenshot.h"
#include "host/settings/choices.h"
#include "host/shell.h"
#include "host/speed_commands.h"
#include "host/status.h"
#include "host/turn.h"
#include "host/welcome.h"
#include "host/zip_files.h"
#include "media/damage.h"
#include "media/files/cassette_files.h"
#include "media/files/printer_file.h"
#include "media/files/program_files.h"
#include "media/files/tape_sound_files.h"
#include "media/files/typed_text.h"
#include "media/printer.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"
#include "monitor/monitor.h"
#include "platform/platform.h"
#include "sound/output/sound_output.h"
#include "sound/output/sound_ring.h"
#include "sound/output/wav_capture.h"
#include "sound/ym2149.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>

namespace {

constexpr int TAPE_SAMPLE_RATE = 44100; ///< Hz, of a new tape recording
constexpr uint32_t RESTART_WAIT = 500;  ///< ms
constexpr uint32_t BLUR_LEVEL = 66;
constexpr const char* WAY_BACK = "Esc brings the machine back";
constexpr int CAPTURE_RUNS = 2; ///< value of g_bRecordingVideo

std::string sound_recording; ///< path of the file
std::string tape_recording;  ///< likewise

void tell_saved(const std::string& path) {
    StatusBarText("Saved: %s", path.c_str());
    file_is_complete(path);
}

void tell_recording(const std::string& path) { StatusBarText("Saving to: %s", path.c_str()); }

void enter_monitor() {
    ui_set_window_title("(Monitor)");
    platform().pane(PaneId::monitor).show(true);
    monitor_update();
    StatusBarText("%s", WAY_BACK);
}

void leave_monitor() {
    if (shown_status() == WAY_BACK) StatusBarText("%s", "");
    cpu_breakpoint_arrives(); // the breakpoint at this place has been reached already
    const Size client = platform().window().client_size();
    platform().pane(PaneId::picture).fill_rectangle({0, 0, client.width, client.height}, 0);
    platform().pane(PaneId::monitor).show(false);
    ui_set_window_title("%s", g_bActive ? "(Restarting)" : "(Suspended)");
    // A halted machine draws no frame, so the window has to be painted.
    if (!g_bActive) platform().window().invalidate();
}

void save_gif(const std::string& path) {
    if (gif_write_as(path, canvas)) return;
    const bool wrong_depth = canvas.header.bits != 8;
    std::string text = "Error saving in GIF format.";
    if (wrong_depth) text += "\rNon 8-bit display can not be saved as GIF.";
    report({.text = text,
            .file = path,
            .reason = wrong_depth ? "" : std::strerror(errno),
            .title = "Error!",
            .icon = MessageIcon::error});
}

void tell_tape_is_out() {
    StatusBarText("Tape image detached.");
    StatusBarPartText(PART_CASSETTE, "%s", "");
}

} // namespace

void with_file(int dialog, void (*act)(const std::string& path)) {
    ui_select_file(dialog, [act](const std::optional<std::string>& path) {
        if (path) act(*path);
    });
}

// ---- the machine -------------------------------------------------------------------------------

void pause_machine() {
    g_bPaused = !g_bPaused;
    activate_after_toggle();
    if (g_bActive) {
        ui_set_window_title("(Restarting)");
        check_menu_item(COMMAND_PAUSE, false);
    } else if (!g_bDebug) {
        show_true_frame();
        ui_set_window_title("(Suspended)");
        check_menu_item(COMMAND_PAUSE, true);
    }
}

void restart_machine() {
    rest_shell(RESTART_WAIT, [] {
        machine_apply(event_kind::restart);
        program_after_restart();
    });
}

void toggle_monitor() {
    g_bDebug = !g_bDebug;
    activate_after_toggle();
    if (g_bDebug) {
        enter_monitor();
    } else {
        leave_monitor();
    }
    check_menu_item(COMMAND_MONITOR, g_bDebug);
}

void monitor_key_switched() {
    const std::string label = find_command(COMMAND_MONITOR)->label;
    modify_menu_text(COMMAND_MONITOR, label + (shell_state.monitor_f12 ? "\tF12" : "\tESC"));
}

void configure_machine() {
    ui_machine_config([] {
        timer_recalibrate_fps(frames_per_second());
        recreate_bitmap(g_GiantScreen, 8);
    });
}

void pacing_switched() {
    if (!g_Timer) return sound_pause();
    if (!g_bSound) return;
    sound_resume();
    machine_apply(event_kind::reset_sound);
}

void key_mapping_switched() {
    machine_apply(event_kind::key_mapping, g_KeyMapping);
    kept_key_mapping = g_KeyMapping;
    welcome_key_mapping_changed();
}

void paste_from_clipboard() {
    machine_apply(event_kind::typing_trap);
    gui_paste_from_clipboard();
}

void switch_printer() {
    choices.printer = !printer_enabled;
    machine_apply(event_kind::printer, choices.printer);
    if (choices.printer) {
        printer_init();
    } else {
        printer_close();
        if (path_exists(printer_file())) file_is_complete(printer_file());
    }
}

void switch_clean_sound() {
    choices.clean_sound = !ym2149_clean;
    machine_apply(event_kind::clean_sound, choices.clean_sound);
}

void choose_lowe_board(bool on) {
    choices.graphics_board = on;
    machine_apply(event_kind::graphics_board, on);
    check_menu_item(COMMAND_LOWE_OFF, !on);
    check_menu_item(COMMAND_LOWE_ON, on);
}

void exit_program() {
    Event close;
    close.kind = Event::Kind::close;
    platform().events().post(close);
}

// ---- sound -------------------------------------------------------------------------------------

void sound_switched() {
    if (!g_bSound || !g_Timer) {
        end_sound_recording();
        return sound_null_driver_init(); // the filter stays: a new recording may follow
    }
    dsound_init(SOUND_RATE);
    machine_apply(event_kind::start_sound);
}

void start_sound_recording(const std::string& path) {
    if (!sound_create_wav(path)) return report(unwritable(path));
    sound_recording = path;
    check_menu_item(COMMAND_SAVE_WAV, true);
    tell_recording(path);
}

void end_sound_recording() {
    const bool ran = sound_is_saving(nullptr) != 0;
    sound_close_wav();
    if (ran) file_is_complete(sound_recording);
    check_menu_item(COMMAND_SAVE_WAV, false);
}

void save_to_wav() {
    if (!is_menu_item_checked(COMMAND_SAVE_WAV)) {
        return with_file(DIALOG_SAVE_WAV, start_sound_recording);
    }
    end_sound_recording();
}

// ---- the picture -------------------------------------------------------------------------------

void save_screenshot_as(const std::string& path) {
    if (lower_case_extension(path) == "gif") {
        save_gif(path);
    } else if (!dib_save_to_file(canvas, path)) {
        report(unwritable(path));
    }
    save_video_ram_when_wanted();
}

void double_scan_switched() {
    if (!g_bDblScan) dib_clear_buffer(canvas);
}

void canvas_depth_switched() { recreate_bitmap(g_GiantScreen, canvas_bits()); }

void toggle_tv_blur() {
    g_CompositeBlur = g_CompositeBlur ? 0 : BLUR_LEVEL;
    recreate_bitmap(g_GiantScreen, 8);
    check_menu_item(COMMAND_TV_BLUR, g_CompositeBlur != 0);
}

void giant_screen_switched() {
    set_screen_params(g_GiantScreen, canvas_bits());
    if (g_bDebug) return monitor_update();
    platform().window().invalidate();
}

void capture_to(const std::string& path) {
    if (!Video_CreateBitmap()) {
        report({.text = "AVI: an error occured."});
        return check_menu_item(COMMAND_SAVE_VIDEO, false);
    }
    const uint16_t* sound = g_bSound ? sound_get_buffer_ptr() : nullptr;
    Video_OpenOutput(path, sound, [](int runs) {
        if (runs) g_bRecordingVideo = CAPTURE_RUNS;
        check_menu_item(COMMAND_SAVE_VIDEO, g_bRecordingVideo != 0);
    });
}

void video_save_to_avi(bool ask, const std::string& path) {
    if (g_bRecordingVideo) {
        Video_CloseOutput();
        g_bRecordingVideo = 0;
        return check_menu_item(COMMAND_SAVE_VIDEO, false);
    }
    if (!ask) return capture_to(path);
    with_file(DIALOG_SAVE_VIDEO, capture_to);
}

void save_to_video() { video_save_to_avi(true, {}); }

// ---- tapes, snapshots, disks -------------------------------------------------------------------

void tell_bad_image(const std::string& path) { report({.text = "Error opening image: " + path}); }

void attach_cas_of(const std::string& path) { with_file_of_zip(path, ROLE_TAPE, attach_cas); }

void attach_cas(const std::string& path) {
    save_next_to({});
    if (!tape_attach_cas(path)) return tell_bad_image(path);
    note_opened(Opened::as_cassette, path);
    const std::string text = tape_wav_is_open() ? "CAS image in real time, F5 plays it: " + path
                                                : "CAS image attached: " + path;
    if (is_whole(path, tape_damage, text)) StatusBarText("%s", text.c_str());
}

void attach_wav(const std::string& path) {
    if (tape_open_wav(path)) note_opened(Opened::as_tape_sound, path);
}

void detach_cas() {
    save_next_to({});
    tape_detach_cas();
    tell_tape_is_out();
}

void close_wav() {
    const bool recorded = tape_audio.recording != 0;
    machine_apply(event_kind::tape_close_wav);
    if (recorded) file_is_complete(tape_recording);
    tell_tape_is_out();
    if (!tape_is_rolling()) check_menu_item(COMMAND_PLAY_RECORD, false); // a recording has ended
}

void create_wav(const std::string& path) {
    if (!tape_create_wav(path, TAPE_SAMPLE_RATE)) return;
    tape_recording = path;
    tell_recording(path);
}

void play_or_record() {
    const bool run = !is_menu_item_checked(COMMAND_PLAY_RECORD);
    machine_apply(event_kind::tape_motor, run);
    check_menu_item(COMMAND_PLAY_RECORD, run);
}

void rewind_tape() {
    machine_apply(event_kind::tape_rewind);
    check_menu_item(COMMAND_PLAY_RECORD, false);
}

void adjust_head() {
    ui_tape_adjust_head(tape_get_compare_level(),
                        [](int level) { machine_apply(event_kind::tape_level, level); });
}

void get_ui_save_tape_filename(const PathChoice& done) {
    ui_select_file(DIALOG_SAVE_CAS, [done](const std::optional<std::string>& path) {
        if (path) tell_recording(*path);
        reset_timer();
        done(path);
    });
}

void save_memory_as_cas(const std::string& path) {
    std::array<std::string, 3> addresses;
    ui_get_casdata(&addresses);
    if (tape_dump_cas(path, addresses[0], addresses[1], addresses[2])) tell_saved(path);
}

void save_snapshot(const std::string& path) {
    if (!snapshot_save(path.c_str(), memory_get_ram())) {
        return report(unwritable(path));
    }
    tell_saved(path);
}

void select_disk(unsigned drive) {
    ui_select_file(DIALOG_ATTACH_DISK, [drive](const std::optional<std::string>& path) {
        if (!path) return;
        with_file_of_zip(*path, ROLE_DISK,
                         [drive](const std::string& disk) { open_disk(drive, disk); });
    });
}

void open_disk(unsigned drive, const std::string& path) {
    give_disk(drive, path, [drive, path](bool attached) {
        if (attached) note_opened(Opened(char(Opened::in_drive_0) + int(drive)), path);
    });
}

// ---- commands ----------------------------------------------------------------------------------

void handle_command(int id) {
    const CommandRow* row = find_command(id);
    if (!row) return;
    const auto run = [row] {
        sound_pause();
        if (row->flag) {
            *row->flag = !*row->flag;
            check_menu_item(row->id, *row->flag);
        }
        if (row->run) row->run();
        if (row->marked) check_menu_item(row->id, row->marked());
    };
    obey_user(run, [id] {
        if (id == COMMAND_EXIT) return;
        if (g_bActive) sound_resume();
        reset_timer();
    });
}

int host_breakpoint_reached() {
    if (shell_state.start.unattended) return 0;
    if (!g_bDebug) handle_command(COMMAND_MONITOR);
    monitor_select_page(MONITOR_DISASSEMBLY);
    debug();
    return 1;
}
