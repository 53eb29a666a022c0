#include "host/screen_keyboard.h"

#include "cgenie/input.h"
#include "cgenie/keyboard.h"
#include "cgenie/video.h"
#include "host/commands.h"
#include "host/key_labels.h"
#include "host/key_map.h"
#include "host/main_window.h"
#include "host/menu.h"
#include "host/pad_keys.h"
#include "host/replays.h"
#include "host/screen_keyboard_picture.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int LEAST_FRAMES = 2;  ///< of a click
constexpr int HIGHEST = 300;     ///< docked
constexpr int USUAL_WIDTH = 816; ///< floating
constexpr unsigned ROW_SHIFT = 7;
constexpr uint8_t COLUMN_SHIFT = 1 << 0, COLUMN_MODE = 1 << 1;

enum class Latch : uint8_t { off, next, locked };

/// A finger, or the mouse, on a key.
struct Press {
    const ScreenKey* key;
    int finger;
    int frames = LEAST_FRAMES; ///< that it lasts yet
    bool let_go = false;
    bool used = false; ///< another key was pressed meanwhile
};

struct {
    std::vector<Press> presses;
    std::array<Latch, 8> latches = {}; ///< by column of the row of the keys that change others
} held;

struct {
    std::optional<Drawing> drawing;
    std::vector<KeyLook> looks;      ///< as they were drawn
    std::vector<std::string> labels; ///< by key; empty: to be asked for
    bool labels_symbolic = false;
} picture;

Pane& pane() { return platform().pane(PaneId::keyboard); }
Window& window() { return platform().window(); }

bool is_shown() { return shell_state.keyboard_place != KeyboardPlace::hidden; }
bool is_symbolic() { return input_state.keyboard_mapping == MAPPING_SYMBOLIC; }
bool changes_others(const ScreenKey& key) { return key.is_in_matrix() && key.row == ROW_SHIFT; }

/// Pixels of the screen that the pane has.
Size pixels() {
    const Size size = pane().size();
    const double scale = pane().scale();
    return {int(std::lround(size.width * scale)), int(std::lround(size.height * scale))};
}

// ---- what is pressed ---------------------------------------------------------------------------

void release_everything() { held = {}; }

/// What was meant for the next key has been used.
void end_latches() {
    const bool goes_on = std::ranges::any_of(
        held.presses, [](const Press& press) { return !changes_others(*press.key); });
    if (goes_on) return;
    for (Latch& latch : held.latches) {
        if (latch == Latch::next) latch = Latch::off;
    }
}

void let_go(int finger, const ScreenKey* under);

void press(const ScreenKey& key, int finger) {
    let_go(finger, nullptr); // its release may have got lost
    if (!changes_others(key) && key.is_in_matrix()) {
        for (Press& other : held.presses) other.used = true;
    }
    held.presses.push_back({&key, finger});
}

void let_go(int finger, const ScreenKey* under) {
    const auto found = std::ranges::find_if(held.presses, [finger](const Press& press) {
        return press.finger == finger && !press.let_go;
    });
    if (found == held.presses.end()) return;
    const Press ended = *found;
    const ScreenKey& key = *ended.key;
    if (key.is_in_matrix() && !changes_others(key)) {
        found->let_go = true;
        if (found->frames > 0) return;
    }
    held.presses.erase(found);
    if (changes_others(key)) {
        Latch& latch = held.latches[key.column];
        if (ended.used) {
            latch = Latch::off;
        } else {
            latch = latch == Latch::off    ? Latch::next
                    : latch == Latch::next ? Latch::locked
                                           : Latch::off;
        }
    } else if (key.is_in_matrix()) {
        end_latches();
    } else if (under == &key) { // the buttons act when they are let go, like those of a form
        const bool other_mapping = (key.kind == ScreenKey::Kind::by_character) != g_KeyMapping;
        if (key.kind == ScreenKey::Kind::reset) {
            handle_command(COMMAND_RESET);
        } else if (other_mapping) {
            handle_command(COMMAND_SYMBOLIC_KEYS);
        }
    }
}

// ---- what is shown -----------------------------------------------------------------------------

