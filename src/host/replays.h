#pragma once
/// Replay files in the program (time/replay.h): recorded while the machine runs, and played.
///
/// While one plays, the machine gets nothing from keyboard and joysticks, and no byte that it puts
/// out reaches a file. As soon as anything else changes the machine (a command of the menu, a state
/// that is loaded, a step in the monitor), the replay is over and the machine the user's, as it is
/// at the end of the file.

#include <cstdint>
#include <string>
#include <vector>

/// Records into the file from now on, for the recording that runs.
void start_replay_recording(const std::string& path);
/// Completes the recording that runs, and tells about it.
void end_replay_recording();
/// The command: ends the recording that runs, or asks for a file and records.
void record_replay();
/// For each frame of the live machine: tells when a recording has failed.
void replay_frame_ran();

/// The frames of the history behind `first`, up to the end of frame `last`, as the bytes of a
/// replay file; no other state may have been loaded between them. Returns an empty text, or in
/// words for the user why there is none.
std::string replay_of_history(int64_t first, int64_t last, std::vector<uint8_t>& file);

/// Plays the file from now on, up to the end of frame `last`; then, with an unattended shell, the
/// program ends. Before that the media are taken out as main_disk_image_detach has it; when a disk
/// stays, or the file cannot be played, the user is told, and nothing changes.
void play_replay_file(const std::string& path, int64_t last = INT64_MAX);
/// The same with the contents of a file of which the host knows only the name.
void play_replay_bytes(const std::string& name, std::vector<uint8_t> bytes,
                       int64_t last = INT64_MAX);
/// Why the file cannot be read as a replay, in one line; empty when it can.
std::string replay_problem(const std::string& path);
/// The command: ends the replay that plays, or asks for a file and plays it.
void play_replay();
bool replay_plays();
/// The machine is the user's from now on.
void end_replay();
/// For the end of the program: nothing is recorded or played any more. With an unattended shell the
/// disks of a replay go with it.
void end_replays();
