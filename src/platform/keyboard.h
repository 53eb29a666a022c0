#pragma once
#include <cstdint>

/// State of the host keyboard, by virtual-key code (the values of `HostKey`).
struct HostKeyboard {
    virtual ~HostKeyboard() = default;
    /// Is the key down at this moment?
    virtual bool is_down(uint8_t key) = 0;
};

/// Virtual-key codes. Letters and digits are their ASCII codes.
enum HostKey : uint8_t {
    KEY_NONE = 0x00,
    KEY_BACKSPACE = 0x08,
    KEY_TAB = 0x09,
    KEY_RETURN = 0x0D,
    KEY_SHIFT = 0x10,
    KEY_CONTROL = 0x11,
    KEY_ALT = 0x12,
    KEY_PAUSE = 0x13,
    KEY_ESCAPE = 0x1B,
    KEY_SPACE = 0x20,
    KEY_PAGE_UP = 0x21,
    KEY_PAGE_DOWN = 0x22,
    KEY_END = 0x23,
    KEY_HOME = 0x24,
    KEY_LEFT = 0x25,
    KEY_UP = 0x26,
    KEY_RIGHT = 0x27,
    KEY_DOWN = 0x28,
    KEY_INSERT = 0x2D,
    KEY_NUMPAD0 = 0x60,
    KEY_F1 = 0x70,
    KEY_F2 = 0x71,
    KEY_F3 = 0x72,
    KEY_F4 = 0x73,
    KEY_OEM_1 = 0xBA,
    KEY_OEM_COMMA = 0xBC,
    KEY_OEM_MINUS = 0xBD,
    KEY_OEM_PERIOD = 0xBE,
    KEY_OEM_2 = 0xBF,
    KEY_OEM_4 = 0xDB,
    KEY_OEM_7 = 0xDE
};
