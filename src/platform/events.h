#pragma once
#include "platform/pane.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Modifier keys of a key-down, and those that a character needs (see HostKeyboard::key_for).
enum Modifier : uint8_t { MODIFIER_SHIFT = 1, MODIFIER_CONTROL = 2, MODIFIER_ALT = 4 };

enum PointerButton : uint8_t { BUTTON_LEFT = 1, BUTTON_RIGHT = 2, BUTTON_MIDDLE = 4 };

/// What a mouse, a pen or a finger does.
struct Pointer {
    enum class Act : uint8_t {
        press,
        move,
        release,
        double_click, ///< in place of the second press
        wheel         ///< value of the event: 120 per notch, positive away from the user
    };
    Act act = Act::move;
    PaneId pane = PaneId::picture;
    int x = 0, y = 0;    ///< pixels, in the pane
    uint8_t button = 0;  ///< that has changed
    uint8_t buttons = 0; ///< that are down
    bool touch = false;
    int finger = 0; ///< which of several that touch; 0 for the mouse
};

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
        key_up,         ///< value: HostKey, that of its key_down
        text,           ///< text: what the layout gives for a key, in UTF-8
        command,        ///< value: id of the menu item chosen
        status_button,  ///< value: number of the StatusButton that was pressed
        pointer,        ///< in a pane
        drop,           ///< text: path of the first file dropped, or its name with its bytes;
                        ///< more: paths of the others
        clipboard       ///< text: in the machine's bytes, of a host that cannot answer at once
    };
    Kind kind = Kind::none;
    int value = 0;
    uint8_t modifiers = 0; ///< of a key_down
    std::string text;
    bool repeat = false; ///< a key_down of a key that is held
    Pointer pointer = {};
    std::optional<std::vector<uint8_t>> bytes = {}; ///< of a file without a path
    std::vector<std::string> more = {};
    /// Of key_down, key_up and text: debugger while its window has the keyboard. Neither menus nor
    /// HostKeyboard know of those keys.
    PaneId pane = PaneId::picture;
};

/// Gets what the host tells at once, in the middle of its own work. These functions neither run nor
/// change the machine.
struct EventSink {
    virtual ~EventSink() = default;
    /// A menu was opened: the program stands still until it is closed again. A host may run a loop
    /// of its own meanwhile.
    virtual void loop_begins() = 0;
    virtual void loop_ends() = 0;
    /// A menu is about to be shown. Its items may still be changed.
    virtual void menu_opens() = 0;
    /// The item of a menu is highlighted; 0 for a menu or a submenu. Told until loop_ends.
    virtual void item_highlighted(int id) = 0;
    /// What was drawn into the pane is lost, as after it got another size.
    virtual void paint(PaneId pane) = 0;
    /// The drawn part of the status bar is blank.
    virtual void draw_status() = 0;
    /// The user's session ends, and perhaps the program with it, without another word.
    virtual void session_ends() = 0;
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
