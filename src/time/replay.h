#pragma once
/// Recording the live machine into a replay file, and playing one: see time/replay_file.h.

#include "core/machine_events.h"
#include "time/replay_file.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a recording asks the program around it.
struct replay_recorder_calls {
    /// A state file of the machine as it is now, with the contents of all media.
    std::function<std::vector<uint8_t>()> state;
    /// The WAV tape that plays; no path when there is none.
    std::function<replay_tape()> tape;
};

/// Records until it is stopped, or destroyed. A program that is killed leaves all but the last
/// emulated second.
class ReplayRecorder {
public:
    ReplayRecorder() = default;
    ~ReplayRecorder() { stop(); }
    ReplayRecorder(const ReplayRecorder&) = delete;
    ReplayRecorder& operator=(const ReplayRecorder&) = delete;

    /// Begins a file with the machine as it is. False when the file cannot be written.
    bool start(const std::string& path, std::string_view program_version,
               replay_recorder_calls calls);
    bool is_on() const { return reader_ != 0; }
    /// Completes the file. False when not all could be written.
    bool stop();
    bool is_good() const { return good_; } ///< all could be written so far
    int64_t frames() const { return frames_; }
    uint64_t bytes() const { return file_.size(); }

private:
    void take(std::span<const machine_event> events);
    void write_state();
    void complete_state();
    void begin_tape(const machine_event& event);
    void write_events(const replay_check& behind);
    ReplayWriter file_;
    replay_recorder_calls calls_;
    std::vector<machine_event> events_; ///< that are not in the file yet
    std::vector<uint8_t> state_;        ///< likewise
    int64_t frames_ = 0;
    int64_t written_frames_ = 0;
    int reader_ = 0; ///< of the event feed
    bool good_ = false;
};

/// What a player asks the program around it.
struct replay_player_calls {
    /// Loads a state file in the middle of a replay; an empty text, or why that cannot be done.
    std::function<std::string(std::span<const uint8_t> state_file)> load_state;
    /// A ROM image that the user has to bring.
    std::function<std::optional<std::vector<uint8_t>>(const replay_rom&)> rom;
    /// Opens a WAV tape for read_tape; an empty text, or why that cannot be done.
    std::function<std::string(const replay_tape&)> tape;
    size_t (*read_tape)(uint64_t offset, uint8_t* to, size_t bytes) = nullptr;
};

enum class ReplayStep : uint8_t {
    frame,  ///< a frame has been played
    stands, ///< machine_host.watch_hit wants the machine to stand; can be gone on from
    over,   ///< the end has been reached, perhaps in the middle of a frame
    parted  ///< the machine does something else than it did then, or the file is damaged or cut off
};

/// Plays a file: the machine gets from it all that was done to it and all that it was answered.
/// Nothing that the machine puts out then reaches a file. It shows and sounds as always, and its
/// events go to the event feed like those of any live machine.
class ReplayPlayer {
public:
    /// An empty text, or why the file cannot be played.
    std::string open(std::vector<uint8_t> file, replay_player_calls calls);
    /// The state file that the replay begins with; whoever plays it loads it before `begin`.
    std::span<const uint8_t> start_state() const { return start_state_; }
    /// An empty text, or why the WAV tape that plays at the start cannot be read.
    std::string begin();
    bool is_on() const { return on_; }
    /// Plays the next frame. After `over` and `parted` it is off, and the machine stands where it
    /// has come to.
    ReplayStep run_frame();
    void stop() { on_ = false; }
    int64_t frames() const { return frames_; } ///< played so far
    /// In words for the user, when it has parted: at which frame, and in what.
    const std::string& trouble() const { return trouble_; }

private:
    std::string read_start();
    std::string open_tape(const replay_tape& tape);
    std::string read_on(); ///< to the next events, or to the end
    ReplayStep part(const std::string& reason);
    bool find_roms();
    std::vector<uint8_t> bytes_;
    ReplayReader file_;
    std::span<const uint8_t> start_state_;
    replay_tape start_tape_;
    replay_player_calls calls_;
    machine_log log_;
    machine_replay_position position_;
    replay_check check_;
    int64_t frames_ = 0;
    int64_t same_frame_ = 0; ///< the last one that was checked
    bool on_ = false;
    bool ended_ = false; ///< the end mark has been read
    std::string trouble_;
};
