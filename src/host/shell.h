#pragma once
/// The application shell: start-up in a fixed order, shutdown, and whether the machine runs.

#include "host/command_line.h"

#include <string>

extern bool g_bActive;                ///< frames are run in idle time
extern bool g_bPaused;                ///< by the user
extern bool g_bDebug;                 ///< the monitor owns the window
extern bool breakpoint_opens_monitor; ///< off where nobody could close it again
extern bool g_bRunInBackground;       ///< run while another program is active
extern bool g_bSound;                 ///< sound output wanted
extern bool g_KeyMapping;             ///< symbolic, at present
extern bool kept_key_mapping;         ///< symbolic by the user's own choice, for the next run
extern uint32_t sound_latency;        ///< ms, as it was read
extern std::string emu_path;          ///< the program's directory, with a trailing separator
extern std::string avi_name;          ///< capture to start with

/// Start-up, message loop, shutdown. Returns the exit code.
int run_shell(const CommandLine& line);

/// Starts everything that needs the window, up to the command line's file.
void emu_init(const CommandLine& line = {});
/// Ends recordings, keeps the settings, asks for changed disks, and closes what emu_init opened.
void emu_close();

/// Pause and monitor have toggled their flag: run when the machine stood still before and neither
/// holds it now.
void activate_after_toggle();
/// Run when neither pause nor monitor holds the machine.
void activate_unless_held();
