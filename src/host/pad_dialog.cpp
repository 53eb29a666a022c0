#include "host/pad_dialog.h"

#include "host/dialogs/ask.h"
#include "host/loaded_program.h"
#include "host/pad_keys.h"
#include "host/previews.h"
#include "platform/keyboard.h"
#include "platform/platform.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int TICK = 30; ///< milliseconds between two looks at the pads
constexpr size_t LONGEST_NAME = 40;

enum PadControl : int {
    PADS_OK = 1,
    PADS_CANCEL = 2,
    PADS_PROGRAM,
    PADS_ALL,
    PADS_PAD,
    PADS_INPUT,
    PADS_KEY_LABEL,
    PADS_KEY,
    PADS_PRESS,
    PADS_RESET,
    PADS_HINT
};

// By PadInput.
constexpr const char* INPUT_NAMES[PAD_INPUTS] = {"Up",
                                                 "Down",
                                                 "Left",
                                                 "Right",
                                                 "A",
                                                 "B",
                                                 "Left shoulder",
                                                 "X",
                                                 "Y",
                                                 "Right shoulder",
                                                 "Left trigger",
                                                 "Right trigger",
                                                 "Back",
                                                 "Start",
                                                 "Left stick",
                                                 "Right stick"};
constexpr const char* PLAYSTATION_NAMES[PAD_INPUTS] = {
    "Up",       "Down", "Left", "Right", "Cross",  "Circle",  "L1", "Square",
    "Triangle", "R1",   "L2",   "R2",    "Select", "Options", "L3", "R3"};
constexpr const char* USUAL[PADS][PAD_INPUTS] = {
    {"joystick 1 up", "joystick 1 down", "joystick 1 left", "joystick 1 right", "first button",
     "second button", "back in time"},
    {"joystick 2 up", "joystick 2 down", "joystick 2 left", "joystick 2 right", nullptr, nullptr,
     "back in time"}};

std::string input_name(int pad, int input) {
    const PadKind kind = platform().joysticks().kind(pad);
    if (kind == PadKind::numbered && input >= PAD_A) {
        return "Button " + std::to_string(input - PAD_A + 1);
    }
    return kind == PadKind::playstation ? PLAYSTATION_NAMES[input] : INPUT_NAMES[input];
}

std::string usual_text(int pad, int input) {
    const char* usual = USUAL[pad][input];
    return usual ? usual : "nothing";
}

std::string target_text(int pad, int input, PadTarget target) {
    if (target >= PAD_KEYPAD) return "keypad " + std::to_string(target - PAD_KEYPAD);
    const char* key = pad_target_name(target);
    return key ? std::string("key ") + key : usual_text(pad, input);
}

/// What the list of keys offers, by its items.
const std::vector<PadTarget>& offered() {
    static const std::vector<PadTarget> targets = [] {
        std::vector<PadTarget> all = {PAD_DOES_USUAL};
        for (PadTarget target = 1; target < PAD_TARGETS; ++target) {
            if (pad_target_name(target)) all.push_back(target);
        }
        return all;
    }();
    return targets;
}

std::string pad_text(int pad) {
    std::string name = platform().joysticks().name(pad);
    if (name.size() > LONGEST_NAME) name = name.substr(0, LONGEST_NAME) + "…";
    const bool there = platform().joysticks().plugged(pad);
    return std::to_string(pad + 1) + (there ? "  " + name : "  not connected");
}

/// What the dialog knows while it is open.
struct Dialog {
    PadKeys all = {};
    std::optional<PadKeys> own; ///< of the loaded program
    bool of_program = false;    ///< which of them is shown
    bool waits = false;         ///< for a key
    int pad = 0;
    int input = 0;
    std::array<uint32_t, PADS> held = {};
    std::array<std::string, PADS> pads;

    const PadKeys& keys() const { return of_program && own ? *own : all; }
    PadKeys& keys_to_change() {
        if (!of_program) return all;
        if (!own) own = all;
        return *own;
    }
    PadTarget target() const { return keys()[size_t(pad)][size_t(input)]; }
};

/// Cut to fit the dialog, and without an access key.
std::string file_text(const std::string& name) {
    std::string text;
    for (const char c : ending_of(name, LONGEST_NAME)) text.append(c == '&' ? 2 : 1, c);
    return text;
}

