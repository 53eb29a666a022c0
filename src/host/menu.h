#pragma once
/// The menu and the accelerators of the main window: labels, command ids, check marks, key hints.

#include "platform/events.h"
#include "platform/window.h"

#include <span>
#include <string>
#include <vector>

/// Command ids, as menu, accelerators and handler share them.
enum Command : int {
    COMMAND_EXIT = 102,
    COMMAND_ABOUT = 103,
    COMMAND_PAUSE = 104,
    COMMAND_RESET = 105,
    COMMAND_50HZ_TIMER = 106,
    COMMAND_MONITOR = 108,
    COMMAND_RESTART = 109,
    COMMAND_LOAD_CMD = 110,
    COMMAND_LOAD_BAS = 111,
    COMMAND_SCREENSHOT = 112,
    COMMAND_SOUND = 118,
    COMMAND_CREATE_WAV = 120,
    COMMAND_CLOSE_WAV = 121,
    COMMAND_PLAY_RECORD = 122,
    COMMAND_ATTACH_CAS = 123,
    COMMAND_DETACH_CAS = 124,
    COMMAND_REWIND = 125,
    COMMAND_SCREENSHOT_AS = 126,
    COMMAND_MEMORY_AS_CAS = 127,
    COMMAND_VIDEO_CUT = 128,
    COMMAND_VIDEO_PAGE = 129,
    COMMAND_LOAD_SNAPSHOT = 131,
    COMMAND_SAVE_SNAPSHOT = 132,
    COMMAND_DOUBLE_SCAN = 134,
    COMMAND_AUTOSTART = 135,
    COMMAND_CONFIGURATION = 141,
    COMMAND_COPY = 145,
    COMMAND_PLACE_TRAPS = 146,
    COMMAND_FULL_SCREEN = 40007,
    COMMAND_ATTACH_DISK = 40018, ///< + drive 0 to 3
    COMMAND_DETACH_DISK = 40022, ///< + drive 0 to 3
    COMMAND_DETACH_ALL = 40033,
    COMMAND_ATTACH_WAV = 40034,
    COMMAND_PASTE = 40040,
    COMMAND_LOWE_OFF = 40045,
    COMMAND_LOWE_ON = 40046,
    COMMAND_1BIT_DISPLAY = 40050,
    COMMAND_TV_BLUR = 40052,
    COMMAND_SAVE_VIDEO = 40054,
    COMMAND_SYMBOLIC_KEYS = 40057,
    COMMAND_GIANT_SCREEN = 40058,
    COMMAND_DISPLAY_SETTINGS = 40059,
    COMMAND_PRINTER = 40060,
    COMMAND_SAVE_WAV = 40120,
    COMMAND_ADJUST_HEAD = 40121,
    COMMAND_BACKGROUND = 40122,
    COMMAND_SAVE_VIDEO_RAM = 40123,
    COMMAND_MESSAGES = 40130,
    COMMAND_CLEAN_SOUND = 40131,
    COMMAND_STATES = 40200,
    COMMAND_SAVE_SLOT = 40201,
    COMMAND_LOAD_SLOT = 40202,
    COMMAND_NEXT_SLOT = 40203,
    COMMAND_PREVIOUS_SLOT = 40204,
    COMMAND_LOAD_STATE = 40205,
    COMMAND_SAVE_STATE = 40206,
    COMMAND_FILM_BAR = 40207,
    COMMAND_RECORD_REPLAY = 40208,
    COMMAND_PLAY_REPLAY = 40209,
    COMMAND_TURBO = 40210,
    COMMAND_SLOW_MOTION = 40211,
    COMMAND_RESUME = 40212,
    COMMAND_KEEP_HISTORY = 40213,
    COMMAND_RUN_AHEAD = 40214, ///< + frames, 0 to 4
    COMMAND_FAST_TAPES = 40219,
    COMMAND_ASK_MEMORY_SIZE = 40220,
    COMMAND_FIXED_WINDOW = 40221,
    COMMAND_SCALE_WHOLE = 40222,
    COMMAND_SCALE_FILL = 40223,
    COMMAND_SCALE_SMOOTH = 40224,
    COMMAND_TUBE = 40225, ///< + a TubeLook
    COMMAND_KEYBOARD_DOCKED = 40228,
    COMMAND_KEYBOARD_FLOATING = 40229,
    COMMAND_WELCOME = 40230,
    COMMAND_MANUAL = 40231,
    COMMAND_KEYS = 40232,
    COMMAND_MONITOR_F12 = 40233,
    COMMAND_EXAMPLE = 40240, ///< + place in the list
    COMMAND_RECENT = 40260,  ///< + place in the list, 0 to 9
    COMMAND_CLEAR_RECENT = 40270,
    COMMAND_NEW_DISK = 40271,
    COMMAND_NEW_TAPE = 40272,
    COMMAND_PROTECT_DISK = 40273, ///< + drive 0 to 3
    COMMAND_TAPE_PANEL = 40277,
    COMMAND_DISK_PANEL = 40278,
    COMMAND_PAD_KEYS = 40279,
    COMMAND_DOWNLOAD_DISK = 40280, ///< + drive 0 to 3
    COMMAND_DOWNLOAD_TAPE = 40284,
    COMMAND_SHARE_PROGRAM = 40285,
    COMMAND_SHARE_REPLAY = 40286,
    COMMAND_NEW_DISK_IN = 40290, ///< + drive 0 to 3
    COMMAND_COPY_DISK = 40294,   ///< + drive 0 to 3
    COMMAND_MEDIA_MENU = 40298,
    COMMAND_DEBUGGER = 40299
};

/// The menu as the program starts with it.
std::vector<MenuEntry> main_menu();
/// Gives the window its menu and claims the accelerators' keys.
void create_menu();

/// Sets an item's check mark. Ids that the menu does not hold have a mark as well, which only
/// is_menu_item_checked shows.
void check_menu_item(int id, bool checked);
bool is_menu_item_checked(int id);
void modify_menu_text(int id, const std::string& text);
/// The item's present text; empty for an id that the menu does not hold.
std::string menu_item_text(int id);

/// The sentence on what the item does. Without one of its own it is that of its command; empty
/// without either.
void set_menu_tip(int id, const std::string& tip);
std::string menu_tip(int id);

/// The command of an accelerator, or 0.
int accelerator_command(int key, uint8_t modifiers);
std::span<const KeyChord> accelerator_keys();
