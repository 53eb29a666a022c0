#include "host/machine_callbacks.h"

#include "cgenie/palette.h"
#include "core/frame_driver.h"
#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "host/attachments.h"
#include "host/avi.h"
#include "host/commands.h"
#include "host/debugging.h"
#include "host/display.h"
#include "host/joysticks.h"
#include "host/key_map.h"
#include "host/memory_question.h"
#include "host/messages.h"
#include "host/options.h"
#include "host/pad_keys.h"
#include "host/replays.h"
#include "host/rom_files.h"
#include "host/save_question.h"
#include "host/screen_keyboard.h"
#include "host/screenshot.h"
#include "host/shell_state.h"
#include "host/status.h"
#include "host/zip_files.h"
#include "media/files/media_files.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"
#include "sound/output/sound_ring.h"
#include "time/event_feed.h"
#include "time/history.h"
#include "wall/machine_host.h"

#include <cstdio>

void (*further_input)(machine_input& input) = nullptr;

void connect_machine() {
    machine_host.status_text = [](const char* text) { show_status(text, {}); };
    machine_host.part_text = show_status_part;
    machine_host.report = tell;
    machine_host.print = [](text_stream to, const char* lines) {
        // The output is nothing but the source or what the script prints when one is asked for.
        const CommandLine& line = shell_state.start.line;
        const bool is_taken = line.source || !line.script.empty();
        std::fputs(lines, to == TEXT_ERROR || is_taken ? stderr : stdout);
    };
    machine_host.lamp = light_lamp;
    machine_host.disk_written = mark_lamp;
    machine_host.frame = show_frame;
    machine_host.read_rom = read_rom_file;
    machine_host.read_input = [](machine_input& input) {
        read_host_keys(input);
        read_host_joysticks(input);
        press_pad_keys(input);
        press_screen_keys(input);
        memory_question_answer(input);
        if (further_input) further_input(input);
    };
    machine_host.was_reset = [] { last_file_name.clear(); };
    machine_host.stale = [] {
        event_feed_another_state();
        attachments_are_unknown();
        show_machine_anew();
    };
    machine_host.save_question = take_save_answer;
    machine_host.breakpoint_reached = host_breakpoint_reached;
    connect_media_files();
    connect_zip_files();
    sound_output_connect();
    pacing_host = {
        .title = [](const char* text) { ui_set_window_title("%s", text); },
        .has_canvas = [] { return host_has_canvas() != 0; },
        .save_screenshot = host_save_screenshot,
        .capture_frame = host_capture_frame,
        .answer_question = ask_save_question,
        .frame_ran =
            [] {
                event_feed_frame();
                history_frame_ran();
                debugging_frame_ran();
                replay_frame_ran();
                memory_question_frame_ran();
                screen_keys_frame_ran();
            },
        .show_ahead = show_frame_ahead,
        .run_frame = machine_run,
    };
}

void show_machine_anew() {
    palette_update();
    show_palette();
    set_check_marks();
    machine_show_cfg();
    led_update(wd1771_is_active());
    tape_show_counter_anew();
    timer_recalibrate_fps(frames_per_second());
    update_screen(1);
}
