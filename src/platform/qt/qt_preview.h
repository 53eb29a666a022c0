#pragma once
/// The panel of a file dialog that says what is in the file that is marked.

#include "platform/dialogs.h"

#include <QFileDialog>

/// Adds it at the side of the list of files, where the dialog has a preview and is Qt's own.
void add_preview(QFileDialog& box, const FileDialog& dialog);
