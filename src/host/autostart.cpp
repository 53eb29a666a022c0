#include "host/autostart.h"

#include "core/machine.h"
#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "files/zip/zip_folder.h"
#include "host/disk_rom.h"
#include "host/loaded_program.h"
#include "host/menu.h"
#include "host/recent.h"
#include "host/replays.h"
#include "host/rewind.h"
#include "host/save_question.h"
#include "host/state_files.h"
#include "host/zip_files.h"
#include "media/damage.h"
#include "media/files/cassette_files.h"
#include "media/files/typed_text.h"
#include "media/tape.h"
#include "media/tape_audio.h"
#include "platform/platform.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

/// Frames after which the firmware has started and waits for input.
constexpr int BOOT_FRAMES = 100;
/// Typing skips the byte behind a carriage return, as that of a pair.
constexpr const char* ENTER = "\r\n";

bool is_starting_up() { return !machine_run_now.prompt_reached; }

void run_start_up_frames() {
    // An armed breakpoint is meant for the program to be started, and must not stop the start-up.
    const int32_t armed = std::exchange(z80_state.breakpoint_enabled, 0);
    rewind_stay_here();
    do_some_frames(BOOT_FRAMES);
    z80_state.breakpoint_enabled = armed;
}

/// Enter answers the question of a machine that has just been switched on.
void answer_start_question() {
    type_into_machine("\r");
    run_start_up_frames();
}

/// Runs frames until BASIC is there: the reset key ends any program.
void boot_to_basic() {
    answer_start_question();
    machine_apply(event_kind::reset);
}

/// Where an image is in as sound, the recorder starts for what is typed next.
void run_tape_of_sound() {
    if (!tape_wav_is_open()) return;
    machine_apply(event_kind::tape_motor, 1);
    check_menu_item(COMMAND_PLAY_RECORD, true);
}

using Bytes = std::span<const uint8_t>;

constexpr const char* UNKNOWN_TYPE = ": files of this type cannot be started";

/// After the file that is started; beside the zip file when it is in one.
void name_screenshots(const std::string& path) {
    const size_t point = extension_point(path);
    last_file_name = point == std::string::npos ? std::string() : path.substr(0, point);
    const auto inside = zip_path(path);
    if (!inside) return;
    last_file_name = path_in(folder_of(inside->archive), file_name_of(last_file_name));
}

/// Tells the user when the contents are damaged, with `text` in the status bar.
bool bytes_are_whole(const std::string& path, Bytes bytes, std::string (*damage)(Bytes),
                     const std::string& text) {
    const std::string reason = damage(bytes);
    if (reason.empty()) return true;
    report({.text = text, .file = path, .reason = reason});
    return false;
}

// The loaders of the table. Each returns false when the file was not loaded, which has been
// reported, or when the status bar need not name it. Only a disk is given by path, since its file
// follows what the machine writes.

bool start_cmd(const std::string& path, Bytes bytes) {
    // The program may call the firmware, which needs its vectors for that.
    if (g_bAutoStart && is_starting_up()) run_start_up_frames();
    machine_apply(event_kind::load_module, g_bAutoStart, 0,
                  shared_bytes({bytes.begin(), bytes.end()}));
    return bytes_are_whole(path, bytes, load_module_damage, path + " is damaged");
}

bool start_cassette(const std::string& path, Bytes bytes) {
    save_next_to({});
    tape_attach_bytes(path, bytes);
    char name = 0;
    const int kind = tape_cas_is_attached() ? tape_cas_type(&name) : tape_type(bytes, &name);
    if (!g_bAutoStart) return false;
    boot_to_basic();
    run_tape_of_sound();
    if (kind == TAPE_BASIC) {
        type_into_machine("\r\rCLOAD\r\rRUN\r");
    } else if (kind == TAPE_MACHINE_CODE) {
        type_into_machine(std::string("\r\r\r\rSYSTEM\r\r") + name + "\r\r/\r");
    } else {
        machine_apply(event_kind::typing_trap);
    }
    return bytes_are_whole(path, bytes, tape_damage, path + " is damaged");
}

void tell_started(const std::string& path) { StatusBarText("Autoloaded: %s", path.c_str()); }

bool start_disk(const std::string& path, Bytes /*bytes*/) {
    const bool control = platform().keyboard().control_is_held(); // before a question
    give_disk(0, path, [path, control](bool attached) {
        if (control) machine_apply(event_kind::start_again);
        if (attached) tell_started(path);
    });
    return false; // the disk tells by itself what came of it
}

bool start_snapshot(const std::string& path, Bytes bytes) {
    if (!bytes_are_whole(path, bytes, snapshot_damage, path + " is not a snapshot")) return false;
    // A snapshot does not hold what the firmware has set the picture's controller to.
    if (is_starting_up()) run_start_up_frames();
    return machine_apply(event_kind::snapshot, 0, 0, shared_bytes({bytes.begin(), bytes.end()})) !=
           0;
}

bool start_state(const std::string& path, Bytes bytes) {
    load_state_bytes(path, bytes);
    return false; // it tells by itself what came of it
}

