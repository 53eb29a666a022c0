#pragma once
/// A server for one client at a time, on this computer only: it listens on 127.0.0.1, so that no
/// other computer reaches it. Nothing here blocks, but for `wait`.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// A socket of the system; NO_SOCKET is none.
using Socket = intptr_t;
constexpr Socket NO_SOCKET = -1;

class LoopbackServer {
public:
    /// Listens on the port; 0 takes one that is free. Null, and why not, when that fails.
    static std::unique_ptr<LoopbackServer> listen(uint16_t port, std::string& problem);
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    uint16_t port() const { return port_; }
    bool has_client() const { return client_ != NO_SOCKET; }
    /// Takes a client that wants to come, where there is none; true when one has come. Others are
    /// sent away, which the one that is there does not notice.
    bool accept();
    /// What the client has sent, at most so many bytes; empty when nothing has come. When it has
    /// gone, has_client is false behind the last of it.
    std::string receive(size_t most);
    /// Sends as much as the system takes at once, and returns how much. When the client has gone,
    /// has_client is false.
    size_t send(std::string_view bytes);
    /// Returns when something may have come, or after so many milliseconds.
    void wait(int milliseconds) const;
    void drop_client();

private:
    LoopbackServer(Socket listener, uint16_t port) : listener_(listener), port_(port) {}
    Socket listener_ = NO_SOCKET;
    Socket client_ = NO_SOCKET;
    uint16_t port_ = 0;
};

// ---- what differs from system to system --------------------------------------------------------

/// How much was sent or received. None is left when the connection has ended.
struct SocketResult {
    size_t count = 0;
    bool ended = false;
};
/// A socket that listens on 127.0.0.1, and its port; NO_SOCKET, and why not, when that fails.
Socket socket_listen(uint16_t& port, std::string& problem);
/// A connection that has come, ready to be used without blocking; NO_SOCKET when there is none.
Socket socket_accept(Socket listener);
SocketResult socket_receive(Socket socket, char* to, size_t most);
SocketResult socket_send(Socket socket, std::string_view bytes);
/// Returns when something has come for one of the two, of which the second may be NO_SOCKET, or
/// after so many milliseconds.
void socket_wait(Socket listener, Socket client, int milliseconds);
void socket_close(Socket socket);
