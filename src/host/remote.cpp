#include "host/remote.h"

#include "debugger/debugger.h"
#include "debugger/remote.h"
#include "host/debugging.h"
#include "host/shell_state.h"
#include "platform/loopback_server.h"
#include "platform/platform.h"
#include "wall/machine_host.h"

#include <memory>
#include <string>
#include <utility>

namespace {

constexpr int64_t LONGEST_WAIT = 10'000; ///< microseconds, of the shell
constexpr int LONGEST_REST = 10;         ///< ms, here
/// The answer to an answer comes at once, or not in this turn.
constexpr int NEXT_PACKET = 2; ///< ms
constexpr int MOST_ROUNDS = 100;

/// The server, and the client that is there.
struct {
    std::unique_ptr<LoopbackServer> server;
    std::unique_ptr<RemoteSession> session;
    bool letting_go = false; ///< the machine runs on behind a client that has gone
    int user = 0;            ///< of the debugger
} remote;

void note(const std::string& text) { report({.text = text, .severity = Severity::note}); }

bool machine_stands() { return debugger_stands() && !debugger_progress(); }

void begin_session() {
    remote.letting_go = false;
    remote.session = std::make_unique<RemoteSession>();
    note("A remote debugger has come.");
}

void end_session() {
    const bool killed = remote.session->is_killed() && shell_state.start.unattended;
    remote.session.reset();
    remote.server->drop_client();
    remote.letting_go = true;
    note("The remote debugger has gone.");
    if (killed) platform().events().post_quit(0);
}

void send_answers() {
    std::string& output = remote.session->output();
    while (const size_t sent = remote.server->send(output)) output.erase(0, sent);
}

/// Takes what has come and answers it; false when nothing has.
bool exchange() {
    if (remote.server->accept()) begin_session();
    if (!remote.session) return false;
    RemoteSession& session = *remote.session;
    const std::string come = remote.server->receive(session.room());
    session.take(come);
    session.turn();
    send_answers();
    const bool ends = session.is_over() && session.output().empty();
    if (ends || !remote.server->has_client()) end_session();
    return !come.empty();
}

} // namespace

void remote_start(uint16_t port) {
    std::string problem;
    remote.server = LoopbackServer::listen(port, problem);
    if (!remote.server) {
        report({.text = "There is no server for remote debuggers.", .reason = problem});
        if (shell_state.start.unattended) platform().events().post_quit(1);
        return;
    }
    const std::string text =
        "Waiting for GDB on 127.0.0.1:" + std::to_string(remote.server->port());
    note(text);
    machine_print(TEXT_ERROR, "tarvelin: %s\n", text.c_str());
    remote.user = debugging_begin();
    if (shell_state.start.unattended) debugger_stop();
}

void remote_end() {
    if (remote.session) {
        remote.session->machine_ends();
        send_answers();
    }
    if (!remote.server) return;
    remote.session.reset(); // with its breakpoints
    debugging_end(remote.user);
    remote = {};
}

std::optional<int64_t> remote_turn() {
    if (!remote.server) return {};
    if (shell_state.start.unattended && machine_stands()) remote.server->wait(LONGEST_REST);
    for (int round = 0; round < MOST_ROUNDS && exchange() && machine_stands(); ++round) {
        remote.server->wait(NEXT_PACKET);
    }
    if (remote.letting_go) remote.letting_go = !remote_let_go();
    return LONGEST_WAIT;
}