FormDescription form_of(const LoadedProgram& program) {
    using enum ControlKind;
    const std::string own = program.hash ? file_text(program.name) : "the loaded program";
    return {
        "Game pad keys",
        {{.kind = row,
          .children =
              {{.kind = list_box, .id = PADS_INPUT, .name = "Buttons and directions"},
               {.kind = column,
                .children =
                    {{.kind = label, .text = "Pa&d:"},
                     {.kind = list, .id = PADS_PAD},
                     {.kind = group,
                      .text = "Keys for",
                      .children = {{.kind = radio, .id = PADS_ALL, .text = "&All programs"},
                                   {.kind = radio, .id = PADS_PROGRAM, .text = "&Only " + own}}},
                     {.kind = label, .id = PADS_KEY_LABEL},
                     {.kind = list, .id = PADS_KEY},
                     {.kind = button, .id = PADS_PRESS, .text = "Press a &key..."},
                     {.kind = button, .id = PADS_RESET, .text = "&Reset all"}}}}},
         {.kind = note, .id = PADS_HINT},
         {.kind = buttons,
          .children = {{.kind = default_button, .id = PADS_OK, .text = "OK"},
                       {.kind = cancel_button, .id = PADS_CANCEL, .text = "Cancel"}}}},
        TICK};
}

// ---- what is seen ------------------------------------------------------------------------------

/// Other inputs that press the same key.
std::string conflict(const Dialog& dialog) {
    const PadTarget target = dialog.target();
    if (target == PAD_DOES_USUAL) return {};
    for (int pad = 0; pad < PADS; ++pad) {
        for (int input = 0; input < PAD_INPUTS; ++input) {
            const bool same = pad == dialog.pad && input == dialog.input;
            if (same || dialog.keys()[size_t(pad)][size_t(input)] != target) continue;
            const std::string where = pad == dialog.pad ? "" : " of pad " + std::to_string(pad + 1);
            return input_name(pad, input) + where + " is " + target_text(pad, input, target) +
                   " as well.";
        }
    }
    return {};
}

bool is_any_pad_there() {
    Joysticks& host = platform().joysticks();
    return host.plugged(0) || host.plugged(1);
}

/// In two lines, so that the dialog keeps its size.
void show_hint(Form& form, const Dialog& dialog, const std::string& problem = {}) {
    const std::string name = input_name(dialog.pad, dialog.input);
    std::string what = "Press a button of the pad or choose a line, and then a key.";
    std::string more = conflict(dialog);
    if (dialog.waits) {
        what = name + ": press a key now.";
        more = problem + "Esc leaves it as it is, Del takes its key away.";
    } else if (!is_any_pad_there()) {
        what = "No game pad is connected; the keys count as soon as there is one.";
    }
    form.set_text(PADS_HINT, what + "\n" + more);
}

void show_input(Form& form, const Dialog& dialog) {
    std::vector<std::string> items;
    for (const PadTarget target : offered()) {
        items.push_back(target_text(dialog.pad, dialog.input, target));
    }
    form.set_items(PADS_KEY, items);
    form.set_value(PADS_KEY,
                   int(std::ranges::find(offered(), dialog.target()) - offered().begin()));
    form.set_value(PADS_INPUT, dialog.input);
    form.set_text(PADS_KEY_LABEL, input_name(dialog.pad, dialog.input) + " &is:");
    show_hint(form, dialog);
}

void show_keys(Form& form, const Dialog& dialog) {
    std::vector<std::string> lines;
    for (int input = 0; input < PAD_INPUTS; ++input) {
        const PadTarget target = dialog.keys()[size_t(dialog.pad)][size_t(input)];
        lines.push_back(input_name(dialog.pad, input) + "\t" +
                        target_text(dialog.pad, input, target));
    }
    form.set_items(PADS_INPUT, lines);
    show_input(form, dialog);
}

void show_pads(Form& form, Dialog& dialog) {
    for (int pad = 0; pad < PADS; ++pad) dialog.pads[size_t(pad)] = pad_text(pad);
    form.set_items(PADS_PAD, {dialog.pads.begin(), dialog.pads.end()});
    form.set_value(PADS_PAD, dialog.pad);
    show_keys(form, dialog);
}

