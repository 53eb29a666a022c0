#pragma once
/// The keys that count as down. A press lasts two frames at least: a firmware may take a key only
/// when it finds it down at a second look.

#include "platform/keyboard.h"

#include <cstdint>
#include <vector>

class PressedKeys {
public:
    /// `source` tells the host's keys apart; an AltGr key counts as Control, too.
    void press(uint64_t source, uint8_t key, bool alt_gr = false);
    /// False when there is no such press.
    bool release(uint64_t source);
    /// Of a host that may not know which key it was: the first press of that one.
    void release_key(uint8_t key);
    void release_all() { pressed_.clear(); }
    /// A frame has been run.
    void release_tapped();
    bool is_down(uint8_t key) const;
    /// Down, and not only because the press is to last.
    bool is_held(uint64_t source) const;

private:
    static constexpr int SHORTEST_PRESS = 2;

    struct Pressed {
        uint64_t source;
        uint8_t key;
        bool alt_gr;
        int frames = SHORTEST_PRESS; ///< that the machine is still to see it pressed
        bool tapped = false;         ///< let go before that
    };

    bool end(std::vector<Pressed>::iterator press);

    std::vector<Pressed> pressed_;
};
