#include "cgenie/input.h"
#include "cgenie/typing/typing.h"
#include "core/machine.h"
#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "debugger/commands.h"
#include "debugger/debugger.h"
#include "debugger/expression.h"
#include "debugger/symbol_files.h"
#include "debugger/symbols.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "host/autostart.h"
#include "host/commands.h"
#include "host/disks.h"
#include "host/held_keys.h"
#include "host/loaded_program.h"
#include "host/screen_text.h"
#include "host/script_run.h"
#include "host/shell_state.h"
#include "host/state_files.h"
#include "media/files/typed_text.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace {

// ---- text --------------------------------------------------------------------------------------

/// The end of a line as typing has it: it skips the byte behind a carriage return.
constexpr const char* TYPED_RETURN = "\r\n";

struct TypedKey {
    std::string_view name;
    char code;
};
/// What the firmware makes of keys that are no characters.
constexpr TypedKey typed_keys[] = {
    {"BREAK", 0x01}, {"LEFT", 0x08},     {"RIGHT", 0x09},    {"DOWN", 0x0A},     {"ESC", 0x1B},
    {"CLEAR", 0x1F}, {"F1", char(0xF1)}, {"F2", char(0xF2)}, {"F3", char(0xF3)}, {"F4", char(0xF4)},
};

/// "{BREAK}" and so on become what the keys give.
std::string with_keys(std::string text) {
    for (const TypedKey& key : typed_keys) {
        const std::string name = "{" + std::string(key.name) + "}";
        for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at)) {
            text.replace(at, name.size(), 1, key.code);
        }
    }
    for (size_t at = text.find('\r'); at != std::string::npos; at = text.find('\r', at + 2)) {
        text.replace(at, 1, TYPED_RETURN);
    }
    return text;
}

bool is_typed() { return typing.position >= typing_text.size(); }

/// Until all is taken and, as long as that may be awaited, the machine looks for the next key: then
/// what was typed has been obeyed. A program that never looks is not waited for.
void wait_until_typed(ScriptRun& run, const ScriptSpan& limit) {
    constexpr ScriptSpan TIME_TO_OBEY = {25, ScriptSpan::Unit::frames};
    if (run.run_until(is_typed, limit)) {
        run.run_until([] { return typing_text.empty(); }, TIME_TO_OBEY);
    } else if (!run.has_failed() && !debugger_stands()) {
        run.fail("the machine has not taken all that is typed");
        run.show_screen_of_failure();
    }
}

bool screen_shows(const std::string& text) {
    return screen_text("\n").find(text) != std::string::npos;
}

std::string trimmed(std::string lines) {
    std::string rows;
    while (!lines.empty()) {
        const size_t end = std::min(lines.find('\n'), lines.size());
        std::string row = lines.substr(0, end);
        row.erase(row.find_last_not_of(" \r") + 1);
        rows += row + "\n";
        lines.erase(0, end + 1);
    }
    const size_t last = rows.find_last_not_of('\n');
    rows.erase(last == std::string::npos ? 0 : last + 2);
    return rows;
}

// ---- running -----------------------------------------------------------------------------------

void do_run(ScriptRun* run, CommandWords& words) {
    const ScriptSpan span = take_span(words);
    if (words.acts()) run->run_for(span);
}

void run_until_or_fail(ScriptRun& run, const std::string& what, const ScriptSpan& limit,
                       const std::function<bool()>& done) {
    if (run.run_until(done, limit) || run.has_failed()) return;
    run.fail(what + " has not come");
    run.show_screen_of_failure();
}

void do_until(ScriptRun* run, CommandWords& words) {
    if (words.take_if("text")) {
        const std::string text = words.text("the text");
        const ScriptSpan limit = take_limit(words);
        if (words.acts())
            run_until_or_fail(*run, '"' + text + '"', limit, [&] { return screen_shows(text); });
    } else if (words.take_if("at")) {
        const uint16_t address = words.address();
        const ScriptSpan limit = take_limit(words);
        if (!words.acts()) return;
        if (!debugger_stands()) debugger_stop();
        debugger_run_to(address);
        run->wait_for_stop(limit);
    } else if (words.take_if("stop")) {
        const ScriptSpan limit = take_limit(words);
        if (!words.acts()) return;
        if (debugger_stands()) debugger_go();
        run->wait_for_stop(limit);
    } else {
        const std::string text = words.expression({"within"});
        const ScriptSpan limit = take_limit(words);
        if (!words.acts()) return;
        std::string problem;
        const auto condition = Expression::parse(text, &debugger_symbols(), problem);
        run_until_or_fail(*run, text, limit, [&] { return condition->holds(debugger_context()); });
    }
}

