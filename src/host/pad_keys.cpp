#include "host/pad_keys.h"

#include "cgenie/input.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "host/key_map.h"
#include "host/loaded_program.h"
#include "platform/keyboard.h"
#include "platform/platform.h"
#include "wall/report.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace {

constexpr unsigned COLUMNS = 8;
constexpr int HEXADECIMAL = 16;
constexpr size_t LARGEST_STORE = 1 << 20; ///< bytes
constexpr const char* STORE = "pad-keys";
constexpr const char* FOR_ALL = "all";

/// Of their way from the middle, from which a stick counts as pushed.
constexpr uint16_t NEAR_LOW = 16384, NEAR_HIGH = 49151;

// In the file, by PadInput.
constexpr std::array<std::string_view, PAD_INPUTS> INPUTS = {
    "up", "down", "left", "right", "a",    "b",     "l1", "x",
    "y",  "r1",   "l2",   "r2",    "back", "start", "l3", "r3"};
constexpr std::string_view PAD_PREFIX[PADS] = {"1:", "2:"};

constexpr const char* KEYPAD_DIGITS[] = {"KEYPAD0", "KEYPAD1", "KEYPAD2", "KEYPAD3", "KEYPAD4",
                                         "KEYPAD5", "KEYPAD6", "KEYPAD7", "KEYPAD8", "KEYPAD9"};

struct StoredKeys {
    uint64_t program = ALL_PROGRAMS;
    PadKeys keys = {};
};

PadKeys in_force = {};

// ---- as a text: a line for each program, of its hash and words such as "1:a=SPACE" --------------

std::string_view take_word(std::string_view& text, char end) {
    const size_t length = std::min(text.find(end), text.size());
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    return word;
}

void read_word(std::string_view word, PadKeys& keys) {
    const std::string_view pressed = take_word(word, '=');
    for (int pad = 0; pad < PADS; ++pad) {
        if (!pressed.starts_with(PAD_PREFIX[pad])) continue;
        const auto* input = std::ranges::find(INPUTS, pressed.substr(PAD_PREFIX[pad].size()));
        if (input == INPUTS.end()) return;
        for (PadTarget target = 1; target < PAD_TARGETS; ++target) {
            const char* name = pad_target_name(target);
            if (name && word == name) keys[size_t(pad)][size_t(input - INPUTS.begin())] = target;
        }
    }
}

std::optional<StoredKeys> read_line(std::string_view line) {
    StoredKeys stored;
    const std::string_view hash = take_word(line, ' ');
    if (hash != FOR_ALL) {
        const char* end = hash.data() + hash.size();
        const auto [read, error] = std::from_chars(hash.data(), end, stored.program, HEXADECIMAL);
        if (error != std::errc() || read != end || stored.program == ALL_PROGRAMS) return {};
    }
    while (!line.empty()) read_word(take_word(line, ' '), stored.keys);
    return stored;
}

void put_line(std::string& text, const StoredKeys& stored) {
    char hash[17];
    std::snprintf(hash, sizeof hash, "%016" PRIX64, stored.program);
    text += stored.program == ALL_PROGRAMS ? FOR_ALL : hash;
    for (size_t pad = 0; pad < PADS; ++pad) {
        for (size_t input = 0; input < PAD_INPUTS; ++input) {
            const PadTarget target = stored.keys[pad][input];
            if (target == PAD_DOES_USUAL) continue;
            text += ' ';
            text += PAD_PREFIX[pad];
            text += INPUTS[input];
            text += '=';
            text += pad_target_name(target);
        }
    }
    text += '\n';
}

std::string store_path() { return platform().paths().data_directory() + "/" + STORE; }

/// The newest first.
std::vector<StoredKeys> read_store() {
    std::vector<StoredKeys> all;
    const auto bytes = read_whole_file(store_path(), LARGEST_STORE);
    if (!bytes) return all;
    std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    while (!text.empty() && all.size() <= PAD_PROGRAMS) {
        const auto stored = read_line(take_word(text, '\n'));
        if (stored) all.push_back(*stored);
    }
    return all;
}

