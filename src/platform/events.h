#pragma once
#include <cstdint>
#include <string>

/// A message for the main loop.
struct Event {
    enum class Kind : uint8_t { none, quit, command, key_down, drop };
    Kind kind = Kind::none;
    int value = 0;    ///< exit code, command id or key
    std::string text; ///< path of a dropped file
};

/// The message queue of the program's one thread.
struct Events {
    virtual ~Events() = default;
    /// Takes a waiting message; kind none when there is none.
    virtual Event poll() = 0;
    /// Blocks until a message comes.
    virtual Event wait() = 0;
    virtual void post_quit(int exit_code) = 0;
};