void do_boot(ScriptRun* run, CommandWords& words) {
    const ScriptSpan limit = take_limit(words);
    if (!words.acts()) return;
    if (!machine_run_now.prompt_reached) type_into_machine(TYPED_RETURN);
    run_until_or_fail(*run, "the prompt of BASIC", limit,
                      [] { return machine_run_now.prompt_reached && is_typed(); });
    // There is a program before its first prompt is shown.
    if (!run->has_failed()) run->run_for({1, ScriptSpan::Unit::seconds});
}

void do_reset(ScriptRun* /*run*/, CommandWords& words) {
    if (words.acts()) machine_apply(event_kind::reset);
}

void do_restart(ScriptRun* /*run*/, CommandWords& words) {
    if (!words.acts()) return;
    machine_apply(event_kind::restart);
    program_after_restart();
}

// ---- keys --------------------------------------------------------------------------------------

void do_type(ScriptRun* run, CommandWords& words) {
    const std::string text = with_keys(words.text("the text"));
    const ScriptSpan limit = take_limit(words);
    if (!words.acts()) return;
    type_into_machine(text);
    wait_until_typed(*run, limit);
}

/// Takes "for N frames".
std::optional<ScriptSpan> take_duration(CommandWords& words) {
    if (!words.take_if("for")) return {};
    return take_span(words);
}

unsigned take_machine_key(CommandWords& words) {
    const std::string name = words.text("the name of a key");
    const auto key = held_key_named(name);
    if (!key) words.fail(name + ": the machine has no such key");
    return key.value_or(0);
}

void do_key(ScriptRun* run, CommandWords& words) {
    // The firmware takes a key for pressed when it has seen it twice.
    constexpr ScriptSpan USUAL_PRESS = {4, ScriptSpan::Unit::frames};
    enum { DOWN, UP, PRESS };
    const int act = words.choice({"down", "up", "press"});
    std::vector<unsigned> keys = {take_machine_key(words)};
    while (!words.empty() && words.peek() != "for") keys.push_back(take_machine_key(words));
    const auto duration = act == PRESS ? take_duration(words) : std::nullopt;
    if (!words.acts()) return;
    for (const unsigned key : keys) hold_key(key, act != UP);
    if (act != PRESS) return;
    const bool goes_on = run->run_for(duration.value_or(USUAL_PRESS));
    for (const unsigned key : keys) hold_key(key, false);
    if (goes_on) run->run_for(USUAL_PRESS);
}

void do_stick(ScriptRun* run, CommandWords& words) {
    const auto number = unsigned(words.number("the number of the stick", 1, 2) - 1);
    machine_stick stick;
    while (!words.empty() && words.peek() != "for") {
        if (words.take_if("x")) {
            stick.x = uint16_t(words.number("the position", 0, UINT16_MAX));
        } else if (words.take_if("y")) {
            stick.y = uint16_t(words.number("the position", 0, UINT16_MAX));
        } else {
            switch (words.choice({"left", "right", "up", "down", "fire", "fire2", "centre"})) {
            case 0: stick.x = 0; break;
            case 1: stick.x = UINT16_MAX; break;
            case 2: stick.y = UINT16_MAX; break;
            case 3: stick.y = 0; break;
            case 4: stick.first_button = 1; break;
            case 5: stick.second_button = 1; break;
            default: break;
            }
        }
        if (!words.problem().empty()) return;
    }
    const auto duration = take_duration(words);
    if (!words.acts()) return;
    hold_stick(number, stick);
    if (!duration) return;
    run->run_for(*duration);
    hold_stick(number, machine_stick{});
}

// ---- files -------------------------------------------------------------------------------------

/// Symbols that lie beside a program are loaded with it.
void load_symbols_beside(const std::string& path) {
    const std::string symbols = symbol_file_beside(path);
    if (symbols.empty()) return;
    const std::string refused = load_symbol_file(symbols, debugger_symbols());
    if (!refused.empty()) std::printf("%s\n", refused.c_str());
}

