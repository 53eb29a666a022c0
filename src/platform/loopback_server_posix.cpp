#include "platform/loopback_server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace {

constexpr int WAITING_CLIENTS = 4;

bool only_waits(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

std::string words_of(int error, uint16_t port) {
    const std::string which = "port " + std::to_string(port);
    if (error == EADDRINUSE) return which + " is in use by another program";
    if (error == EACCES) return which + " may only be used by the system's administrator";
    return which + ": " + std::strerror(error);
}

/// So that each answer leaves at once.
void send_without_delay(int socket) {
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

} // namespace

Socket socket_listen(uint16_t& port, std::string& problem) {
    const int made = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (made < 0) {
        problem = words_of(errno, port);
        return NO_SOCKET;
    }
    // A port whose last connection has just ended can be used again. One that somebody listens on
    // cannot, on this system.
    const int on = 1;
    setsockopt(made, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (bind(made, place, size) != 0 || listen(made, WAITING_CLIENTS) != 0 ||
        getsockname(made, place, &size) != 0) {
        problem = words_of(errno, port);
        close(made);
        return NO_SOCKET;
    }
    port = ntohs(address.sin_port);
    return made;
}

Socket socket_accept(Socket listener) {
    const int come = accept4(int(listener), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (come < 0) return NO_SOCKET;
    send_without_delay(come);
    return come;
}

SocketResult socket_receive(Socket socket, char* to, size_t most) {
    const ssize_t count = recv(int(socket), to, most, 0);
    if (count > 0) return {size_t(count), false};
    return {0, count == 0 || !only_waits(errno)};
}

SocketResult socket_send(Socket socket, std::string_view bytes) {
    // A client that is gone is no reason for a signal.
    const ssize_t count = send(int(socket), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count >= 0) return {size_t(count), false};
    return {0, !only_waits(errno)};
}

void socket_wait(Socket listener, Socket client, int milliseconds) {
    std::array<pollfd, 2> sockets = {{{int(listener), POLLIN, 0}, {int(client), POLLIN, 0}}};
    poll(sockets.data(), client == NO_SOCKET ? 1 : 2, milliseconds);
}

void socket_close(Socket socket) { close(int(socket)); }
