#pragma once
/// The platform's dialogs. The shell is held (hold.h) from the call until the answer has been
/// handed over.

#include "platform/dialogs.h"
#include "platform/forms.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// See Dialogs::choose.
void ask(const std::string& title, const std::string& text, const std::vector<std::string>& answers,
         std::function<void(int answer)> done);
/// See Dialogs::choose_file.
void ask_for_file(const FileDialog& dialog, std::function<void(std::optional<FileChoice>)> done);
/// See Dialogs::message.
void show_message(const std::string& title, const std::string& text, MessageIcon icon);
/// Opens a form that the main window goes on beside, to its right when there is room.
void show_beside_window(Form& form);
/// See Form::run. The form lives until `done` has been called.
void run_form(const std::shared_ptr<Form>& form, std::function<void(int closing_id)> done);
