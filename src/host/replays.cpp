#include "host/replays.h"
#include "files/file_names.h"
#include "host/recent.h"

#include "core/frame_driver.h"
#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "files/file_identity.h"
#include "files/whole_file.h"
#include "host/attachments.h"
#include "host/autostart.h"
#include "host/commands.h"
#include "host/dialogs/dialogs.h"
#include "host/disks.h"
#include "host/downloads.h"
#include "host/menu.h"
#include "host/rom_files.h"
#include "host/shell_state.h"
#include "host/state_files.h"
#include "host/status.h"
#include "media/files/cassette_files.h"
#include "media/files/drive_files.h"
#include "media/files/tape_sound_files.h"
#include "media/tape_audio.h"
#include "media/wd1771.h"
#include "platform/platform.h"
#include "time/event_feed.h"
#include "time/history.h"
#include "time/replay.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <optional>
#include <utility>

namespace {

constexpr size_t LARGEST_REPLAY = 1 << 30; ///< bytes; ten hours have some ten million
constexpr size_t LARGEST_ROM = 64 << 10;

struct {
    ReplayRecorder recorder;
    std::string path;
} recording;

struct {
    ReplayPlayer player;
    std::string path;
    int64_t last = 0;         ///< frame
    int reader = 0;           ///< of the event feed
    bool runs = false;        ///< the events that come are the replay's own
    bool was_changed = false; ///< somebody else has changed the machine
} playing;

// ---- recording ---------------------------------------------------------------------------------

/// The machine without the user's paths.
parked_state machine_alone() {
    parked_state parked = park_machine();
    parked.about.media = {};
    parked.about.attachments = {};
    return parked;
}

std::vector<uint8_t> state_with_media() { return pack_state(machine_alone(), MediaInState::all); }

replay_tape tape_that_plays() {
    const played_wav wav = tape_sound_played();
    return {wav.path, wav.hash};
}

void tell_recording_failed() {
    report({.text = recording.path + ": the replay could not be written",
            .file = recording.path,
            .reason = std::strerror(errno)});
}

// ---- what a replay needs -----------------------------------------------------------------------

/// The user's ROM image with this hash of its first bytes, in the files of the settings.
std::optional<std::vector<uint8_t>> rom_of_settings(size_t size, uint64_t hash) {
    for (const rom_file which : {ROM_BASIC, ROM_EXPANSION, ROM_CHARACTERS}) {
        std::vector<uint8_t> image(std::max(size, LARGEST_ROM));
        if (read_rom_file(which, image.data(), image.size()) < int(size)) continue;
        image.resize(size);
        if (content_hash(image) == hash) return image;
    }
    return std::nullopt;
}

void load(const parked_state& state) {
    machine_load(state.machine);
    attachments_are_none();
}

/// In the middle of a replay, where the recording went on from another state.
std::string load_state_of_replay(std::span<const uint8_t> file) {
    parked_state state;
    std::string problem = unpack_state(file, state);
    if (problem.empty()) load(state);
    return problem;
}

/// A tape that is no longer where it was may be beside the replay.
std::string open_tape(const replay_tape& tape) {
    const std::string problem = tape_sound_follow({tape.path, tape.hash});
    if (problem.empty()) return {};
    const std::string beside = path_in(folder_of(playing.path), file_name_of(tape.path));
    if (tape_sound_follow({beside, tape.hash}).empty()) return {};
    return "the tape " + tape.path + ": " + problem;
}

// ---- playing -----------------------------------------------------------------------------------

void leave_replay() {
    playing.player.stop();
    event_feed_remove(std::exchange(playing.reader, 0));
    pacing_host.run_frame = machine_run;
    check_menu_item(COMMAND_PLAY_REPLAY, false);
    attachments_follow(attachments_now());
    if (shell_state.start.unattended) platform().events().post_quit(0);
}

void tell_parted() {
    report({.text = playing.path + " " + playing.player.trouble(), .file = playing.path});
}

void tell_end() {
    StatusBarText("The replay has ended at frame %lld: the machine is yours.",
                  static_cast<long long>(playing.player.frames()));
}

/// The next frame of the replay, as machine_run has it.
int run_replay_frame() {
    event_feed_frame(); // what others have done
    if (playing.was_changed) {
        end_replay();
        return machine_run();
    }
    playing.runs = true;
    const ReplayStep step = playing.player.run_frame();
    event_feed_frame();
    playing.runs = false;
    if (step == ReplayStep::stands) return MACHINE_STANDS;
    if (step == ReplayStep::frame && playing.player.frames() < playing.last) return MACHINE_FRAME;
    leave_replay();
    step == ReplayStep::parted ? tell_parted() : tell_end();
    return step == ReplayStep::frame ? MACHINE_FRAME : MACHINE_STANDS;
}

void refuse(const std::string& problem) {
    report({.text = playing.path + " cannot be played: " + problem, .file = playing.path});
    if (shell_state.start.unattended) platform().events().post_quit(0);
}

void take_over_frames() {
    playing.runs = playing.was_changed = false;
    const auto is_change = [](const machine_event& event) {
        return event.kind !=
               event_kind::moment; // the log ends inside a frame, where a state may be
    };
    playing.reader = event_feed_add(
        [is_change](std::span<const machine_event> events) {
            if (!playing.runs && std::ranges::any_of(events, is_change)) playing.was_changed = true;
        },
        [] {
            if (!playing.runs) playing.was_changed = true;
        });
    pacing_host.run_frame = run_replay_frame;
    check_menu_item(COMMAND_PLAY_REPLAY, true);
    StatusBarText("Playing %s. Escape gives the machine to you.", playing.path.c_str());
    if (g_bPaused) handle_command(COMMAND_PAUSE);
}

void begin_with(const parked_state& state) {
    tape_detach_cas();
    tape_open_wav({});
    const std::string problem = playing.player.begin();
    if (!problem.empty()) return refuse(problem);
    attachments_leave();
    event_feed_frame();
    load(state);
    take_over_frames();
}

/// Takes the disks out from this drive on, and then calls `act`, if none stays.
void without_disks(unsigned drive, const std::function<void()>& act) {
    if (drive == DISK_DRIVES) return act();
    main_disk_image_detach(drive, [drive, act](bool is_out) {
        if (is_out) without_disks(drive + 1, act);
    });
}

} // namespace

