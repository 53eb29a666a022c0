#pragma once
#include "platform/geometry.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

/// How an item of the menu is shown; a greyed one cannot be chosen.
enum class ItemState : uint8_t { usual, greyed, hidden };

/// An item of the menu. The text has "&" before its access key, "&&" for one that is shown, and a
/// tab before the key hint.
struct MenuEntry {
    int id = 0;                      ///< 0 for a separator (no text) and for a submenu
    std::string text;                ///< empty: a separator
    std::vector<MenuEntry> children; ///< not empty: a submenu
    bool checked = false;
    ItemState state = ItemState::usual;
};

/// A key that the program takes before menus and controls see it.
struct KeyChord {
    uint8_t key = 0;
    uint8_t modifiers = 0;
};

/// Where the picture of the machine's keyboard is: docked below the picture, above the status bar,
/// or in a window of its own in front of the main window, which the user can size and close.
enum class KeyboardPlace : uint8_t { hidden, docked, floating };

/// Text that a screen reader finds in place of the picture.
struct ReadableText {
    static constexpr int NO_CURSOR = -1;
    std::string text;       ///< in ISO 8859-1, "\n" behind every line
    int cursor = NO_CURSOR; ///< index of the character under the cursor
};

/// The main window. Coordinates of the client area count from its top left corner, the status bar
/// belongs to the client area, the menu bar does not.
struct Window {
    virtual ~Window() = default;
    /// Creates the window, not shown yet, and accepts dropped files. False when that fails.
    virtual bool create(const std::string& title) = 0;
    virtual void show() = 0;
    /// Removes the window for good.
    virtual void destroy() = 0;

    virtual void set_title(const std::string& title) = 0;
    virtual std::string title() = 0;

    /// Outer size of a window of the present style, with a menu, for a client area.
    virtual Size outer_size(Size client) = 0;
    virtual Rectangle outer_rectangle() = 0; ///< on the screen
    virtual Size client_size() = 0;
    virtual Rectangle client_on_screen() = 0; ///< the client area in screen coordinates
    virtual Size screen_size() = 0;           ///< of the screen that shows the window
    virtual Rectangle available_area() = 0;   ///< of that screen, what panels and docks leave
    /// Pixels of that screen in one of the coordinates here: 1, and more where all is shown larger.
    virtual double pixel_ratio() = 0;
    virtual void move(const Rectangle& outer) = 0;
    /// Makes this the only size that the window can have. A zero size lets the user size and
    /// maximize it.
    virtual void set_fixed_size(Size outer) = 0;
    /// The user cannot make a window smaller that he can size.
    virtual void set_least_size(Size outer) = 0;
    /// Full screen goes beyond it: a window that was maximized is so again afterwards.
    virtual void set_maximized(bool on) = 0;
    virtual bool maximized() = 0;
    /// Asks for a paint message of the whole client area.
    virtual void invalidate() = 0;
    /// On: the window covers the whole screen, without frame and menu. Off: it is as before, its
    /// place and size included.
    virtual void set_full_screen(bool on) = 0;
    virtual void show_cursor(bool on) = 0;

    virtual void set_menu(const std::vector<MenuEntry>& menus) = 0;
    virtual void check_item(int id, bool checked) = 0; ///< unknown ids are ignored
    virtual void set_item_text(int id, const std::string& text) = 0;
    virtual void set_item_state(int id, ItemState state) = 0;
    /// Shows a menu beside that of the window, its lower left corner at the point (of the screen,
    /// like client_on_screen), where it fits there. What is chosen comes as of any menu.
    virtual void popup_menu(const std::vector<MenuEntry>& entries, int x, int y) = 0;
    /// Keys that reach the program as key_down even where a menu or a control would take them.
    virtual void claim_keys(std::span<const KeyChord> chords) = 0;
    /// Puts the pane of the keyboard there. Docked, it gets the height of `wanted` over the whole
    /// width of the client area, and none of the whole screen. Floating, it is that rectangle on
    /// the screen; where its left top corner is 0, the host chooses the place. That window never
    /// takes the keyboard from the main window; closed by the user, it sends the command `closed`.
    virtual void place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) = 0;
    /// Of the floating keyboard, on the screen; all 0 when there is none.
    virtual Rectangle keyboard_rectangle() = 0;
    /// Opens or closes the debugger's window with its pane, which the user can size, minimise and
    /// close; it is gone while the main window is. `wanted` is the pane on the screen; where it is
    /// all 0, the host chooses a place beside the main window. The window gets the keyboard, also
    /// when it was open already. What it shows is black until it is drawn. Closed by the user, it
    /// sends the command `closed` and stays open.
    virtual void place_debugger(bool open, const Rectangle& wanted, int closed) = 0;
    /// Of the debugger's pane, on the screen; all 0 while its window is closed.
    virtual Rectangle debugger_rectangle() = 0;
    /// Whether the host can show such a window at all.
    virtual bool has_debugger() = 0;
    /// Name of the client area for screen readers, and its text, asked for only while one listens.
    virtual void set_readable(const std::string& name, std::function<ReadableText()> text) = 0;
};