void load_program(ScriptRun& run, const std::string& path, bool starts, const ScriptSpan& limit) {
    const std::string problem = start_problem(path);
    if (!problem.empty()) return run.fail(problem);
    load_symbols_beside(path);
    g_bAutoStart = starts;
    autostart_file(path);
    g_bAutoStart = true;
    wait_until_typed(run, limit);
}

void do_start(ScriptRun* run, CommandWords& words) {
    const std::string path = words.text("FILE");
    const ScriptSpan limit = take_limit(words);
    if (words.acts()) load_program(*run, path, true, limit);
}

void do_load(ScriptRun* run, CommandWords& words) {
    const std::string path = words.text("FILE");
    const ScriptSpan limit = take_limit(words);
    if (words.acts()) load_program(*run, path, false, limit);
}

void do_load_bytes(ScriptRun* run, CommandWords& words) {
    const std::string path = words.text("FILE");
    const uint16_t address = words.address();
    if (!words.acts()) return;
    const auto bytes = read_whole_file(path);
    constexpr size_t WHOLE_MEMORY = 0x10000;
    if (!bytes || bytes->size() > WHOLE_MEMORY) return run->fail(path + ": cannot be read");
    machine_apply(event_kind::poke, address, 0, shared_bytes(*bytes));
    load_symbols_beside(path);
}

unsigned take_drive(CommandWords& words) {
    return unsigned(words.number("the number of the drive", 0, DISK_DRIVES - 1));
}

/// Calls `act` with what is to get the result, and waits for that.
void with_disk(ScriptRun& run, const std::string& failure,
               const std::function<void(const DiskDone&)>& act) {
    std::optional<bool> result;
    act([&result](bool done) { result = done; });
    run.run_until([&result] { return result.has_value(); }, {1, ScriptSpan::Unit::seconds});
    if (!result.value_or(false)) run.fail(failure);
}

void put_disk(ScriptRun& run, unsigned drive, const std::string& path) {
    const std::string problem = file_problem(path);
    if (!problem.empty()) return run.fail(problem);
    with_disk(run, path + " is not in the drive",
              [&](const DiskDone& done) { main_disk_image_attach(drive, path, done); });
}

void take_disk(ScriptRun& run, unsigned drive) {
    with_disk(run, "the disk has been written to: save-disk writes its file",
              [&](const DiskDone& done) { main_disk_image_detach(drive, done); });
}

void do_disk(ScriptRun* run, CommandWords& words) {
    const unsigned drive = take_drive(words);
    const bool out = words.take_if("out");
    const std::string path = out ? std::string() : words.text("FILE");
    if (!words.acts()) return;
    out ? take_disk(*run, drive) : put_disk(*run, drive, path);
}

/// The disk is taken out with its changes, and put in again.
void do_save_disk(ScriptRun* run, CommandWords& words) {
    const unsigned drive = take_drive(words);
    if (!words.acts()) return;
    const std::string path = drive_files[drive].path;
    if (path.empty()) return run->fail("the drive has no disk");
    const bool usual = std::exchange(shell_state.start.save_changed_disks, true);
    take_disk(*run, drive);
    shell_state.start.save_changed_disks = usual;
    if (!run->has_failed()) put_disk(*run, drive, path);
}

void do_tape(ScriptRun* run, CommandWords& words) {
    const bool out = words.take_if("out");
    const std::string path = out ? std::string() : words.text("FILE");
    if (!words.acts()) return;
    if (out) return detach_cas();
    const std::string problem = file_problem(path);
    if (!problem.empty()) return run->fail(problem);
    attach_cas_of(path);
}

void do_wav(ScriptRun* /*run*/, CommandWords& words) {
    const bool off = words.take_if("off");
    const std::string path = off ? std::string() : words.text("FILE");
    if (!words.acts()) return;
    end_sound_recording();
    if (!off) start_sound_recording(path);
}

void do_save_state(ScriptRun* /*run*/, CommandWords& words) {
    const std::string path = words.text("FILE");
    if (!words.acts()) return;
    const bool whole = shell_state.start.line.whole_state;
    save_state_file(path, whole ? MediaInState::all : MediaInState::changed);
}

void do_load_state(ScriptRun* /*run*/, CommandWords& words) {
    const std::string path = words.text("FILE");
    if (words.acts()) load_state_file(path);
}

// ---- looking -----------------------------------------------------------------------------------