/// The rows of the matrix as the machine finds them.
std::array<uint8_t, 8> matrix() {
    machine_input input = {};
    if (replay_plays()) {
        input = input_state.now;
    } else {
        read_host_keys(input);
        press_pad_keys(input);
        press_screen_keys(input);
    }
    std::array<uint8_t, 8> rows;
    unsigned shifted = 0;
    for (size_t row = 0; row < rows.size(); ++row) {
        shifted |= input.symbolic[1][row];
        rows[row] = uint8_t(input.direct[row] |
                            (is_symbolic() ? input.symbolic[0][row] | input.symbolic[1][row]
                                           : input.positional[row]));
    }
    if (is_symbolic()) { // SHIFT comes with the characters that need it
        rows[ROW_SHIFT] = uint8_t(input.direct[ROW_SHIFT] | (shifted ? COLUMN_SHIFT : 0));
    }
    return rows;
}

KeyLook::Light light_of(const ScreenKey& key, const std::array<uint8_t, 8>& rows) {
    using enum KeyLook::Light;
    const auto if_pressed = [](bool is_pressed) { return is_pressed ? pressed : off; };
    switch (key.kind) {
    case ScreenKey::Kind::by_character: return if_pressed(is_symbolic());
    case ScreenKey::Kind::by_position: return if_pressed(!is_symbolic());
    case ScreenKey::Kind::reset:
        return if_pressed(std::ranges::any_of(
            held.presses, [&key](const Press& press) { return press.key == &key; }));
    case ScreenKey::Kind::key:
    case ScreenKey::Kind::space: break;
    }
    if (changes_others(key)) {
        if (held.latches[key.column] == Latch::locked) return locked;
        if (held.latches[key.column] == Latch::next) return next;
    }
    return if_pressed(rows[key.row] >> key.column & 1);
}

void take_pattern(std::array<uint8_t, 8>& pattern, std::optional<uint8_t> code) {
    if (!code) return;
    for (uint32_t line = 0; line < pattern.size(); ++line) {
        pattern[line] = video_character_pattern(*code, line);
    }
}

void ask_for_labels() {
    picture.labels.clear();
    picture.labels_symbolic = is_symbolic();
    for (const ScreenKey& key : screen_keys()) {
        const bool reset = key.kind == ScreenKey::Kind::reset;
        picture.labels.push_back(key.is_in_matrix() ? host_key_label(key.position(), is_symbolic())
                                                    : (reset ? "F11" : ""));
    }
}

std::vector<KeyLook> present_looks() {
    using enum KeyLook::Gives;
    if (picture.labels.empty() || picture.labels_symbolic != is_symbolic()) ask_for_labels();
    const auto rows = matrix();
    const bool shift = rows[ROW_SHIFT] & COLUMN_SHIFT, mode = rows[ROW_SHIFT] & COLUMN_MODE;
    std::vector<KeyLook> looks;
    for (const ScreenKey& key : screen_keys()) {
        KeyLook look = {.light = light_of(key, rows),
                        .gives = mode ? (shift ? shifted_graphics : graphics)
                                      : (shift ? shifted : plain),
                        .host = picture.labels[looks.size()]};
        take_pattern(look.graphics, graphics_code(key, false));
        take_pattern(look.graphics2, graphics_code(key, true));
        looks.push_back(std::move(look));
    }
    return looks;
}

void tell_readers() {
    const double scale = pane().scale();
    std::vector<PaneButton> buttons;
    for (const ScreenKey& key : screen_keys()) {
        const Area area = area_of(key, pixels());
        const auto place = [scale](double at) { return int(std::lround(at / scale)); };
        buttons.push_back(
            {spoken_name(key),
             {place(area.left), place(area.top), place(area.right), place(area.bottom)},
             picture.looks[buttons.size()].light != KeyLook::Light::off});
    }
    pane().set_buttons(buttons);
}

void draw(bool anew) {
    const Size size = pixels();
    if (!is_shown() || size.width <= 0 || size.height <= 0) return;
    anew = anew || !picture.drawing || picture.drawing->size() != size;
    if (anew) {
        picture.drawing.emplace(size, 0);
        draw_keyboard_case(*picture.drawing);
    }
    std::vector<KeyLook> looks = present_looks();
    bool changed = anew;
    for (size_t n = 0; n < looks.size(); ++n) {
        if (!anew && looks[n] == picture.looks[n]) continue;
        draw_key(*picture.drawing, screen_keys()[n], looks[n]);
        changed = true;
    }
    picture.looks = std::move(looks);
    if (!changed) return;
    tell_readers();
    const Size area = pane().size();
    pane().stretch_bitmap(picture.drawing->view(), {0, 0, area.width, area.height},
                          {.smooth = true});
}