void start_replay_recording(const std::string& path) {
    end_replay_recording();
    recording.path = path;
    const bool runs =
        recording.recorder.start(path, TARVELIN_VERSION, {state_with_media, tape_that_plays});
    if (!runs) {
        recording.recorder.stop();
        return tell_recording_failed();
    }
    check_menu_item(COMMAND_RECORD_REPLAY, true);
    StatusBarText("Recording a replay: %s", path.c_str());
}

void end_replay_recording() {
    if (!recording.recorder.is_on()) return;
    const bool whole = recording.recorder.stop();
    check_menu_item(COMMAND_RECORD_REPLAY, false);
    if (!whole) return tell_recording_failed();
    StatusBarText("Replay of %lld frames recorded: %s",
                  static_cast<long long>(recording.recorder.frames()), recording.path.c_str());
    file_is_complete(recording.path);
}

std::string replay_of_history(int64_t first, int64_t last, std::vector<uint8_t>& file) {
    if (!history_is_kept()) return "no history is kept";
    std::vector<machine_event> events;
    std::string problem = history_events(first, last, events);
    if (!problem.empty()) return problem;
    if (first == last) return "the machine has just begun";
    bool plays_tape =
        std::ranges::find(events, event_kind::tape_play_wav, &machine_event::kind) != events.end();
    std::vector<uint8_t> state;
    problem = history_visit(first, [&] {
        plays_tape = plays_tape || tape_audio.playing;
        parked_state then = machine_alone();
        then.about.picture = {}; // nobody looks at it
        state = pack_state(then, MediaInState::all);
    });
    if (plays_tape) return "a cassette plays that is not a part of it";
    replay_check check;
    if (problem.empty()) {
        problem = history_visit(last, [&] { check = replay_check_now(last - first); });
    }
    if (!problem.empty()) return problem;
    ReplayWriter writer;
    writer.begin(file, TARVELIN_VERSION);
    writer.state(state);
    writer.events(events, check);
    writer.end(last - first);
    return {};
}

void record_replay() {
    if (recording.recorder.is_on()) return end_replay_recording();
    with_file(DIALOG_RECORD_REPLAY, start_replay_recording);
}

void replay_frame_ran() {
    if (recording.recorder.is_on() && !recording.recorder.is_good()) end_replay_recording();
}

bool replay_plays() { return playing.player.is_on(); }

std::string replay_problem(const std::string& path) { return file_problem(path, LARGEST_REPLAY); }

void play_replay_file(const std::string& path, int64_t last) {
    const std::string problem = replay_problem(path);
    if (!problem.empty()) return report({.text = problem});
    auto bytes = read_whole_file(path, LARGEST_REPLAY);
    if (!bytes) return report({.text = path + ": cannot be read"});
    note_opened(Opened::as_replay, path);
    play_replay_bytes(path, std::move(*bytes), last);
}

void play_replay_bytes(const std::string& name, std::vector<uint8_t> bytes, int64_t last) {
    if (replay_plays()) leave_replay();
    playing.path = name;
    playing.last = last;
    const auto rom = [](const replay_rom& wanted) {
        return rom_of_settings(wanted.size, wanted.hash);
    };
    const std::string problem = playing.player.open(
        std::move(bytes), {load_state_of_replay, rom, open_tape, tape_sound_read});
    if (!problem.empty()) return refuse(problem);
    unpack_state_asking(playing.player.start_state(),
                        [](const std::string& trouble, const parked_state& state) {
                            if (!trouble.empty()) return refuse(trouble);
                            without_disks(0, [state] { begin_with(state); });
                        });
}

void play_replay() {
    if (replay_plays()) return end_replay();
    with_file(DIALOG_PLAY_REPLAY, [](const std::string& path) { play_replay_file(path); });
}

void end_replay() {
    if (!replay_plays()) return;
    leave_replay();
    tell_end();
}

void end_replays() {
    end_replay_recording();
    end_replay();
    if (!shell_state.start.unattended || playing.path.empty()) return;
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) {
        if (drive_files[drive].path.empty()) machine_apply(event_kind::disk_out, int32_t(drive));
    }
}