// ---- what the user does ------------------------------------------------------------------------

void set_target(Form& form, Dialog& dialog, PadTarget target) {
    dialog.keys_to_change()[size_t(dialog.pad)][size_t(dialog.input)] = target;
    show_keys(form, dialog);
}

void wait_for_key(Form& form, Dialog& dialog) {
    dialog.waits = true;
    show_hint(form, dialog);
    form.await_key();
}

void key_pressed(Form& form, Dialog& dialog, uint8_t key) {
    dialog.waits = false;
    if (key == KEY_DELETE) return set_target(form, dialog, PAD_DOES_USUAL);
    if (key == KEY_NONE || key == KEY_ESCAPE) return show_hint(form, dialog);
    if (const auto target = pad_target_of(key)) return set_target(form, dialog, *target);
    wait_for_key(form, dialog);
    show_hint(form, dialog, "The machine has no such key. ");
}

void look_at_pads(Form& form, Dialog& dialog) {
    for (int pad = 0; pad < PADS; ++pad) {
        if (dialog.pads[size_t(pad)] == pad_text(pad)) continue;
        show_pads(form, dialog);
        break;
    }
    for (int pad = 0; pad < PADS; ++pad) {
        const uint32_t held = held_pad_inputs(pad);
        const uint32_t pressed = held & ~std::exchange(dialog.held[size_t(pad)], held);
        if (!pressed) continue;
        dialog.input = std::countr_zero(pressed);
        if (dialog.pad != pad) {
            dialog.pad = pad;
            show_pads(form, dialog);
        }
        show_input(form, dialog);
        wait_for_key(form, dialog);
    }
}

void reset(Form& form, Dialog& dialog) {
    if (dialog.of_program) {
        dialog.own.reset();
    } else {
        dialog.all = {};
    }
    show_keys(form, dialog);
}

void user_acts(Form& form, Dialog& dialog, const FormEvent& event) {
    if (event.kind == FormEvent::Kind::ticked) return look_at_pads(form, dialog);
    if (event.kind == FormEvent::Kind::key) return key_pressed(form, dialog, event.key);
    switch (event.control) {
    case PADS_PROGRAM:
    case PADS_ALL:
        dialog.of_program = event.control == PADS_PROGRAM;
        return show_keys(form, dialog);
    case PADS_PAD: dialog.pad = std::max(form.value(PADS_PAD), 0); return show_keys(form, dialog);
    case PADS_INPUT:
        dialog.input = std::max(form.value(PADS_INPUT), 0);
        return show_input(form, dialog);
    case PADS_KEY:
        return set_target(form, dialog, offered()[size_t(std::max(form.value(PADS_KEY), 0))]);
    case PADS_PRESS: return wait_for_key(form, dialog);
    case PADS_RESET: return reset(form, dialog);
    default: return;
    }
}

} // namespace

void ui_pad_keys() {
    const LoadedProgram& program = loaded_program();
    const auto dialog = std::make_shared<Dialog>();
    dialog->all = stored_pad_keys(ALL_PROGRAMS).value_or(PadKeys());
    if (program.hash) dialog->own = stored_pad_keys(program.hash);
    const Dialog before = *dialog;
    dialog->of_program = program.hash != 0;
    for (int pad = 0; pad < PADS; ++pad) dialog->held[size_t(pad)] = held_pad_inputs(pad);
    const std::shared_ptr<Form> form =
        platform().forms().create(form_of(program), [dialog](Form& shown, const FormEvent& event) {
            user_acts(shown, *dialog, event);
        });
    form->set_value(dialog->of_program ? PADS_PROGRAM : PADS_ALL, 1);
    form->set_enabled(PADS_PROGRAM, dialog->of_program);
    show_pads(*form, *dialog);
    run_form(form, [form, dialog, before, hash = program.hash](int closing_id) {
        if (closing_id != PADS_OK) return;
        if (dialog->all != before.all) store_pad_keys(ALL_PROGRAMS, dialog->all);
        if (dialog->own != before.own) store_pad_keys(hash, dialog->own);
    });
}
