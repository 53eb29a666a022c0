#pragma once
/// The command layer: what menu commands, accelerators and keys do.

#include "host/dialogs/dialogs.h"
#include "platform/events.h"

#include <string>

/// Runs the command; the sound pauses meanwhile, and pacing starts afresh after it.
void handle_command(int id);
/// A key-down that no accelerator took.
void handle_key(const Event& event);

/// Tells the user that a tape could not be put in.
void tell_bad_image(const std::string& path);
/// Starts the AVI capture into the file, or into one that the user is asked for; stops one that
/// runs.
void video_save_to_avi(bool ask, const std::string& path);
/// Records the sound from now on; a status text tells when the file cannot be written.
void start_sound_recording(const std::string& path);
void end_sound_recording();
/// The program counter has reached the armed breakpoint. 1 when the machine is to stand there, 0
/// when it is to go on.
int host_breakpoint_reached();
/// Asks for the name of a cassette image to save to; `done` gets nothing when the user cancels.
void get_ui_save_tape_filename(const PathChoice& done);

// What the rows of the command table do. "Switched": the row's flag has just been toggled.

/// Asks for a file and hands it over; nothing happens when the user cancels.
void with_file(int dialog, void (*act)(const std::string& path));

void pause_machine();
void restart_machine();
void toggle_monitor();
/// Shows in the menu which key opens the monitor.
void monitor_key_switched();
void configure_machine();
void pacing_switched();
void key_mapping_switched();
void paste_from_clipboard();
void switch_printer();
void switch_clean_sound();
void choose_lowe_board(bool on);
void exit_program();

void sound_switched();
void save_to_wav();

void save_screenshot_as(const std::string& path);
void double_scan_switched();
void canvas_depth_switched();
void toggle_tv_blur();
void giant_screen_switched();
void save_to_video();

void attach_cas(const std::string& path);
/// The same, and of a zip file the cassette in it.
void attach_cas_of(const std::string& path);
void attach_wav(const std::string& path);
void detach_cas();
void close_wav();
void create_wav(const std::string& path);
void play_or_record();
void rewind_tape();
void adjust_head();
void save_memory_as_cas(const std::string& path);
void save_snapshot(const std::string& path);
void select_disk(unsigned drive);
void open_disk(unsigned drive, const std::string& path);