void do_screen(ScriptRun* /*run*/, CommandWords& words) {
    if (words.acts()) std::printf("%s", readable_screen().c_str());
}

bool is_picture(const std::string& path) {
    const std::string extension = lower_case_extension(path);
    return extension == "gif" || extension == "bmp";
}

void take_picture(const std::string& path) {
    show_paced_frame();
    update_screen(1);
    save_screenshot_as(path);
}

void do_screenshot(ScriptRun* /*run*/, CommandWords& words) {
    const std::string path = words.text("FILE");
    if (!is_picture(path)) words.fail(path + ": pictures are .gif or .bmp");
    if (words.acts()) take_picture(path);
}

/// "screen.gif" becomes "screen.actual.gif".
std::string actual_path(const std::string& path) {
    const size_t point = std::min(extension_point(path), path.size());
    return path.substr(0, point) + ".actual" + path.substr(point);
}

/// The screen as the file is to have it.
std::vector<uint8_t> screen_as(const std::string& path) {
    if (!is_picture(path)) {
        const std::string text = readable_screen();
        return {text.begin(), text.end()};
    }
    const std::string actual = actual_path(path);
    take_picture(actual);
    std::vector<uint8_t> bytes = read_whole_file(actual).value_or(std::vector<uint8_t>());
    remove_file(actual);
    return bytes;
}

void assert_screen(ScriptRun& run, const std::string& path) {
    auto wanted = read_whole_file(path);
    if (wanted && !is_picture(path)) {
        const std::string text = trimmed({wanted->begin(), wanted->end()});
        wanted = std::vector<uint8_t>(text.begin(), text.end());
    }
    const std::vector<uint8_t> screen = screen_as(path);
    if (run.has_failed() || (wanted && *wanted == screen)) return;
    const std::string actual = actual_path(path);
    const bool written = replace_whole_file(actual, screen);
    run.fail((wanted ? "the screen is not as in " + path : path + ": cannot be read") +
             (written ? "; what it shows is in " + actual : ""));
    run.show_screen_of_failure();
}

void assert_text(ScriptRun& run, const std::string& text, bool wanted) {
    if (screen_shows(text) == wanted) return;
    run.fail('"' + text + (wanted ? "\" is not on the screen" : "\" is on the screen"));
    run.show_screen_of_failure();
}

void do_assert(ScriptRun* run, CommandWords& words) {
    const bool no = words.take_if("no");
    if (words.take_if("text")) {
        const std::string text = words.text("the text");
        if (words.acts()) assert_text(*run, text, !no);
        return;
    }
    if (no) return words.fail("\"text\" is missing behind \"no\"");
    if (words.take_if("screen")) {
        const std::string path = words.text("FILE");
        if (words.acts()) assert_screen(*run, path);
        return;
    }
    const std::string text = words.expression();
    const std::string message = words.empty() ? std::string() : ": " + words.text("a message");
    if (!words.acts()) return;
    std::string problem;
    const auto expression = Expression::parse(text, &debugger_symbols(), problem);
    if (!expression->holds(debugger_context())) run->fail(text + " does not hold" + message);
}

// ---- the script --------------------------------------------------------------------------------

void do_echo(ScriptRun* /*run*/, CommandWords& words) {
    std::string line;
    while (!words.empty()) line += (line.empty() ? "" : " ") + words.text("a text");
    std::ranges::replace(line, '\r', '\n');
    if (words.acts()) std::printf("%s\n", line.c_str());
}

void do_exit(ScriptRun* run, CommandWords& words) {
    const int64_t status = words.number("the status", 0, UINT8_MAX, 0);
    if (words.acts()) run->exit(int(status));
}

void do_repeat(ScriptRun* run, CommandWords& words) {
    const int64_t times = words.number("the number of times", 1, INT32_MAX);
    if (words.acts()) run->begin_loop(times);
}

void do_end(ScriptRun* run, CommandWords& words) {
    if (words.acts()) run->end_loop();
}

void do_help(ScriptRun* run, CommandWords& words);

struct ScriptRow {
    ScriptCommand command;
    void (*act)(ScriptRun* run, CommandWords& words);
};

