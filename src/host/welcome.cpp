#include "host/welcome.h"

#include "core/pacing/pacing.h"
#include "host/autostart.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "host/examples.h"
#include "host/loaded_program.h"
#include "host/menu.h"
#include "host/messages.h"
#include "host/resume.h"
#include "host/settings/prefs.h"
#include "host/shell_state.h"
#include "platform/platform.h"
#include "sound/output/sound_ring.h"
#include "wall/machine_host.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace {

enum WelcomeControl : int {
    WELCOME_TYPE_BASIC = 1,
    WELCOME_OPEN,
    WELCOME_KEYS,
    WELCOME_SYMBOLIC,
    WELCOME_POSITIONAL,
    WELCOME_EXAMPLE = 100 ///< + place in the list
};

constexpr int FRAMES_BEFORE = 10; ///< a fifth of a second
constexpr size_t COLUMNS = 5;
struct {
    std::unique_ptr<Form> form;
    int frames_to_come = 0; ///< until it is shown; 0 when it is not expected
    /// The recommended answer is marked and counts as soon as the user goes on in the form. Who
    /// closes it has not answered.
    bool proposes = false;
} welcome;

/// The host shows smaller ones where the screen is too narrow.
Size picture_size() {
    constexpr Size usual = {160, 120}, large = {192, 144};
    constexpr int large_screen = 1300; ///< lines
    return platform().window().screen_size().height < large_screen ? usual : large;
}

FormControl example_control(size_t n, const Size& size) {
    const Example& example = examples[n];
    std::string title = example.label;
    std::erase(title, '&');
    return {.kind = ControlKind::picture_button,
            .id = WELCOME_EXAMPLE + int(n),
            .text = title,
            .tip = example.tip,
            .picture = {.file = example_picture(example)},
            .picture_area = size};
}

FormControl key_question() {
    using enum ControlKind;
    return {
        .kind = column,
        .children = {
            {.kind = label, .text = "How should your keys work?"},
            {.kind = radio, .id = WELCOME_SYMBOLIC, .text = "&Type what my keys say (recommended)"},
            {.kind = radio,
             .id = WELCOME_POSITIONAL,
             .text = "&Positions as on the machine (for games)"}}};
}

FormControl buttons_below() {
    using enum ControlKind;
    return {
        .kind = buttons,
        .children = {{.kind = button, .id = WELCOME_KEYS, .text = "&Which key is which"},
                     {.kind = button, .id = WELCOME_OPEN, .text = "&Open a file..."},
                     {.kind = default_button, .id = WELCOME_TYPE_BASIC, .text = "Type &BASIC"}}};
}

FormDescription welcome_form() {
    using enum ControlKind;
    const Size size = picture_size();
    FormControl pictures = {.kind = grid};
    for (size_t n = 0; n < examples.size(); ++n) {
        if (n % COLUMNS == 0) pictures.children.push_back({.kind = row});
        pictures.children.back().children.push_back(example_control(n, size));
    }
    return {
        "Welcome",
        {{.kind = heading, .text = "Welcome to the Colour Genie"},
         {.kind = note,
          .text = "A home computer of 1982, switched on and ready. Start an example, or write a "
                  "program."},
         {.kind = scroll, .children = {pictures}},
         key_question(),
         buttons_below()}};
}

/// In the shell's next turn, like a command of the menu.
void command(int id) { platform().events().post({Event::Kind::command, id, 0, {}}); }

/// In the positional mapping the machine's quotation mark is on another key than it says.
void tell_how_to_begin() {
    const bool symbolic = welcome.form->value(WELCOME_SYMBOLIC) != 0;
    StatusBarText("Type PRINT \"HELLO\" and press Enter%s", symbolic ? "" : "; \" is Shift+2");
}

/// A game cannot be typed over.
void begin_basic() {
    const std::string& running = loaded_program().name;
    if (running.empty()) return tell_how_to_begin();
    ask("Type BASIC", running + " is in the machine. Restart it, to type a program of your own?",
        {"&Restart", "&Go on"}, [](int answer) {
            if (answer == 0) command(COMMAND_RESTART);
            tell_how_to_begin();
        });
}

/// The form stays, and has the keyboard again, when no file is chosen.
void open_file() {
    const auto act = [] {
        sound_pause();
        ui_select_file(DIALOG_AUTOSTART, [](const std::optional<std::string>& path) {
            if (!path) return welcome.form->show();
            welcome.form->close();
            autostart_file(*path);
        });
    };
    obey_user(act, [] {
        if (g_bActive) sound_resume();
        reset_timer();
    });
}

void choose_keys(bool symbolic) {
    if (symbolic != g_KeyMapping) command(COMMAND_SYMBOLIC_KEYS);
}

void user_acts(Form& form, const FormEvent& event) {
    if (event.control == FORM_CLOSED) return;
    const bool answers = event.control == WELCOME_SYMBOLIC || event.control == WELCOME_POSITIONAL;
    if (std::exchange(welcome.proposes, false) || answers) {
        choose_keys(form.value(WELCOME_SYMBOLIC) != 0);
    }
    if (answers) return;
    switch (event.control) {
    case WELCOME_TYPE_BASIC: return begin_basic();
    case WELCOME_OPEN: return open_file();
    case WELCOME_KEYS: form.close(); return command(COMMAND_KEYS);
    default: break;
    }
    form.close();
    command(COMMAND_EXAMPLE + event.control - WELCOME_EXAMPLE);
}

} // namespace

void ui_welcome() {
    const bool first = !shell_state.welcome_shown;
    shell_state.welcome_shown = true;
    const uint32_t shown = 1;
    SetValueDword("WelcomeShown", &shown); // at once, should the program be killed
    if (!welcome.form) welcome.form = platform().forms().create(welcome_form(), user_acts);
    for (size_t n = 0; n < examples.size(); ++n) {
        welcome.form->set_enabled(WELCOME_EXAMPLE + int(n), !example_path(examples[n]).empty());
    }
    welcome_key_mapping_changed();
    welcome.proposes = first;
    if (first) welcome.form->set_value(WELCOME_SYMBOLIC, 1);
    welcome.form->show();
}

void expect_welcome() {
    const bool wanted = shell_state.start.welcomes && !shell_state.welcome_shown &&
                        !resume_has_state() && shell_state.start.line == CommandLine();
    welcome.frames_to_come = wanted ? FRAMES_BEFORE : 0;
}

void welcome_frame_shown() {
    if (welcome.frames_to_come && --welcome.frames_to_come == 0) ui_welcome();
}

void welcome_key_mapping_changed() {
    if (!welcome.form) return;
    welcome.proposes = false;
    welcome.form->set_value(g_KeyMapping ? WELCOME_SYMBOLIC : WELCOME_POSITIONAL, 1);
}

void end_welcome() { welcome = {}; }
