#include "support/fake_host.h"

#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "media/files/cassette_files.h"
#include "media/files/media_files.h"
#include "sound/output/sound_ring.h"
#include "wall/machine_host.h"

#include <cstdio>

FakeHost fake_host;

namespace {

/// Connected before main: the machine of such a program has no other host.
const bool connected = [] {
    machine_host.status_text = [](const char* text) { fake_host.status[3] = text; };
    machine_host.part_text = [](int part, const char* text) { fake_host.status[part & 3] = text; };
    machine_host.report = [](const Report& told) {
        fake_host.status[3] = told.text;
        fake_host.reports.push_back(told);
    };
    machine_host.print = [](text_stream to, const char* lines) {
        std::fputs(lines, to == TEXT_ERROR ? stderr : stdout);
    };
    machine_host.lamp = [](int drive) { fake_host.lamp = drive; };
    machine_host.frame = [](int flag) {
        fake_host.screen_updates += flag != 0 && use_of_picture() == PictureUse::shown;
    };
    machine_host.was_reset = [] { last_file_name.clear(); };
    connect_media_files();
    machine_host.save_question = [] {
        ++fake_host.save_questions;
        if (fake_host.save_waits) return SAVE_NOT_YET;
        if (fake_host.save_path.empty()) return SAVE_REFUSED;
        return tape_create_file(fake_host.save_path) ? SAVE_READY : SAVE_FAILED;
    };
    machine_host.breakpoint_reached = [] {
        ++fake_host.breakpoints;
        return fake_host.stands_still ? 1 : 0;
    };
    sound_output_connect();
    pacing_host = {
        .title = [](const char* text) { fake_host.title = text; },
        .has_canvas = [] { return fake_host.canvas; },
        .save_screenshot = [] { ++fake_host.screenshots; },
        .capture_frame = [] { ++fake_host.captured_frames; },
        .answer_question = [] { return false; },
        .frame_ran = [] { ++fake_host.frames_told; },
        .show_ahead = [] { ++fake_host.pictures_ahead; },
        .run_frame = machine_run,
    };
    return true;
}();

} // namespace
