#include "time/replay.h"

#include "core/frame_driver.h"
#include "time/event_feed.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <utility>

// ---- recording ---------------------------------------------------------------------------------

bool ReplayRecorder::start(const std::string& path, std::string_view program_version,
                           replay_recorder_calls calls) {
    stop();
    calls_ = std::move(calls);
    events_.clear();
    frames_ = written_frames_ = 0;
    good_ = file_.open(path, program_version);
    if (!good_) return false;
    reader_ = event_feed_add([this](std::span<const machine_event> events) { take(events); },
                             [this] { write_state(); });
    write_state();
    complete_state();
    return good_;
}

bool ReplayRecorder::stop() {
    if (!is_on()) return good_;
    event_feed_remove(std::exchange(reader_, 0));
    complete_state();
    if (!events_.empty()) write_events(replay_check_now(frames_));
    good_ = file_.end(frames_) && good_;
    return good_;
}

void ReplayRecorder::write_state() {
    if (!events_.empty()) write_events({.frame = frames_}); // the machine is another one by now
    state_ = calls_.state();
}

/// The tape of a state that was loaded is known only when the machine goes on from it.
void ReplayRecorder::complete_state() {
    if (state_.empty()) return;
    const replay_tape tape = calls_.tape();
    if (!tape.path.empty()) good_ = file_.tape(tape) && good_;
    good_ = file_.state(state_) && good_;
    state_.clear();
}

void ReplayRecorder::take(std::span<const machine_event> events) {
    complete_state();
    for (const machine_event& event : events) {
        frames_ += event.kind == event_kind::frame_end ? 1 : 0;
        if (event.kind == event_kind::tape_play_wav) begin_tape(event);
        events_.push_back(event);
    }
    const bool at_frame_end = !events_.empty() && events_.back().kind == event_kind::frame_end;
    if (at_frame_end && frames_ - written_frames_ >= frames_per_second()) {
        write_events(replay_check_now(frames_));
    }
}

/// What came before the tape is played with the tape before it.
void ReplayRecorder::begin_tape(const machine_event& event) {
    events_.push_back({.cycle = event.cycle, .pc = event.pc});
    write_events({.frame = frames_}); // by now the machine has come further
    good_ = file_.tape(calls_.tape()) && good_;
}

void ReplayRecorder::write_events(const replay_check& behind) {
    good_ = file_.events(events_, behind) && good_;
    events_.clear();
    written_frames_ = frames_;
}

// ---- playing -----------------------------------------------------------------------------------

namespace {

std::string missing_rom(const replay_rom& rom) {
    char text[100];
    std::snprintf(text, sizeof text,
                  "a ROM image of %u bytes with the hash %016" PRIX64 " is missing",
                  unsigned(rom.size), rom.hash);
    return text;
}

/// Of the host, without what keeps bytes.
machine_host_calls calls_without_files(const replay_player_calls& calls) {
    const machine_host_calls nothing = machine_without_host();
    machine_host_calls host = machine_host_behind_log();
    host.write = nothing.write;
    host.stream_ends = nothing.stream_ends;
    host.was_reset = nothing.was_reset;
    host.read_tape = calls.read_tape ? calls.read_tape : nothing.read_tape;
    return host;
}

} // namespace

std::string ReplayPlayer::open(std::vector<uint8_t> file, replay_player_calls calls) {
    *this = {};
    bytes_ = std::move(file);
    calls_ = std::move(calls);
    const std::string problem = file_.open(bytes_);
    return problem.empty() ? read_start() : problem;
}

std::string ReplayPlayer::read_start() {
    replay_chunk chunk = file_.next();
    if (chunk.kind == replay_chunk::Kind::tape) {
        start_tape_ = std::move(chunk.tape);
        chunk = file_.next();
    }
    if (chunk.kind != replay_chunk::Kind::state) return "it does not begin with a whole state";
    start_state_ = chunk.state_file;
    return {};
}

std::string ReplayPlayer::begin() {
    std::string problem = start_tape_.path.empty() ? std::string() : open_tape(start_tape_);
    on_ = problem.empty();
    return problem;
}

std::string ReplayPlayer::open_tape(const replay_tape& tape) {
    return calls_.tape ? calls_.tape(tape) : std::string();
}

/// Fills in the ROM images that the user has to bring.
bool ReplayPlayer::find_roms() {
    for (machine_event& event : log_.events) {
        const auto rom = rom_reference_of(event);
        if (!rom) continue;
        auto image = calls_.rom ? calls_.rom(*rom) : std::nullopt;
        if (!image || rom_reference(*image) != *rom || event.a != int32_t(rom->size)) {
            trouble_ = missing_rom(*rom);
            return false;
        }
        event.b = 0;
        event.bytes = shared_bytes(std::move(*image));
    }
    return true;
}

std::string ReplayPlayer::read_on() {
    log_.events.clear();
    position_ = {};
    for (;;) {
        replay_chunk chunk = file_.next();
        std::string problem;
        switch (chunk.kind) {
        case replay_chunk::Kind::state: problem = calls_.load_state(chunk.state_file); break;
        case replay_chunk::Kind::tape: problem = open_tape(chunk.tape); break;
        case replay_chunk::Kind::events:
            log_.events = std::move(chunk.events);
            check_ = chunk.check;
            return find_roms() ? std::string() : trouble_;
        case replay_chunk::Kind::end:
            ended_ = true;
            return chunk.frames == frames_ ? std::string()
                                           : "the file has another number of frames";
        case replay_chunk::Kind::cut: return "the file was cut off here";
        case replay_chunk::Kind::damaged: problem = "the file is damaged: " + chunk.damage; break;
        }
        if (!problem.empty()) return problem;
    }
}

ReplayStep ReplayPlayer::part(const std::string& reason) {
    on_ = false;
    trouble_ = "parted at frame " + std::to_string(frames_) + ": " + reason +
               "; the same up to frame " + std::to_string(same_frame_);
    return ReplayStep::parted;
}

ReplayStep ReplayPlayer::run_frame() {
    if (!on_) return ReplayStep::over;
    for (;;) {
        if (position_.next == log_.events.size()) {
            if (ended_) break;
            const std::string problem = read_on();
            if (!problem.empty()) return part(problem);
            continue;
        }
        const machine_replay_end end =
            machine_replay_frame(log_, position_, calls_without_files(calls_));
        if (end == REPLAY_STANDS) return ReplayStep::stands;
        if (end == REPLAY_FRAME) ++frames_;
        if (end == REPLAY_PARTED) return part(position_.trouble);
        if (position_.next == log_.events.size()) {
            const bool counted = check_.frame == frames_;
            const std::string difference = counted ? replay_difference(check_) : "another count";
            if (!difference.empty()) return part(difference);
            same_frame_ = frames_;
        }
        if (end == REPLAY_FRAME) return ReplayStep::frame;
    }
    on_ = false;
    return ReplayStep::over;
}
