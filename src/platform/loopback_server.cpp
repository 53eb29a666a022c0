#include "platform/loopback_server.h"

#include <utility>

std::unique_ptr<LoopbackServer> LoopbackServer::listen(uint16_t port, std::string& problem) {
    const Socket listener = socket_listen(port, problem);
    if (listener == NO_SOCKET) return nullptr;
    return std::unique_ptr<LoopbackServer>(new LoopbackServer(listener, port));
}

LoopbackServer::~LoopbackServer() {
    drop_client();
    socket_close(listener_);
}

bool LoopbackServer::accept() {
    const bool had_client = has_client();
    for (Socket come = socket_accept(listener_); come != NO_SOCKET;
         come = socket_accept(listener_)) {
        if (has_client()) {
            socket_close(come);
        } else {
            client_ = come;
        }
    }
    return has_client() && !had_client;
}

std::string LoopbackServer::receive(size_t most) {
    std::string bytes(has_client() ? most : 0, '\0');
    if (bytes.empty()) return bytes;
    const SocketResult got = socket_receive(client_, bytes.data(), bytes.size());
    bytes.resize(got.count);
    if (got.ended) drop_client();
    return bytes;
}

size_t LoopbackServer::send(std::string_view bytes) {
    if (!has_client() || bytes.empty()) return 0;
    const SocketResult sent = socket_send(client_, bytes);
    if (sent.ended) drop_client();
    return sent.count;
}

void LoopbackServer::wait(int milliseconds) const { socket_wait(listener_, client_, milliseconds); }

void LoopbackServer::drop_client() {
    if (has_client()) socket_close(std::exchange(client_, NO_SOCKET));
}
