#pragma once
/// For tests that start the program more than once in a process.

#include "cgenie/hires_lowe.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "host/dialogs/compression_dialog.h"
#include "host/display.h"
#include "host/screenshot.h"
#include "host/shell.h"
#include "media/printer.h"
#include "monitor/monitor.h"
#include "sound/ym2149.h"

/// Options, and what the command line leaves, as a new process has them.
inline void reset_program_options() {
    g_bActive = g_Timer = g_bSound = g_bDblScan = g_bUseGDI = breakpoint_opens_monitor = true;
    g_bPaused = g_bDebug = g_bRunInBackground = g_KeyMapping = kept_key_mapping = false;
    g_GiantScreen = false;
    g_1bitDisplay = video_cut = video_page = printer_enabled = false;
    save_video_ram_w_screenshot = g_bCycleBasedEngine = ym2149_clean = false;
    g_CompositeBlur = 0;
    g_bFullScreen = g_bRecordingVideo = leftover = 0;
    event_screenshot_timout = event_shutdown_timout = EVENT_DISARMED;
    lowe.enabled = 0;
    avi_name.clear();
    answer_video_compression("");
    keyboard_type_reset();
    local_pc.reset();
    monitor_page = MONITOR_DISASSEMBLY;
    memdump_pc = 0;
}
