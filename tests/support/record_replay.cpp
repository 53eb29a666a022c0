/// Plays an example by itself and records that: catch, sticks or typing of tests/machine/replays,
/// to be made anew when the machine's timing has been changed on purpose.
///
/// usage: record_replay NAME EXAMPLES FOLDER

#include "cgenie/memory/memory.h"
#include "host/machine_callbacks.h"
#include "host/shell.h"
#include "host/turn.h"
#include "platform/headless/headless.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int COLUMNS = 40;
using Player = std::function<void(HeadlessPlatform& host, int frame)>;

uint8_t screen(int place) { return memory[0x4400 + place]; }

int find_on_screen(char what, int first, int end) {
    while (first < end && screen(first) != uint8_t(what)) ++first;
    return first < end ? first : -1;
}

/// Keeps the basket under the apple, a little late.
void play_catch(HeadlessPlatform& host, int frame) {
    host.release_all_keys();
    if (frame % 4 == 0 || frame < 300) return;
    const int apple = find_on_screen('O', COLUMNS, 21 * COLUMNS);
    const int basket = find_on_screen('(', 21 * COLUMNS, 22 * COLUMNS);
    if (basket < 0 || frame % 1000 > 900) return host.set_key('S', frame % 50 < 4);
    const int ahead = apple % COLUMNS - basket % COLUMNS;
    host.set_key(KEY_OEM_COMMA, apple >= 0 && ahead < 0);
    host.set_key(KEY_OEM_PERIOD, ahead > 4);
}

void move_sticks(HeadlessPlatform& host, int frame) {
    auto& sticks = host.joysticks().sticks;
    sticks[0].state = {uint16_t(frame * 97), uint16_t(frame * 61)};
    sticks[1].state = {uint16_t(frame * 31), uint16_t(65535 - frame * 43)};
    sticks[0].state.set(PAD_A, frame % 90 < 20);
    sticks[0].state.set(PAD_B, frame % 70 < 9);
    sticks[1].state.set(PAD_A, frame % 40 < 9);
    for (int n = 0; n < 10; ++n) host.set_key(uint8_t(KEY_NUMPAD0 + n), frame / 25 % 10 == n);
}

/// On the disk of the example, key by key.
void type_at_prompt(HeadlessPlatform& host, int frame) {
    static constexpr std::string_view TEXT =
        "\r10 FOR I=1 TO 9\r20 PRINT I*I;\r30 NEXT\rLIST\rRUN\r"
        "SAVE\"SQUARES\"\rNEW\rLOAD\"SQUARES\"\rLIST\r"
        "35 SOUND 7,62:SOUND 8,15:SOUND 0,200\rRUN\r"
        "FGR:FCLS:CIRCLE 80,48,30\rLGR\r";
    constexpr int FRAMES = 7; // of a key
    host.release_all_keys();
    const auto place = size_t(frame < 200 ? TEXT.size() : (frame - 200) / FRAMES);
    if (place >= TEXT.size() || frame % FRAMES > 3) return;
    if (TEXT[place] == '\r') return host.set_key(KEY_RETURN, true);
    const auto key = host.keyboard().key_for(TEXT[place]);
    host.set_key(KEY_SHIFT, key->modifiers & MODIFIER_SHIFT);
    host.set_key(key->key, true);
}

/// To the moment when real time has to catch up.
void run_frame(Events& events) {
    ShellTurn turn;
    while (turn.next == ShellTurn::Next::now) turn = shell_turn();
    events.wait(turn.microseconds);
}

void record(const std::string& path, const Arguments& arguments, int frames, const Player& play) {
    HeadlessPlatform host({});
    connect_machine();
    host.window().create("");
    install_platform(host);
    host.joysticks().sticks.resize(2);
    Arguments line = {"--headless", "--setting", "KeyMapping=1", "--record", path};
    line.insert(line.end(), arguments.begin(), arguments.end());
    emu_init({.line = read_command_line(line), .unattended = true});
    for (int frame = 0; frame < frames; ++frame) {
        play(host, frame);
        run_frame(host.events());
    }
    emu_close();
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) return std::fputs("usage: record_replay NAME EXAMPLES FOLDER\n", stderr), 2;
    const std::string name = argv[1];
    const std::string examples = argv[2] + std::string("/");
    const std::string path = argv[3] + ("/" + name + ".tvr");
    if (name == "catch") record(path, {examples + "catch.bas"}, 3000, play_catch);
    if (name == "sticks") {
        record(path, {"--setting", "CycleBasedEmulation=1", examples + "sticks.cmd"}, 2000,
               move_sticks);
    }
    if (name == "typing") {
        record(path,
               {"--setting", "ActiveConfig=4", "--setting", "CustomRomExpansion=0", "/i",
                examples + "bootdisk.dsk"},
               2500, type_at_prompt);
    }
}
