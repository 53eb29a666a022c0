#pragma once
/// The active keyboard layout of the program's thread.

#include "platform/key_places.h"
#include "platform/win32/win32_windows.h"

#include <optional>
#include <string>

class Win32Layout {
public:
    Win32Layout() { refresh(); }

    /// Reads the layout that is active now.
    void refresh();
    /// HostKey of a key message's two parameters; KEY_NONE for a key that has none.
    uint8_t host_key(WPARAM virtual_key, LPARAM detail) const;
    std::optional<KeyForCharacter> key_for(char character) const;
    std::string label(uint8_t key) const;
    /// The right Alt key gives further characters, and counts as Control and Alt.
    bool has_alt_gr() const { return has_alt_gr_; }

private:
    /// A key at a place that no usual keyboard has, as Wine makes them up, keeps Windows' code.
    uint8_t key_at(UINT scan, WPARAM virtual_key) const;
    /// What the layout gives for a key without modifiers or with Shift; a dead key its own
    /// character. Empty where it gives nothing.
    std::wstring character_of(UINT scan, bool shift) const;
    std::optional<KeyForCharacter> dead_key_for(char character) const;

    HKL layout_ = nullptr;
    KeyPlaces keys_{};
    bool has_alt_gr_ = false;
};
