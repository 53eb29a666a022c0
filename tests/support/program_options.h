#pragma once
/// For tests that start the program more than once in a process.

#include "cgenie/hires_lowe.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "core/pacing/speed.h"
#include "host/dialogs/compression_dialog.h"
#include "host/shell_state.h"
#include "media/printer.h"
#include "monitor/monitor.h"
#include "sound/ym2149.h"

/// Options, and what the command line leaves, as a new process has them.
inline void reset_program_options() {
    shell_state = {};
    g_Timer = true;
    frames_ahead = 0;
    speed_choices = {};
    printer_enabled = g_bCycleBasedEngine = ym2149_clean = false;
    g_bRecordingVideo = leftover = 0;
    event_screenshot_timout = event_shutdown_timout = EVENT_DISARMED;
    lowe.enabled = 0;
    answer_video_compression("");
    keyboard_type_reset();
    local_pc.reset();
    monitor_page = MONITOR_DISASSEMBLY;
    memdump_pc = 0;
}