// ---- where it is -------------------------------------------------------------------------------

int height_for(int width) {
    return (width * SCREEN_KEYBOARD.height + SCREEN_KEYBOARD.width - 1) / SCREEN_KEYBOARD.width;
}

/// The floating window, where the user had it last.
Rectangle floating_rectangle() {
    const FloatingKeyboard& at = shell_state.floating_keyboard;
    const int width = at.width ? int(at.width) : USUAL_WIDTH;
    return {int(at.left), int(at.top), int(at.left) + width, int(at.top) + height_for(width)};
}

void place_keyboard() {
    const KeyboardPlace place = shell_state.keyboard_place;
    const int width = window().client_size().width;
    const Rectangle wanted = place == KeyboardPlace::docked
                                 ? Rectangle{0, 0, width, docked_keyboard_height(width)}
                                 : floating_rectangle();
    window().place_keyboard(place, wanted, COMMAND_KEYBOARD_FLOATING);
}

} // namespace

void show_screen_keyboard(KeyboardPlace place) {
    const bool docking =
        (place == KeyboardPlace::docked) != (shell_state.keyboard_place == KeyboardPlace::docked);
    remember_floating_keyboard();
    shell_state.keyboard_place = place;
    check_menu_item(COMMAND_KEYBOARD_DOCKED, place == KeyboardPlace::docked);
    check_menu_item(COMMAND_KEYBOARD_FLOATING, place == KeyboardPlace::floating);
    release_everything();
    picture.drawing.reset();
    place_keyboard();
    if (docking) docked_height_changed();
    draw_screen_keyboard();
}

void toggle_screen_keyboard(KeyboardPlace place) {
    show_screen_keyboard(shell_state.keyboard_place == place ? KeyboardPlace::hidden : place);
}

void start_screen_keyboard() {
    if (is_shown()) place_keyboard();
}

void remember_floating_keyboard() {
    if (shell_state.keyboard_place != KeyboardPlace::floating) return;
    const Rectangle at = window().keyboard_rectangle();
    if (at == Rectangle{}) return;
    shell_state.floating_keyboard = {uint32_t(std::max(at.left, 0)), uint32_t(std::max(at.top, 0)),
                                     uint32_t(at.width())};
}

int docked_keyboard_height(int client_width) {
    if (shell_state.keyboard_place != KeyboardPlace::docked || g_bFullScreen) return 0;
    return std::min(height_for(client_width), HIGHEST);
}

void fit_screen_keyboard() {
    if (shell_state.keyboard_place != KeyboardPlace::docked) return;
    const Size before = platform().pane(PaneId::picture).size();
    place_keyboard();
    if (platform().pane(PaneId::picture).size() != before) window().invalidate();
}

bool screen_keyboard_wants(const Event& event) {
    return event.kind == Event::Kind::pointer && event.pointer.pane == PaneId::keyboard;
}

void screen_keyboard_take_event(const Event& event) {
    const Pointer& pointer = event.pointer;
    const bool left = pointer.touch || pointer.button == BUTTON_LEFT;
    if (!left || !is_shown()) return;
    const double scale = pane().scale();
    const ScreenKey* key = key_at(pixels(), pointer.x * scale, pointer.y * scale);
    switch (pointer.act) {
    case Pointer::Act::press:
    case Pointer::Act::double_click:
        if (key) press(*key, pointer.finger);
        break;
    case Pointer::Act::release: let_go(pointer.finger, key); break;
    case Pointer::Act::move:
    case Pointer::Act::wheel: break;
    }
}

void press_screen_keys(machine_input& input) {
    for (const Press& press : held.presses) {
        const ScreenKey& key = *press.key;
        if (key.is_in_matrix()) input.direct[key.row] |= uint8_t(1U << key.column);
    }
    for (size_t column = 0; column < held.latches.size(); ++column) {
        if (held.latches[column] != Latch::off) input.direct[ROW_SHIFT] |= uint8_t(1U << column);
    }
}

bool screen_keys_are_held() { return !held.presses.empty(); }

void screen_keys_frame_ran() {
    for (Press& press : held.presses) press.frames -= press.frames > 0;
    const auto ended = [](const Press& press) { return press.let_go && press.frames == 0; };
    if (std::erase_if(held.presses, ended)) end_latches();
}

void relabel_screen_keyboard() { picture.labels.clear(); }

void update_screen_keyboard() { draw(false); }

void draw_screen_keyboard() { draw(true); }
