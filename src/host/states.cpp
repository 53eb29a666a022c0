#include "host/states.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "host/downloads.h"
#include "host/recent.h"

#include "files/whole_file.h"
#include "host/state_files.h"
#include "platform/platform.h"
#include "wall/machine_host.h"
#include "wall/report.h"

#include <ctime>
#include <optional>
#include <utility>

namespace {

struct {
    int current = 0;
    std::optional<parked_state> before_load; ///< the machine as it was
} states;

std::string slot_path(int slot, const char* extension) {
    return state_file_path("slot-" + std::to_string(slot) + extension);
}
std::string slot_file(int slot) { return slot_path(slot, ".tvs"); }
std::string kept_file(int slot) { return slot_path(slot, ".bak"); }

std::string slot_name(int slot) { return "Slot " + std::to_string(slot); }

/// Makes the machine go on with the state, and keeps the present one.
void go_on_with(const parked_state& state, const std::string& told) {
    parked_state before = park_machine();
    unpark_machine(state);
    states.before_load = std::move(before);
    StatusBarText("%s: %s", told.c_str(), description_text(state.about).c_str());
}

/// `what` is loaded from the file. The user is asked for what the file needs and nobody has.
void load_file(const std::string& path, const std::string& what) {
    const auto bytes = read_whole_file(path);
    if (!bytes) return report({.text = what + " cannot be read", .file = path});
    unpack_state_asking(*bytes, [=](const std::string& problem, const parked_state& state) {
        if (problem.empty()) return go_on_with(state, what + " loaded");
        report({.text = what + " cannot be loaded", .file = path, .reason = problem});
    });
}

} // namespace

std::string state_file_path(const std::string& name) {
    return path_in(path_in(platform().paths().data_directory(), "states"), name);
}

int current_slot() { return states.current; }

void choose_slot(int slot) {
    states.current = (slot + STATE_SLOTS) % STATE_SLOTS;
    StatusBarText("%s: %s", slot_name(states.current).c_str(),
                  slot_text(slot_content(states.current)).c_str());
}

SlotContent slot_content(int slot) {
    SlotContent content;
    const std::string path = slot_file(slot);
    if (!path_exists(path)) return content;
    content.problem = describe_state_file(path, content.description);
    content.kind =
        content.problem.empty() ? SlotContent::Kind::full : SlotContent::Kind::unreadable;
    return content;
}

std::string slot_text(const SlotContent& content) {
    switch (content.kind) {
    case SlotContent::Kind::empty: return "empty";
    case SlotContent::Kind::unreadable: return "cannot be read: " + content.problem;
    case SlotContent::Kind::full: break;
    }
    return description_text(content.description);
}

std::string description_text(const state_description& about) {
    return about.running + ", " + state_time(about);
}

std::string state_time(const state_description& about) {
    const std::time_t seconds = about.time;
    std::tm local = {};
    char text[32] = "";
    if (!localtime_r(&seconds, &local)) return text;
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
    return text;
}

/// The new state is complete before the old one moves aside, so that a full disk costs nothing.
void save_slot(int slot) {
    const std::string next = slot_path(slot, ".new");
    make_folders(folder_of(next));
    const parked_state state = park_machine();
    if (!replace_whole_file(next, pack_state(state))) return report(unwritable(slot_file(slot)));
    if (path_exists(slot_file(slot))) rename_file(slot_file(slot), kept_file(slot));
    if (!rename_file(next, slot_file(slot))) return report(unwritable(slot_file(slot)));
    StatusBarText("%s saved: %s", slot_name(slot).c_str(), description_text(state.about).c_str());
}

void load_slot(int slot) {
    if (path_exists(slot_file(slot))) return load_file(slot_file(slot), slot_name(slot));
    StatusBarText("%s: empty", slot_name(slot).c_str());
}

void delete_slot(int slot) {
    if (!rename_file(slot_file(slot), kept_file(slot))) return report(unwritable(slot_file(slot)));
    StatusBarText("%s deleted", slot_name(slot).c_str());
}

bool slot_can_be_undone(int slot) { return path_exists(kept_file(slot)); }

void undo_slot(int slot) {
    if (!slot_can_be_undone(slot)) return;
    const std::string aside = slot_path(slot, ".new");
    const bool full = path_exists(slot_file(slot));
    if ((full && !rename_file(slot_file(slot), aside)) ||
        !rename_file(kept_file(slot), slot_file(slot)) ||
        (full && !rename_file(aside, kept_file(slot)))) {
        return report(unwritable(slot_file(slot)));
    }
    StatusBarText("%s as before: %s", slot_name(slot).c_str(),
                  slot_text(slot_content(slot)).c_str());
}

void save_state_as(const std::string& path) {
    if (!replace_whole_file(path, pack_state(park_machine()))) return report(unwritable(path));
    StatusBarText("Saved: %s", path.c_str());
    file_is_complete(path);
}

void load_state(const std::string& path) {
    if (path_exists(path)) note_opened(Opened::as_state, path);
    load_file(path, "State");
}

bool load_can_be_undone() { return states.before_load.has_value(); }

void undo_load() {
    if (!load_can_be_undone()) return;
    const parked_state before = std::move(*states.before_load);
    go_on_with(before, "As before the load");
}

void end_states() { states = {}; }
