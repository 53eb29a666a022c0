#pragma once
/// What the window shows, as text: for the clipboard and for screen readers.

#include "platform/window.h"

#include <string>

/// The machine's text screen, also while it shows graphics. Every row is followed by `row_end`.
std::string screen_text(const std::string& row_end);
/// The text screen with its cursor, or the page of the monitor while that is open.
ReadableText shown_text();
/// Copies the text screen to the host's clipboard, rows ended by CR LF. A clipboard that another
/// program has locked stays as it is.
void ui_copy_to_clipboard();
