#include "host/state_files.h"
#include "files/file_names.h"
#include "host/recent.h"

#include "core/machine.h"
#include "core/pacing/pacing.h"
#include "files/file_identity.h"
#include "files/whole_file.h"
#include "host/attachments.h"
#include "host/autostart.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "host/shell_state.h"
#include "host/status.h"
#include "media/files/cassette_files.h"
#include "media/files/drive_files.h"
#include "media/tape.h"
#include "platform/platform.h"
#include "time/event_feed.h"
#include "wall/machine_host.h"

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

/// Files that the user has named for what was missing; the hash tells whether one is right.
using GivenFiles = std::vector<std::string>;

medium_origin drive_origin(unsigned drive) {
    const disk_file& file = drive_files[drive];
    if (file.path.empty()) return {};
    const bool unchanged = content_hash(drive_contents[drive].view()) == file.hash;
    return {lasting_path(file.path), 0, unchanged};
}

medium_origin cassette_origin() {
    if (!cassette.attached || tape_get_cas_name().empty()) return {};
    const auto bytes = read_whole_file(tape_get_cas_name());
    const bool unchanged =
        !cassette.saving && bytes && content_hash(*bytes) == content_hash(cas.view());
    return {lasting_path(tape_get_cas_name()), 0, unchanged};
}

/// The program that was started, or what it may have come from.
std::string what_is_running(const state_description& about) {
    const bool started = !last_file_name.empty() && last_file_name != PRODUCT_NAME;
    if (started) return file_name_of(last_file_name);
    for (const size_t medium : {CASSETTE, size_t(0)}) {
        if (!about.media[medium].path.empty()) return file_name_of(about.media[medium].path);
    }
    return machine_cfg[active_machine_cfg].name;
}

// ---- what is not in a file ----------------------------------------------------------------------

/// The contents of those that can be read.
state_sources::Files read_files(const GivenFiles& paths) {
    state_sources::Files files;
    for (const std::string& path : paths) {
        if (auto bytes = read_whole_file(path)) files.push_back(std::move(*bytes));
    }
    return files;
}

std::string unpack_with(std::span<const uint8_t> file, parked_state& state, const GivenFiles& given,
                        std::string& missing) {
    constexpr std::array<const char*, 3> ROM_SETTINGS = {"BasicROMPath", "ExpansionROMPath",
                                                         "CharROMPath"};
    const auto with_given = [&](const std::string& path) {
        GivenFiles paths = given;
        paths.push_back(path);
        return read_files(paths);
    };
    const state_sources sources = {
        .medium = [&](size_t, const medium_origin& origin) { return with_given(origin.path); },
        .rom =
            [&](const rom_piece& piece) {
                const char* const setting = ROM_SETTINGS[size_t(piece.area)];
                return with_given(platform().settings().text(setting).value_or(""));
            },
        .missing = &missing};
    return state_file_unpack(file, state.machine, state.about, sources);
}

/// Asks for one file after the other, until nothing is missing or the user gives up.
void unpack_or_ask(const std::shared_ptr<const Bytes>& file, const GivenFiles& given,
                   const StateDone& done) {
    parked_state state;
    std::string missing;
    const std::string problem = unpack_with(*file, state, given, missing);
    if (missing.empty() || shell_state.start.unattended) return done(problem, state);
    const FileDialog dialog = {.title = "The state needs: " + file_name_of(missing),
                               .filters = {{"All files (*.*)", "*.*"}}};
    ask_for_file(dialog, [=](const std::optional<FileChoice>& choice) {
        if (!choice) return done(problem, {});
        GivenFiles more = given;
        more.push_back(choice->path);
        unpack_or_ask(file, more, done);
    });
}

void load_or_report(const std::string& name, const std::string& problem,
                    const parked_state& state) {
    if (!problem.empty()) {
        return report({.text = name + " cannot be loaded", .file = name, .reason = problem});
    }
    unpark_machine(state);
    StatusBarText("Loaded: %s", name.c_str());
}

} // namespace

parked_state park_machine() {
    parked_state parked;
    machine_save(parked.machine);
    state_description& about = parked.about;
    about.version = TARVELIN_VERSION;
    if (!shell_state.start.repeatable) {
        about.time = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    }
    about.picture = state_file_picture();
    about.attachments = attachments_now();
    for (unsigned drive = 0; drive < DISK_DRIVES; ++drive) about.media[drive] = drive_origin(drive);
    about.media[CASSETTE] = cassette_origin();
    about.running = what_is_running(about);
    return parked;
}

void unpark_machine(const parked_state& state) {
    attachments_leave();
    event_feed_frame();
    machine_load(state.machine);
    attachments_follow(state.about.attachments);
    reset_timer();
}

std::vector<uint8_t> pack_state(const parked_state& state, MediaInState media) {
    return state_file_pack(state.machine, state.about, media == MediaInState::all);
}

std::string unpack_state(std::span<const uint8_t> file, parked_state& state) {
    std::string missing;
    return unpack_with(file, state, {}, missing);
}

std::string read_state_file(const std::string& path, parked_state& state) {
    const auto bytes = read_whole_file(path);
    return bytes ? unpack_state(*bytes, state) : "it cannot be read";
}

std::string describe_state_file(const std::string& path, state_description& about) {
    const auto bytes = read_whole_file(path);
    return bytes ? state_file_describe(*bytes, about) : "it cannot be read";
}

void unpack_state_asking(std::span<const uint8_t> file, const StateDone& done) {
    unpack_or_ask(std::make_shared<const Bytes>(file.begin(), file.end()), {}, done);
}

void load_state_bytes(const std::string& name, std::span<const uint8_t> file) {
    unpack_state_asking(file, [name](const std::string& problem, const parked_state& state) {
        load_or_report(name, problem, state);
    });
}

void load_state_file(const std::string& path) {
    const std::string problem = file_problem(path);
    const auto bytes = problem.empty() ? read_whole_file(path) : std::nullopt;
    if (!problem.empty()) return report({.text = problem});
    if (!bytes) return report({.text = path + ": cannot be read"});
    note_opened(Opened::as_state, path);
    load_state_bytes(path, *bytes);
}

void save_state_file(const std::string& path, MediaInState media) {
    if (!replace_whole_file(path, pack_state(park_machine(), media))) {
        return report(unwritable(path));
    }
    StatusBarText("Saved: %s", path.c_str());
}
