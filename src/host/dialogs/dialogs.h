#pragma once
/// What the program's dialogs show, and what becomes of the answers.

#include "platform/dialogs.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Numbers of the file dialogs.
enum FileDialogType : int {
    DIALOG_LOAD_CMD = 0,
    DIALOG_LOAD_BAS = 1,
    DIALOG_ATTACH_WAV = 2,
    DIALOG_ATTACH_CAS = 3,
    DIALOG_AUTOSTART = 4,
    DIALOG_ATTACH_DISK = 5,
    DIALOG_SELECT_ROM = 6,
    DIALOG_LOAD_SNAPSHOT = 7,
    DIALOG_LOAD_STATE = 8,
    DIALOG_CREATE_WAV = 9,
    DIALOG_MEMORY_AS_CAS = 10,
    DIALOG_SCREENSHOT_AS = 11,
    DIALOG_SAVE_CAS = 12,
    DIALOG_SAVE_SNAPSHOT = 13,
    DIALOG_SAVE_VIDEO = 14,
    DIALOG_SAVE_WAV = 15,
    DIALOG_SAVE_DISK = 16,
    DIALOG_SAVE_STATE = 17,
    DIALOG_PLAY_REPLAY = 19,
    DIALOG_RECORD_REPLAY = 20,
    DIALOG_NEW_DISK = 21,
    DIALOG_NEW_TAPE = 22
};

/// A dialog hands its answer over before the call returns or later. The shell is held until then.

using PathChoice = std::function<void(const std::optional<std::string>& path)>;
/// Shows the file dialog of the type. Nothing is chosen when it is cancelled. The name of a file to
/// save gets the type's extension when it has no point; an existing file is only chosen when the
/// user agrees that it is replaced.
void ui_select_file(int type, PathChoice done);
/// Adds a filter to the dialogs of this type, in front of the one for all files; a second call
/// replaces it.
void ui_offer_filter(int type, const FileFilter& filter);
/// What the dialogs that open files show beside a file that is marked, see FileDialog::preview.
void ui_offer_preview(std::function<std::vector<std::string>(const std::string& path)> preview);
/// Shows lines of text in a box of their own.
void ui_show_text(const std::string& title, const std::string& text,
                  std::function<void()> done = {});
/// From, end and start address of the address panel, as typed.
void ui_get_casdata(std::array<std::string, 3>* addresses);
/// Name, version, and the link to the user manual: beside the program in its place of installation,
/// or else the program's folder.
void ui_about_dialog();
/// Opens a page of the manual, a file in its folder, in the user's browser. Reports what fails.
void ui_open_manual(const char* page);
/// Chooses the model or sets up the user's own configuration, and applies it on OK. `done` is
/// called on OK and on Cancel.
void ui_machine_config(std::function<void()> done);
/// Opens the video setup beside the main window, or brings it to the front. Every change is in the
/// palette at once; `changed` is called behind it, to show it.
void ui_display_setup(std::function<void()> changed);
/// Frees the forms that are kept between two showings. To be called before the platform ends.
void ui_free_forms();
/// Asks for an address and arms the breakpoint there, then calls `done`; nothing when the user
/// cancels.
void ui_machine_set_breakpoint(std::function<void()> done);
/// Lets the user change the level, 0 to 239. `done` gets the new one, or `level` when the user
/// cancels.
void ui_tape_adjust_head(int level, std::function<void(int level)> done);
