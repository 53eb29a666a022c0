#pragma once
/// GDB's remote serial protocol, for a client that is somewhere else: a front of the debugger,
/// bytes in and bytes out.
///
/// Answered are ? g G p P m M X c C s S bc bs Z0-Z4 z0-z4 vCont H T D k, and the queries that GDB
/// begins with: qSupported, the description of the registers (remote_description.h), the memory
/// map, threads, of which there is one, and qRcmd, whose lines are the debugger's commands
/// (commands.h). Anything else gets the empty answer. Addresses that do not exist, and numbers that
/// make no sense, get "E01".
///
/// The machine stands from the moment that the client is there. Its breakpoints are its own and go
/// with it.

#include "debugger/debugger.h"
#include "debugger/remote_packets.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class RemoteSession {
public:
    /// A client has come: the machine is to stand.
    RemoteSession();
    /// It is gone. See remote_let_go.
    ~RemoteSession();
    RemoteSession(const RemoteSession&) = delete;
    RemoteSession& operator=(const RemoteSession&) = delete;

    /// How many bytes of the client may be taken now; 0 while it does not fetch its answers.
    size_t room() const;
    /// What the client has sent.
    void take(std::string_view bytes);
    /// Answers what has been taken. What came behind a stop is left for the next call, so that a
    /// client that reads once for each answer can follow.
    void turn();
    /// What the client is to get. The caller takes from its front what has been sent.
    std::string& output() { return output_; }

    /// The machine's program ends: a client that waits for a stop is told.
    void machine_ends();

    /// No more is to be taken, and the connection ends behind the output: the client wants that, or
    /// it is none. A browser, which any page can make send requests to this computer, is none.
    bool is_over() const { return over_; }
    /// The client wants the machine's program to end.
    bool is_killed() const { return killed_; }

private:
    /// Of a command; nothing when it comes later or never.
    using Answer = std::optional<std::string>;
    struct Command {
        std::string_view name;
        Answer (RemoteSession::*obey)(std::string_view rest);
    };
    static const Command commands[];
    /// A breakpoint of the client's.
    struct Point {
        int number = 0; ///< in the table of breakpoints
        char kind = 0;  ///< '0' to '4'
        uint16_t first = 0, last = 0;
    };
    /// What the client waits for.
    enum class Wait : uint8_t { nothing, stop, monitor };

    void handle(const RemoteMessage& message);
    Answer answer(std::string_view packet);
    void send(std::string_view data);
    void send_text(std::string_view text);
    void told(const DebugStop* stop);
    std::string stop_reply() const;
    std::string reason_of(const DebugStop& stop) const;
    void interrupt();
    static std::optional<Point> read_point(std::string_view text);
    std::vector<Point>::iterator find_point(const Point& like);
    Answer go_on(std::string_view address, void (*how)());

    Answer say_stop(std::string_view rest);
    Answer read_registers(std::string_view rest);
    Answer write_registers(std::string_view rest);
    Answer read_register(std::string_view rest);
    Answer write_register(std::string_view rest);
    Answer read_memory(std::string_view rest);
    Answer write_memory(std::string_view rest);
    Answer write_binary(std::string_view rest);
    Answer go(std::string_view rest);
    Answer step(std::string_view rest);
    Answer go_with_signal(std::string_view rest);
    Answer step_with_signal(std::string_view rest);
    Answer go_back(std::string_view rest);
    Answer step_back(std::string_view rest);
    Answer actions_known(std::string_view rest);
    Answer act(std::string_view rest);
    Answer insert(std::string_view rest);
    Answer remove(std::string_view rest);
    Answer detach(std::string_view rest);
    Answer kill(std::string_view rest);
    Answer confirm(std::string_view rest);
    Answer thread_lives(std::string_view rest);
    Answer this_thread(std::string_view rest);
    Answer threads(std::string_view rest);
    Answer no_more_threads(std::string_view rest);
    Answer attached(std::string_view rest);
    Answer features(std::string_view rest);
    Answer end_acknowledgement(std::string_view rest);
    Answer transfer(std::string_view rest);
    Answer monitor(std::string_view rest);

    RemotePacketReader reader_;
    std::string output_;
    std::string last_packet_; ///< for a client that wants it again
    std::vector<Point> points_;
    int front_ = 0;
    Wait wait_ = Wait::nothing;
    std::string monitor_text_; ///< of the command that goes on
    std::string stop_ = "T05"; ///< the last stop reply without its registers
    bool steps_ = false;       ///< the last command was one instruction forwards
    bool begun_ = false;       ///< something has come
    bool acknowledges_ = true;
    bool knows_swbreak_ = false, knows_hwbreak_ = false;
    bool stop_sent_ = false; ///< since the last turn
    bool over_ = false, killed_ = false;
};

/// Lets the machine run on behind a client that is gone, from the present. To be called once a turn
/// until it is true.
bool remote_let_go();
