#include "core/frame_driver.h"
#include "core/pacing/pacing.h"
#include "files/file_identity.h"
#include "host/commands.h"
#include "host/dialogs/dialogs.h"
#include "host/downloads.h"
#include "host/menu.h"
#include "host/replays.h"
#include "host/rewind.h"
#include "host/rom_files.h"
#include "host/shell.h"
#include "host/shell_state.h"
#include "host/speed_commands.h"
#include "monitor/monitor.h"
#include "platform/keyboard.h"
#include "wall/machine_host.h"
#include "z80/disassembler.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>

namespace {

constexpr int LONGEST_RUN = 10001; ///< instructions of one F7
constexpr const char* DISASSEMBLY = "eaca_disass.txt";
constexpr const char* MEMORY_DUMP = "memdump.bin";

void step() {
    rewind_stay_here();
    if (run_with_answers(machine_step) == MACHINE_FRAME) run_timed_events();
}

void single_step() {
    step();
    monitor_select_page(MONITOR_DISASSEMBLY);
    debug();
}

void run_until_back() {
    const uint16_t start = z80_state.pc;
    for (int count = 0; count < LONGEST_RUN; ++count) {
        step();
        step_dir(1);
        if (z80_state.pc == start) return;
    }
}

void toggle_breakpoint() {
    z80_cpu_set_breakpoint(monitor_get_current_pc());
    monitor_update();
}

void ask_for_breakpoint() { ui_machine_set_breakpoint(monitor_update); }

void dump_disassembly() {
    if (!fulldisasm(DISASSEMBLY)) return report(unwritable(DISASSEMBLY));
    StatusBarText("Disassembly dump to: %s", canonical_path(".").c_str());
    file_is_complete(DISASSEMBLY);
}

void dump_memory() { mem_dump() ? file_is_complete(MEMORY_DUMP) : report(unwritable(MEMORY_DUMP)); }

void pause_or_next_frame() {
    if (g_bPaused) return do_some_frames(1);
    handle_command(COMMAND_PAUSE);
}

void toggle_monitor() { handle_command(COMMAND_MONITOR); }
void leave_replay_or_open_monitor() {
    if (replay_plays()) return end_replay();
    if (!shell_state.monitor_f12) toggle_monitor();
}
void toggle_monitor_with_f12() {
    if (shell_state.monitor_f12) toggle_monitor();
}
void save_screenshot() { handle_command(COMMAND_SCREENSHOT); }

struct KeyEntry {
    uint8_t key;
    void (*in_monitor)();
    void (*elsewhere)(); ///< null: the key is the machine's
};

constexpr auto keys = std::to_array<KeyEntry>({
    {KEY_RETURN, single_step, nullptr},
    {KEY_ESCAPE, toggle_monitor, leave_replay_or_open_monitor},
    {KEY_PAGE_UP, [] { step_dir_page(-1); }, nullptr},
    {KEY_PAGE_DOWN, [] { step_dir_page(1); }, pause_or_next_frame},
    {KEY_UP, [] { step_dir(-1); }, nullptr},
    {KEY_DOWN, [] { step_dir(1); }, nullptr},
    {KEY_F1, [] { monitor_select_page(MONITOR_DISASSEMBLY); }, nullptr},
    {KEY_F2, [] { monitor_select_page(MONITOR_MEMORY); }, nullptr},
    {KEY_F3, ask_for_breakpoint, nullptr},
    {KEY_F4, toggle_breakpoint, [] { handle_command(COMMAND_VIDEO_PAGE); }},
    {KEY_F6, save_screenshot, save_screenshot},
    {KEY_F7, run_until_back, nullptr}, // elsewhere pacing looks whether it is held
    {KEY_F8, dump_memory, step_slow_motion},
    {KEY_F9, dump_disassembly, dump_disassembly},
    {KEY_F12, toggle_monitor_with_f12, toggle_monitor_with_f12},
});

/// Alt with a key is the window system's and the menu's; with Control it is AltGr.
bool belongs_to_menus(uint8_t modifiers) {
    return (modifiers & MODIFIER_ALT) && !(modifiers & MODIFIER_CONTROL);
}

} // namespace

void handle_key(const Event& event) {
    if (belongs_to_menus(event.modifiers) || rewind_take_event(event)) return;
    const auto* entry =
        std::ranges::find_if(keys, [&](const KeyEntry& row) { return row.key == event.value; });
    if (entry == keys.end()) return;
    const auto act = g_bDebug ? entry->in_monitor : entry->elsewhere;
    if (act) act();
}
