/// The remote protocol: any bytes of a client, as they come or as the lines of a session, each a
/// packet of its own. Whatever it wants, its answers are packets, what waits stays bounded, the
/// machine is one that can be loaded again, and nothing of the client's stays behind.

#include "debugger/remote.h"

#include "core/frame_driver.h"
#include "core/machine_state.h"
#include "debugger/breakpoints.h"
#include "support/input.h"
#include "support/machine.h"
#include "time/history.h"

#include <algorithm>
#include <string>
#include <utility>

namespace {

constexpr int MOST_TURNS = 8;
constexpr size_t MOST_WAITING = 0x200000;

bool machine_runs = false;

/// Takes the bytes, and does what the shell does in a turn.
void speak(RemoteSession& session, std::string_view bytes, std::string& received) {
    do {
        const std::string_view piece = bytes.substr(0, session.room());
        session.take(piece);
        bytes.remove_prefix(piece.size());
        session.turn();
        require(session.output().size() < MOST_WAITING, "output is bounded");
        received += std::exchange(session.output(), {});
        if (debugger_turn() || debugger_stands() || !machine_runs) continue;
        if (machine_run() != MACHINE_FRAME) continue;
        history_frame_ran();
        debugger_frame_ran();
    } while (!bytes.empty() && !session.is_over());
}

/// Packets and acknowledgements, and nothing else.
void check_answers(std::string_view received) {
    RemotePacketReader reader;
    reader.append(received);
    auto packets = std::ranges::count(received, '$');
    while (const auto message = reader.next()) {
        require(message->kind != RemoteMessage::Kind::damaged, "answers have the right sum");
        packets -= message->kind <= RemoteMessage::Kind::too_long;
    }
    require(packets == 0, "answers are packets");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    fresh_machine();
    history_start({});
    debugger_start({.let_run = [](bool runs) { machine_runs = runs; }});
    machine_runs = true;
    {
        RemoteSession session;
        std::string received;
        const bool lines = (input.byte() & 1) != 0;
        const std::string text = input.text(size);
        // Sums count for nothing then, so that most of it means something.
        speak(session, remote_packet("QStartNoAckMode"), received);
        std::string_view left = text;
        while (lines && !left.empty()) {
            const std::string_view line = left.substr(0, left.find('\n'));
            speak(session, line == "\3" ? line : remote_packet(line), received);
            left.remove_prefix(std::min(left.size(), line.size() + 1));
        }
        speak(session, left, received);
        for (int n = 0; n < MOST_TURNS && !debugger_stands(); ++n) speak(session, {}, received);
        check_answers(received);
    }
    require(breakpoints().empty(), "a client's breakpoints go with it");
    for (int n = 0; n < MOST_TURNS && !remote_let_go(); ++n) debugger_turn();
    machine_state state;
    machine_save(state);
    require(machine_state_problem(state).empty(), "the machine is a possible one");
    debugger_end();
    history_stop();
    return 0;
}
