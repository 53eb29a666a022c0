#pragma once
#include <cstdint>
#include <string>

/// Modifier keys of a key-down, and those that a character needs (see HostKeyboard::key_for).
enum Modifier : uint8_t { MODIFIER_SHIFT = 1, MODIFIER_CONTROL = 2, MODIFIER_ALT = 4 };

/// A message for the main loop.
struct Event {
    enum class Kind : uint8_t {
        none,           ///< there was no message
        quit,           ///< value: exit code
        close,          ///< the user wants to close the window
        moved,          ///< the window was moved
        resized,        ///< the window's size changed
        focus,          ///< the window got the keyboard
        paint,          ///< the client area has to be drawn again
        activate,       ///< value: 1 the program became the active one, 0 another did
        layout_changed, ///< the keyboard layout is another one; value: 1 the user changed it here,
                        ///< 0 it came with the program's start or with the focus
        key_down,       ///< value: HostKey; accelerators are not taken out yet
        command,        ///< value: id of the menu item chosen
        double_click,   ///< left button, in the client area
        wheel,          ///< value: 120 per notch, positive away from the user
        drop            ///< text: path of the first file dropped
    };
    Kind kind = Kind::none;
    int value = 0;
    uint8_t modifiers = 0; ///< of a key_down
    std::string text;
};

/// Gets what the host tells at once, in the middle of its own work. These functions neither run nor
/// change the machine.
struct EventSink {
    virtual ~EventSink() = default;
    /// A menu was opened: the program stands still until it is closed again. A host may run a loop
    /// of its own meanwhile.
    virtual void loop_begins() = 0;
    virtual void loop_ends() = 0;
    /// The drawn part of the status bar is blank.
    virtual void draw_status() = 0;
};

/// The message queue of the program's one thread.
struct Events {
    virtual ~Events() = default;
    /// Sets who is told at once. The sink must outlive the platform.
    virtual void set_sink(EventSink& sink) = 0;
    /// Takes a waiting message; kind none when there is none. Never blocks.
    virtual Event poll() = 0;
    /// Blocks, without using processor time, until something may have happened, or for so many
    /// microseconds, or NO_LIMIT. Takes no message.
    virtual void wait(int64_t microseconds) = 0;
    static constexpr int64_t NO_LIMIT = -1;
    /// Appends a quit message to the queue.
    virtual void post_quit(int exit_code) = 0;
    /// Appends any other message to the queue.
    virtual void post(const Event& event) = 0;
};
