#include "platform/loopback_server.h"

// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
// clang-format on

#include <algorithm>
#include <array>
#include <climits>

namespace {

constexpr int WAITING_CLIENTS = 4;
constexpr int MICROSECONDS = 1000; ///< in a millisecond
constexpr WORD WINSOCK_2_2 = 0x0202;

/// The system's sockets, once for the process.
bool start_sockets() {
    static const bool started = [] {
        WSADATA data;
        return WSAStartup(WINSOCK_2_2, &data) == 0;
    }();
    return started;
}

std::string words_of(int error, uint16_t port) {
    const std::string which = "port " + std::to_string(port);
    // Windows refuses with the second one what another program has for itself alone.
    if (error == WSAEADDRINUSE || error == WSAEACCES)
        return which + " is in use by another program";
    return which + ": error " + std::to_string(error) + " of the system";
}

bool prepare(SOCKET socket) {
    u_long on = 1;
    SetHandleInformation(HANDLE(socket), HANDLE_FLAG_INHERIT, 0);
    return ioctlsocket(socket, FIONBIO, &on) == 0;
}

int size_of(size_t bytes) { return int(std::min<size_t>(bytes, INT_MAX)); }

SocketResult result_of(int count, bool ends_with_nothing) {
    if (count > 0) return {size_t(count), false};
    if (count == 0) return {0, ends_with_nothing};
    return {0, WSAGetLastError() != WSAEWOULDBLOCK};
}

} // namespace

Socket socket_listen(uint16_t& port, std::string& problem) {
    const SOCKET made = start_sockets() ? socket(AF_INET, SOCK_STREAM, 0) : INVALID_SOCKET;
    if (made == INVALID_SOCKET) {
        problem = words_of(WSAGetLastError(), port);
        return NO_SOCKET;
    }
    // Without this another program could listen on the same port, too.
    const BOOL on = TRUE;
    setsockopt(made, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&on),
               sizeof on);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const place = reinterpret_cast<sockaddr*>(&address);
    int size = sizeof address;
    if (!prepare(made) || bind(made, place, size) != 0 || listen(made, WAITING_CLIENTS) != 0 ||
        getsockname(made, place, &size) != 0) {
        problem = words_of(WSAGetLastError(), port);
        closesocket(made);
        return NO_SOCKET;
    }
    port = ntohs(address.sin_port);
    return Socket(made);
}

Socket socket_accept(Socket listener) {
    const SOCKET come = accept(SOCKET(listener), nullptr, nullptr);
    if (come == INVALID_SOCKET) return NO_SOCKET;
    if (!prepare(come)) {
        closesocket(come);
        return NO_SOCKET;
    }
    // So that each answer leaves at once.
    const BOOL on = TRUE;
    setsockopt(come, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
    return Socket(come);
}

SocketResult socket_receive(Socket socket, char* to, size_t most) {
    return result_of(recv(SOCKET(socket), to, size_of(most), 0), true);
}

SocketResult socket_send(Socket socket, std::string_view bytes) {
    return result_of(send(SOCKET(socket), bytes.data(), size_of(bytes.size()), 0), false);
}

void socket_wait(Socket listener, Socket client, int milliseconds) {
    fd_set sockets;
    FD_ZERO(&sockets);
    for (const Socket socket : {listener, client}) {
        if (socket == NO_SOCKET) continue;
        sockets.fd_array[sockets.fd_count++] = SOCKET(socket);
    }
    timeval time = {0, milliseconds * MICROSECONDS};
    select(0, &sockets, nullptr, nullptr, &time);
}

void socket_close(Socket socket) { closesocket(SOCKET(socket)); }
