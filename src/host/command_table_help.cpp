#include "host/command_table_help.h"

#include "host/commands.h"
#include "host/dialogs/dialogs.h"
#include "host/examples.h"
#include "host/menu.h"
#include "host/recent.h"
#include "host/screen_keyboard.h"
#include "host/shell_state.h"
#include "host/welcome.h"

#include <utility>
#include <vector>

namespace {

template <size_t N>
CommandRow example_row() {
    return {.id = COMMAND_EXAMPLE + int(N),
            .label = examples[N].label,
            .tip = examples[N].tip,
            .run = [] { start_example(examples[N]); }};
}

template <size_t N>
CommandRow recent_row() {
    return {.id = COMMAND_RECENT + int(N), .label = "-", .tip = "Opens the file again.", .run = [] {
                open_recent_file(int(N));
            }};
}

template <size_t... N>
void add_examples(std::vector<CommandRow>& rows, std::index_sequence<N...> /*all*/) {
    (rows.push_back(example_row<N>()), ...);
}

template <size_t... N>
void add_recent(std::vector<CommandRow>& rows, std::index_sequence<N...> /*all*/) {
    (rows.push_back(recent_row<N>()), ...);
}

void show_keys() {
    if (shell_state.keyboard_place == KeyboardPlace::hidden) {
        show_screen_keyboard(KeyboardPlace::docked);
    }
    ui_open_manual("keys.html");
}

std::vector<CommandRow> make_rows() {
    std::vector<CommandRow> rows = {
        {.id = COMMAND_MONITOR_F12,
         .label = "&Monitor with F12 only",
         .tip = "Esc does not open the monitor; F12 opens and closes it.",
         .flag = &shell_state.monitor_f12,
         .run = monitor_key_switched,
         .setting = {.name = "MonitorF12",
                     .place = NumberAccess{[] { return uint32_t(shell_state.monitor_f12); },
                                           [](uint32_t on) {
                                               shell_state.monitor_f12 = on != 0;
                                               monitor_key_switched();
                                           }},
                     .initial = 0,
                     .read = StartStep::engine}},
        {.id = COMMAND_WELCOME,
         .label = "&Welcome",
         .tip = "Examples to start, and how to begin.",
         .run = ui_welcome,
         .setting = {.name = "WelcomeShown",
                     .place = &shell_state.welcome_shown,
                     .initial = 0,
                     .read = StartStep::engine}},
        {.id = COMMAND_MANUAL,
         .label = "Man&ual",
         .tip = "Opens the manual in the browser.",
         .run = [] { ui_open_manual("manual.html"); }},
        {.id = COMMAND_KEYS,
         .label = "&Keys",
         .tip = "Shows which key of yours is which, and in the browser what it does.",
         .run = show_keys},
        {.id = COMMAND_CLEAR_RECENT,
         .label = "&Clear list",
         .tip = "Forgets which files were opened.",
         .run = clear_recent_files},
    };
    add_examples(rows, std::make_index_sequence<examples.size()>());
    add_recent(rows, std::make_index_sequence<RECENT_FILES>());
    return rows;
}

} // namespace

std::span<const CommandRow> help_command_rows() {
    static const std::vector<CommandRow> rows = make_rows();
    return rows;
}
