#include "debugger/breakpoints.h"
#include "debugger/remote_packets.h"
#include "host/messages.h"
#include "host/whole_program.h"
#include "platform/loopback_server.h"
#include "z80/z80.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

/// What connects to the port, as any program on this computer can.
struct Client {
    explicit Client(uint16_t port) {
        sockaddr_in address = {AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
        EXPECT_EQ(connect(own, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }
    ~Client() { close(own); }
    /// Adds what has come; false at the end of the connection.
    bool hear() {
        char bytes[1000];
        const ssize_t count = recv(own, bytes, sizeof bytes, MSG_DONTWAIT);
        if (count > 0) heard.append(bytes, size_t(count));
        return count != 0;
    }
    const int own = socket(AF_INET, SOCK_STREAM, 0);
    std::string heard;
};

class GdbServerTest : public WholeProgramTest {
protected:
    /// Whether any time passes for the machine.
    bool runs_in_turns(int count = 100) {
        const int64_t before = z80_state.t_count;
        while (count-- > 0) {
            const ShellTurn done = shell_turn();
            if (done.next == ShellTurn::Next::in_time) host->events().wait(done.microseconds);
        }
        return z80_state.t_count != before;
    }
    std::string answer(Client& client, const std::string& bytes, size_t size) {
        client.heard.clear();
        EXPECT_EQ(send(client.own, bytes.data(), bytes.size(), 0), ssize_t(bytes.size()));
        for (int n = 0; n < 5000 && client.heard.size() < size; ++n) {
            runs_in_turns(1);
            client.hear();
        }
        return client.heard;
    }
};

TEST_F(GdbServerTest, OneClientIsServedAtATime) {
    start({"--gdb", "0"});
    const std::string told = kept_messages().back().line;
    const auto port = uint16_t(std::stoi(told.substr(told.rfind(':') + 1)));
    EXPECT_TRUE(runs_in_turns());
    std::string problem;
    EXPECT_EQ(LoopbackServer::listen(port, problem), nullptr);
    EXPECT_EQ(problem, "port " + std::to_string(port) + " is in use by another program");
    {
        Client client(port);
        runs_in_turns(10);
        Client second(port);
        EXPECT_FALSE(runs_in_turns());
        EXPECT_FALSE(second.hear());
        EXPECT_EQ(answer(client, "$qC#b4", 9), "+$QC1#c5");
        EXPECT_EQ(answer(client, remote_packet("m0,10000"), 0x20005).size(), 0x20005u);
        EXPECT_EQ(answer(client, remote_packet("Z0,0,1") + "$c#63", 8), "+$OK#9a+");
        EXPECT_TRUE(runs_in_turns());
        EXPECT_EQ(answer(client, "\3", 23).substr(0, 4), "$T02");
        EXPECT_EQ(breakpoints().size(), 1u);
    }
    runs_in_turns(10);
    EXPECT_TRUE(runs_in_turns() && breakpoints().empty());
    Client next(port); // whose kill does not end a program with a window
    EXPECT_EQ(answer(next, "$k#6b", 1), "+");
    EXPECT_TRUE(runs_in_turns() && !next.hear() && !host->quit_posted());
    Client last(port);
    runs_in_turns(10);
    emu_close();
    EXPECT_FALSE(last.hear());
}

} // namespace
