#pragma once
#include <cstdint>
#include <optional>
#include <string>

/// A key and the modifiers that it needs (Modifier bits).
struct KeyForCharacter {
    uint8_t key = 0;
    uint8_t modifiers = 0;
    bool operator==(const KeyForCharacter&) const = default;
};

/// State of the host keyboard, by virtual-key code (the values of `HostKey`). Letters are where the
/// active layout has them; all other keys stand where a US keyboard has them.
struct HostKeyboard {
    virtual ~HostKeyboard() = default;
    /// Is the key down at this moment? While AltGr is down, Control and Alt both are.
    virtual bool is_down(uint8_t key) = 0;
    /// Is Control held at this moment, also while a dialog or another program has the keyboard?
    /// Slower than is_down.
    virtual bool control_is_held() = 0;
    /// The key that gives `character` (20 to 7E) in the active layout; nothing where it has none.
    /// The characters of AltGr need Control and Alt; a dead key counts for its own character.
    virtual std::optional<KeyForCharacter> key_for(char character) = 0;
    /// What is printed on a key that gives a character, in UTF-8: what it gives alone, letters as
    /// capitals. Empty where the layout has no such key.
    virtual std::string label(uint8_t key) = 0;
    /// Takes every key for released.
    virtual void release_all() = 0;
    /// A frame has been run. A press lasts two of them at least: a key that is let go earlier
    /// counts as down until the second of these calls, so that the machine, which looks at the keys
    /// while it runs, has seen it.
    virtual void release_tapped() = 0;
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
    KEY_DELETE = 0x2E,
    KEY_MENU = 0x5D,    ///< of the context menu
    KEY_NUMPAD0 = 0x60, ///< to 69
    KEY_F1 = 0x70,
    KEY_F2,
    KEY_F3,
    KEY_F4,
    KEY_F5,
    KEY_F6,
    KEY_F7,
    KEY_F8,
    KEY_F9,
    KEY_F10,
    KEY_F11,
    KEY_F12,
    KEY_OEM_1 = 0xBA,
    KEY_OEM_PLUS = 0xBB, ///< right of minus
    KEY_OEM_COMMA = 0xBC,
    KEY_OEM_MINUS = 0xBD,
    KEY_OEM_PERIOD = 0xBE,
    KEY_OEM_2 = 0xBF,
    KEY_OEM_3 = 0xC0, ///< left of 1
    KEY_OEM_4 = 0xDB,
    KEY_OEM_5 = 0xDC,
    KEY_OEM_6 = 0xDD,
    KEY_OEM_7 = 0xDE,
    KEY_OEM_102 = 0xE2 ///< left of Z on keyboards that have it
};