bool write_store(const std::vector<StoredKeys>& all) {
    std::string text;
    for (const StoredKeys& stored : all) put_line(text, stored);
    const std::string path = store_path();
    make_folders(folder_of(path));
    if (replace_whole_file(path, text)) return true;
    report({.text = "The keys of the game pad cannot be kept",
            .file = path,
            .reason = std::strerror(errno)});
    return false;
}

// ---- on the machine ----------------------------------------------------------------------------

void press(machine_input& input, PadTarget target) {
    if (target >= PAD_KEYPAD) {
        input.keypad |= uint16_t(1U << (target - PAD_KEYPAD));
    } else if (target != PAD_DOES_USUAL) {
        const unsigned position = target - 1U;
        input.direct[position / COLUMNS] |= uint8_t(1U << position % COLUMNS);
    }
}

} // namespace

const char* pad_target_name(PadTarget target) {
    if (target == PAD_DOES_USUAL || target >= PAD_TARGETS) return nullptr;
    if (target >= PAD_KEYPAD) return KEYPAD_DIGITS[target - PAD_KEYPAD];
    return machine_key_name(target - 1U);
}

std::optional<PadTarget> pad_target_of(uint8_t host_key) {
    if (host_key >= KEY_NUMPAD0 && host_key < KEY_NUMPAD0 + std::size(KEYPAD_DIGITS)) {
        return PadTarget(PAD_KEYPAD + (host_key - KEY_NUMPAD0));
    }
    const auto position = machine_key_of(host_key);
    if (!position) return {};
    return PadTarget(1 + *position);
}

std::optional<PadKeys> stored_pad_keys(uint64_t program) {
    const std::vector<StoredKeys> all = read_store();
    const auto found = std::ranges::find(all, program, &StoredKeys::program);
    if (found == all.end()) return {};
    return found->keys;
}

bool store_pad_keys(uint64_t program, const std::optional<PadKeys>& keys) {
    std::vector<StoredKeys> all = read_store();
    const bool changes = keys || std::ranges::count(all, program, &StoredKeys::program) != 0;
    if (!changes) return true;
    std::erase_if(all, [program](const StoredKeys& old) { return old.program == program; });
    if (keys) all.insert(all.begin(), {program, *keys});
    // Those for all programs are not among the ones that are forgotten.
    const auto general = std::ranges::find(all, ALL_PROGRAMS, &StoredKeys::program);
    if (general != all.end()) std::rotate(all.begin(), general, general + 1);
    const size_t most = PAD_PROGRAMS + (general != all.end() ? 1 : 0);
    if (all.size() > most) all.resize(most);
    const bool written = write_store(all);
    pad_keys_follow_program();
    return written;
}

void pad_keys_copy(uint64_t from, uint64_t to) {
    if (from == ALL_PROGRAMS || from == to) return;
    const auto keys = stored_pad_keys(from);
    if (keys) store_pad_keys(to, keys);
}

void pad_keys_follow_program() {
    auto keys = stored_pad_keys(loaded_program().hash);
    if (!keys) keys = stored_pad_keys(ALL_PROGRAMS);
    in_force = keys.value_or(PadKeys());
}

const PadKeys& pad_keys() { return in_force; }

uint32_t held_pad_inputs(int pad) {
    const auto state = platform().joysticks().read(pad);
    if (!state) return 0;
    uint32_t held = state->buttons;
    if (state->y < NEAR_LOW) held |= 1U << PAD_UP;
    if (state->y > NEAR_HIGH) held |= 1U << PAD_DOWN;
    if (state->x < NEAR_LOW) held |= 1U << PAD_LEFT;
    if (state->x > NEAR_HIGH) held |= 1U << PAD_RIGHT;
    return held;
}

void press_pad_keys(machine_input& input) {
    for (int pad = 0; pad < PADS; ++pad) {
        const uint32_t held = held_pad_inputs(pad);
        for (size_t n = 0; n < PAD_INPUTS; ++n) {
            if (held >> n & 1) press(input, in_force[size_t(pad)][n]);
        }
    }
}
