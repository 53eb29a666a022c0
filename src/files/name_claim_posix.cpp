#include "files/name_claim.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

NameClaim::NameClaim(std::string_view name) {
    // A local address that begins with a zero byte is a mere name: it never becomes a file, all
    // users share it, and the kernel frees it with the process.
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    constexpr std::string_view OWNER = "tarvelin ";
    const auto end = std::ranges::copy(OWNER, address.sun_path + 1).out;
    const size_t count = std::min(name.size(), size_t(std::end(address.sun_path) - end));
    const auto size = socklen_t(offsetof(sockaddr_un, sun_path) + 1 + OWNER.size() + count);
    std::copy_n(name.begin(), count, end);
    const int number = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    handle_ = number;
    if (number < 0) return;
    if (bind(number, reinterpret_cast<const sockaddr*>(&address), size) == 0) {
        result_ = Result::held;
    } else if (errno == EADDRINUSE) {
        result_ = Result::taken;
    }
}

NameClaim::~NameClaim() {
    if (handle_ >= 0) close(int(handle_));
}
