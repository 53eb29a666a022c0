#pragma once
/// The shell's options and what it is doing at the moment: one record, as a new process has it, and
/// the names that its fields go by.

#include "host/command_line.h"

#include <cstdint>
#include <string>

/// How a program wants its shell to run.
struct ShellOptions {
    CommandLine line;
    /// Nobody is there to answer: a breakpoint opens no monitor, and the setting "VideoCodec" says
    /// what a video is compressed with.
    bool unattended = false;
    /// What is written to a disk is kept in a journal, and journals left behind are offered.
    bool keep_disk_journals = false;
    bool save_changed_disks = false; ///< when they are taken out, without a question
};

struct shell_record {
    ShellOptions start;

    // Options; the command table has their settings.
    bool sound = true;
    bool double_scan = true; ///< repeat every line of the giant canvas; off leaves gaps
    bool giant_screen = false;
    bool one_bit_display = false;
    bool run_in_background = false;
    bool key_mapping = false;
    bool kept_key_mapping = false;
    bool video_cut = false;
    bool video_page = false;
    bool save_video_ram = false;
    uint32_t composite_blur = 0;
    uint32_t sound_latency = 0;

    // At the moment.
    bool active = true;
    bool paused = false;
    bool debug = false;
    bool use_gdi = true;
    int full_screen = 0;
    bool auto_start = true;
    std::string avi_name;
};
extern shell_record shell_state;

inline bool& g_bActive = shell_state.active; ///< frames are run in idle time
inline bool& g_bPaused = shell_state.paused; ///< by the user
inline bool& g_bDebug = shell_state.debug;   ///< the monitor owns the window
inline bool& g_bRunInBackground =
    shell_state.run_in_background;                   ///< run while another program is active
inline bool& g_bSound = shell_state.sound;           ///< sound output wanted
inline bool& g_KeyMapping = shell_state.key_mapping; ///< symbolic, at present
inline bool& kept_key_mapping =
    shell_state.kept_key_mapping; ///< the user's own choice, for the next run
inline uint32_t& sound_latency = shell_state.sound_latency; ///< ms, as it was read
inline std::string& avi_name = shell_state.avi_name;        ///< capture to start with

inline bool& g_GiantScreen = shell_state.giant_screen; ///< canvas of 768 x 576 instead of 384 x 288
inline bool& g_bDblScan = shell_state.double_scan;
inline bool& g_1bitDisplay =
    shell_state.one_bit_display; ///< monochrome canvas, only without giant screen
inline uint32_t& g_CompositeBlur =
    shell_state.composite_blur; ///< nonzero: composite filter, canvas of 32 bits per pixel
inline bool& video_cut = shell_state.video_cut;
inline bool& video_page = shell_state.video_page;
inline bool& g_bUseGDI =
    shell_state.use_gdi; ///< the window presents; off while the whole screen does
inline int& g_bFullScreen = shell_state.full_screen; ///< 0 windowed, else 1 + g_bUseGDI as it was

/// Every screenshot is followed by a dump of the screen memory.
inline bool& save_video_ram_w_screenshot = shell_state.save_video_ram;
/// Cleared for one evaluation of the command line: load, but do not start.
inline bool& g_bAutoStart = shell_state.auto_start;
