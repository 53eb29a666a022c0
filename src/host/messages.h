#pragma once
/// The list of messages: what was reported in this run, newest last, and when a message box is due.

#include "wall/report.h"

#include <deque>
#include <functional>
#include <string>

struct KeptMessage {
    std::string time; ///< of day, hours to seconds
    std::string line;
};

/// What `report` does in this program. The status bar shows the text, with the details in its tool
/// tip; the list of messages keeps it; warnings and failures also go to the standard error stream.
/// A message box comes up only for a failure of what the user has asked for at this moment, and
/// once the window is up.
void tell(const Report& told);
/// The latest reports of this run, 200 at most; the oldest are dropped.
const std::deque<KeptMessage>& kept_messages();
/// True once a failure has been reported.
bool failure_was_reported();

/// While an object of this class lives, the program does what the user has just asked for, and a
/// failure opens a message box.
class UserCommand {
public:
    UserCommand();
    ~UserCommand();
    UserCommand(const UserCommand&) = delete;
    UserCommand& operator=(const UserCommand&) = delete;
};

/// Calls `act`, which does what the user has just asked for, and `behind` when all dialogs of it
/// are answered.
void obey_user(const std::function<void()>& act, std::function<void()> behind = {});

/// From now on message boxes wait, since there is no window yet. Forgets earlier messages.
void hold_message_boxes();
/// True from hold_message_boxes until show_held_message_boxes.
bool message_boxes_are_held();
/// Shows the boxes that wait, one after the other. Start-up itself counts as the user's command.
void show_held_message_boxes();

/// Shows the list of messages in a dialog.
void ui_messages();
