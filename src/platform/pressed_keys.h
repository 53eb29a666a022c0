#pragma once
/// The keys that count as down. A press lasts two frames at least: a firmware may take a key only
/// when it finds it down at a second look.

#include "platform/keyboard.h"

#include <vector>

class PressedKeys {
public:
    /// `source` tells the host's keys apart; an AltGr key counts as Control, too.
    void press(int source, uint8_t key, bool alt_gr = false);
    void release(int source);
    void release_all() { pressed_.clear(); }
    /// A frame has been run.
    void release_tapped();
    bool is_down(uint8_t key) const;

private:
    static constexpr int SHORTEST_PRESS = 2;

    struct Pressed {
        int source;
        uint8_t key;
        bool alt_gr;
        int frames = SHORTEST_PRESS; ///< that the machine is still to see it pressed
        bool tapped = false;         ///< let go before that
    };
    std::vector<Pressed> pressed_;
};
