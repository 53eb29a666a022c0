#pragma once
/// The command layer: what menu commands, accelerators and keys do.

#include "platform/events.h"

/// Runs the command; the sound pauses meanwhile, and pacing starts afresh after it.
void handle_command(int id);
/// A key-down that no accelerator took.
void handle_key(const Event& event);

/// Says in the status bar that a tape could not be put in.
void tell_bad_image(const std::string& path);
/// Starts or stops the AVI capture. 0 when the file dialog was cancelled or no picture can be made.
int video_save_to_avi(bool ask, std::string* name);
/// Records the sound from now on; a status text tells when the file cannot be written.
void start_sound_recording(const std::string& path);
/// The program counter has reached the armed breakpoint. 1 when the machine is to stand there, 0
/// when it is to go on.
int host_breakpoint_reached();
/// Asks for the name of a cassette image to save to; 1 when there is one.
int get_ui_save_tape_filename(std::string* path);
