#pragma once
/// The shell's options and what it is doing at the moment, in one record with the values of a new
/// process; behind it the names under which its fields are used.

#include "host/command_line.h"
#include "platform/geometry.h"
#include "platform/window.h"

#include <cstdint>
#include <string>

/// How a program wants its shell to run.
struct ShellOptions {
    CommandLine line;
    /// Nobody is there to answer: a breakpoint opens no monitor, and the setting "VideoCodec" says
    /// what a video is compressed with.
    bool unattended = false;
    /// Nothing that the machine gets or a state holds depends on chance or on the date.
    bool repeatable = false;
    /// What is written to a disk is kept in a journal, and journals left behind are offered.
    bool keep_disk_journals = false;
    bool keep_history = false;            ///< unless the settings say otherwise
    bool resumes = false;                 ///< the option to go on where the program was left counts
    bool save_changed_disks = false;      ///< when they are taken out, without a question
    bool sizable_window = false;          ///< unless the settings say otherwise
    bool remembers_files = false;         ///< that were opened, see recent.h
    bool answers_memory_question = false; ///< of a machine that was switched on, after a while
    bool welcomes = false;                ///< at the first start
    std::string page_address = {};        ///< for links, which there are none of without it
    bool touch_screen = false;            ///< keyboard docked, unless the settings say otherwise
    uint32_t history_limit = 200;         ///< MB, unless the settings say otherwise
    uint32_t resume_interval = 60; ///< seconds from one state to resume to the next, see resume.h
};

/// What the main window has got its size for.
struct WindowFit {
    Size canvas;
    bool sizable = false;
    bool docked_keyboard = false;
    bool operator==(const WindowFit&) const = default;
};

/// Where the floating keyboard was last, on the screen. A width of 0: nowhere yet.
struct FloatingKeyboard {
    uint32_t left = 0, top = 0, width = 0;
};

/// Where the debugger's pane was last, on the screen. A width of 0: nowhere yet.
struct DebuggerPlace {
    bool open = false;
    uint32_t left = 0, top = 0, width = 0, height = 0;
};

struct shell_record {
    ShellOptions start;

    // Options; the command table has their settings.
    bool sound = true;              ///< sound output wanted
    bool double_scan = true;        ///< repeat every line of the giant canvas; off leaves gaps
    bool giant_screen = false;      ///< canvas of 768 x 576 instead of 384 x 288
    bool one_bit_display = false;   ///< monochrome canvas, only without giant screen
    bool run_in_background = false; ///< run while another program is active
    bool key_mapping = false;       ///< symbolic, at present
    bool kept_key_mapping = false;  ///< symbolic by the user's own choice; kept in the settings
    bool video_cut = false;
    bool video_page = false;
    bool resume = false;          ///< go on where the program was left
    bool ask_memory_size = false; ///< and wait for the answer
    bool save_video_ram = false;  ///< every screenshot is followed by a dump of the screen memory
    bool monitor_f12 = false;     ///< F12 opens the monitor, and Esc does not
    bool welcome_shown = false;   ///< once, so that no start shows it again
    bool keep_history = false;    ///< of the machine, to go back in
    bool fixed_window = false;    ///< to the size of the canvas, by the user's choice
    bool window_smooth = false;   ///< a stretched picture has smooth edges
    uint32_t window_scale = 0;    ///< a WindowScale
    uint32_t window_width = 0;    ///< of the picture's area, by the user's choice; 0: none
    uint32_t window_height = 0;   ///< likewise
    KeyboardPlace keyboard_place = KeyboardPlace::hidden; ///< of the machine's, on the screen
    FloatingKeyboard floating_keyboard;
    DebuggerPlace debugger_place;
    uint32_t history_limit = ShellOptions().history_limit;
    uint32_t composite_blur = 0; ///< nonzero: composite filter, canvas of 32 bits per pixel
    uint32_t sound_latency = 0;  ///< ms, as it was read

    // At the moment.
    bool active = true;           ///< frames are run in idle time
    bool paused = false;          ///< by the user
    bool debug = false;           ///< the monitor owns the window
    bool debugger_stands = false; ///< the debugger has the machine stand
    bool use_gdi = true;          ///< the window presents; off while the whole screen does
    int full_screen = 0;          ///< 0 windowed, else 1 + use_gdi as it was
    bool auto_start = true;       ///< cleared for one evaluation of the command line: only load
    std::string emu_path;         ///< the program's directory, with a trailing separator
    std::string avi_name;         ///< capture to start with
    WindowFit window_fit;
    Size usual_picture; ///< the picture's area in a window that the user has not sized
    Size given_picture; ///< the area that it was given last, until the user changes it
    bool opens_maximized = false;
};
extern shell_record shell_state;

inline bool& g_bActive = shell_state.active;
inline bool& g_bPaused = shell_state.paused;
inline bool& g_bDebug = shell_state.debug;
inline bool& g_bRunInBackground = shell_state.run_in_background;
inline bool& g_bAutoStart = shell_state.auto_start;
inline bool& g_bSound = shell_state.sound;
inline bool& g_KeyMapping = shell_state.key_mapping;
inline bool& kept_key_mapping = shell_state.kept_key_mapping;
inline bool& g_GiantScreen = shell_state.giant_screen;
inline bool& g_bDblScan = shell_state.double_scan;
inline bool& g_1bitDisplay = shell_state.one_bit_display;
inline uint32_t& g_CompositeBlur = shell_state.composite_blur;
inline bool& video_cut = shell_state.video_cut;
inline bool& video_page = shell_state.video_page;
inline bool& save_video_ram_w_screenshot = shell_state.save_video_ram;
inline bool& g_bUseGDI = shell_state.use_gdi;
inline int& g_bFullScreen = shell_state.full_screen;
inline std::string& emu_path = shell_state.emu_path;
inline std::string& avi_name = shell_state.avi_name;