constexpr auto script_rows = std::to_array<ScriptRow>({
    {{"help", "[COMMAND]", "shows all commands of scripts and of the debugger, or one"}, do_help},
    {{"boot", "[LIMIT]", "brings a machine that was switched on to the prompt of BASIC"}, do_boot},
    {{"start", "FILE [LIMIT]", "starts whatever can be started"}, do_start},
    {{"load", "FILE [LIMIT]", "only loads it"}, do_load},
    {{"load-bytes", "FILE ADDRESS", "puts the bytes of a file into memory"}, do_load_bytes},
    {{"disk", "DRIVE FILE|out", "puts a disk into a drive, 0 to 3, or takes it out"}, do_disk},
    {{"save-disk", "DRIVE", "writes what the machine has changed to the disk's file"},
     do_save_disk},
    {{"tape", "FILE|out", "puts a cassette in, or takes it out"}, do_tape},
    {{"run", "N frames|seconds|cycles", "lets the machine run"}, do_run},
    {{"until", "text \"TEXT\" | at ADDRESS | stop | EXPRESSION [LIMIT]",
      "lets it run until the text is on the screen, PC is there, a breakpoint stops it, or the"
      " expression holds at the end of a frame"},
     do_until},
    {{"type", "\"TEXT\" [LIMIT]",
      "types, and waits for it to be obeyed; \\n is RETURN, and {BREAK} {CLEAR} {ESC} {LEFT} "
      "{RIGHT} {DOWN} {F1} to {F4} are "
      "keys"},
     do_type},
    {{"key", "down|up|press NAME... [for N frames]",
      "presses keys by what is printed on them, or PAD0 to PAD9"},
     do_key},
    {{"stick", "1|2 [left|right|up|down|fire|fire2|centre|x N|y N]... [for N frames]",
      "holds a joystick so"},
     do_stick},
    {{"screen", "", "prints the text screen"}, do_screen},
    {{"screenshot", "FILE.gif|FILE.bmp", "writes the picture"}, do_screenshot},
    {{"wav", "FILE|off", "records the sound"}, do_wav},
    {{"save-state", "FILE", "writes the machine's state"}, do_save_state},
    {{"load-state", "FILE", "goes on with a state"}, do_load_state},
    {{"reset", "", "presses the reset key"}, do_reset},
    {{"restart", "", "switches the machine off and on"}, do_restart},
    {{"assert", "EXPRESSION [\"MESSAGE\"] | [no] text \"TEXT\" | screen FILE",
      "ends the script with status 1 unless this is so; FILE is a picture or a text as screen"
      " prints it"},
     do_assert},
    {{"echo", "TEXT...", "prints a line"}, do_echo},
    {{"repeat", "N", "does the lines up to \"end\" so many times"}, do_repeat},
    {{"end", "", "ends what is repeated"}, do_end},
    {{"exit", "[STATUS]", "ends the script"}, do_exit},
});

constexpr auto script_table = [] {
    std::array<ScriptCommand, script_rows.size()> commands;
    for (size_t n = 0; n < script_rows.size(); ++n) commands[n] = script_rows[n].command;
    return commands;
}();

const ScriptRow* script_row(std::string_view name) {
    const auto* const row = std::ranges::find_if(
        script_rows, [&](const ScriptRow& known) { return known.command.name == name; });
    return row == script_rows.end() ? nullptr : row;
}

void print_help(const ScriptCommand& command) {
    std::printf("%s %s\n    %s\n", std::string(command.name).c_str(),
                std::string(command.arguments).c_str(), std::string(command.text).c_str());
}

void do_help(ScriptRun* /*run*/, CommandWords& words) {
    const std::string name = words.empty() ? std::string() : words.text("COMMAND");
    const ScriptRow* const row = script_row(name);
    if (!row && !name.empty() && !debugger_command_of(name)) words.fail(name + ": unknown command");
    if (!words.acts()) return;
    if (row) return print_help(row->command);
    if (name.empty()) std::ranges::for_each(script_table, print_help);
    std::printf("%s\n", debugger_command("help " + name).text.c_str());
}

} // namespace

std::string readable_screen() {
    std::string rows = screen_text("\n");
    for (char& character : rows) {
        const bool is_ascii = character >= ' ' && character <= '~';
        if (!is_ascii && character != '\n') character = '.';
    }
    return trimmed(rows);
}

std::span<const ScriptCommand> script_commands() { return script_table; }

bool script_command(ScriptRun* run, CommandWords& words, std::string_view name) {
    const ScriptRow* const row = script_row(name);
    if (!row) return false;
    row->act(run, words);
    if (!run) words.acts();
    return true;
}
