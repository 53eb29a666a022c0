#pragma once
#include "platform/dialogs.h"
#include "platform/win32/win32_context.h"

#include <optional>
#include <string>

/// Shows Windows' dialog for a file to open or to save, with a panel of the program's own where the
/// dialog has fields or a preview. It opens in `folder`, unless that is empty, and sets it.
std::optional<FileChoice> ask_win32_for_file(Win32Context& context, const FileDialog& dialog,
                                             std::wstring& folder);