/// `keys` follow the loading of a tokenized program. False when the text cannot be typed.
bool give_basic(const std::string& path, Bytes bytes, const std::string& keys) {
    const bool is_tokenized = is_tokenized_bas(bytes);
    if (!is_tokenized && !lines_fit(path, bytes)) return false;
    // Otherwise the question would take the first lines.
    if (g_bAutoStart && is_starting_up()) answer_start_question();
    if (is_tokenized) {
        tape_attach_basic(path, bytes);
        run_tape_of_sound();
        type_into_machine("\r\r\r\rCLOAD\r\r" + keys);
        return true;
    }
    // A machine that is slow, or was not let start up, still has its question to come.
    type_listing(bytes, is_starting_up() ? ENTER : "");
    machine_apply(event_kind::typing_trap);
    return true;
}

bool start_basic(const std::string& path, Bytes bytes) { return give_basic(path, bytes, "RUN\r"); }

bool start_replay(const std::string& path, Bytes bytes) {
    play_replay_bytes(path, {bytes.begin(), bytes.end()});
    return false; // it tells by itself
}

constexpr Loader loaders[] = {
    {"bas", ROLE_START | ROLE_TYPE, start_basic},
    {"cas", ROLE_START | ROLE_TAPE, start_cassette},
    {"cgd", ROLE_START | ROLE_DISK, start_disk},
    {"cgt", ROLE_START | ROLE_TAPE, start_cassette},
    {"cmd", ROLE_START, start_cmd},
    {"dsk", ROLE_START | ROLE_DISK, start_disk},
    {"img", ROLE_DISK, start_disk},
    {"jzs", ROLE_START | ROLE_STATE, start_snapshot},
    {"tvr", ROLE_START | ROLE_REPLAY, start_replay},
    {"tvs", ROLE_START | ROLE_STATE, start_state},
    {"txt", ROLE_START | ROLE_TYPE, start_basic},
};

const Loader* loader_of(const std::string& path) {
    const std::string extension = lower_case_extension(path);
    const auto* found = std::ranges::find(loaders, extension, &Loader::extension);
    return found != std::end(loaders) ? found : nullptr;
}

/// The loader of a file that can be started; null for any other file.
const Loader* starter_of(const std::string& path) {
    const Loader* loader = loader_of(path);
    return loader && loader->roles & ROLE_START ? loader : nullptr;
}

} // namespace

std::string file_problem(const std::string& path) { return file_problem(path, LARGEST_FILE); }

std::string file_problem(const std::string& path, size_t largest) {
    if (const auto inside = zip_path(path)) {
        const std::string problem = zip_file_problem(*inside, largest);
        return problem.empty() ? problem : path + ": " + problem;
    }
    if (!path_exists(path)) return path + ": no such file";
    if (is_folder(path)) return path + ": is a folder";
    if (!is_plain_file(path)) return path + ": is not a file";
    if (!may_read(path)) return path + ": cannot be read";
    if (size_of_file(path) > largest) return path + ": is too large";
    return {};
}

bool is_whole(const std::string& path, std::string (*damage)(Bytes), const std::string& text) {
    const auto bytes = read_whole_file(path);
    return !bytes || bytes_are_whole(path, *bytes, damage, text);
}

bool load_snapshot(const std::string& path) {
    const std::string problem = file_problem(path);
    if (!problem.empty()) return report({.text = problem}), false;
    const auto bytes = read_whole_file(path);
    if (!bytes || !start_snapshot(path, *bytes)) return false;
    note_opened(Opened::as_snapshot, path);
    return true;
}

uint8_t roles_of(const std::string& path) {
    const Loader* loader = loader_of(path);
    return loader ? loader->roles : uint8_t(0);
}

std::string patterns_of(uint8_t roles) {
    std::string patterns;
    for (const Loader& loader : loaders) {
        if ((loader.roles & roles) == 0) continue;
        patterns += (patterns.empty() ? "*." : ";*.") + std::string(loader.extension);
    }
    return patterns;
}

std::string start_problem(const std::string& path) {
    if (is_zip_name(path)) return zip_problem(path, ROLE_START);
    std::string problem = file_problem(path);
    if (problem.empty() && !starter_of(path)) problem = path + UNKNOWN_TYPE;
    return problem;
}

void autostart_file(const std::string& given) {
    end_replay();
    // The host takes a path up to a zero byte.
    const std::string path = given.substr(0, given.find('\0'));
    if (is_zip_name(path)) return with_file_of_zip(path, ROLE_START, autostart_file);
    name_screenshots(path);
    const std::string problem = start_problem(path);
    if (!problem.empty()) return report({.text = problem});
    const auto bytes = read_whole_file(path);
    if (!bytes) return report({.text = path + ": cannot be read"});
    note_opened(Opened::started, path);
    if (starter_of(path)->load(path, *bytes)) tell_started(path);
}

void autostart_bytes(const std::string& name, Bytes bytes) {
    end_replay();
    name_screenshots(name);
    const Loader* starter = starter_of(name);
    if (!starter) return report({.text = name + UNKNOWN_TYPE});
    if (starter->roles & ROLE_DISK) return report({.text = name + ": a disk needs a file"});
    program_is_loaded(name, bytes);
    if (starter->load(name, bytes)) tell_started(name);
}

void main_load_bas_file(const std::string& path) {
    end_replay();
    const std::string problem = file_problem(path);
    if (!problem.empty()) return report({.text = problem});
    const auto bytes = read_whole_file(path);
    if (!bytes) return report({.text = path + ": cannot be read"});
    note_opened(Opened::as_listing, path);
    give_basic(path, *bytes, "");
}
