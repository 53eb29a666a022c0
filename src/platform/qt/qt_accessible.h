#pragma once
/// What screen readers find in the program's windows beside Qt's own widgets: the client area as a
/// terminal with its text, the status bar with a label for each part, the debugger as another text.

#include <QString>

/// The part in which two texts differ: from the first difference to the last.
struct TextChange {
    qsizetype place = 0;
    QString removed, inserted;
};
TextChange text_change(const QString& before, const QString& after);

/// Makes both known to Qt. Before a window is made.
void qt_install_accessibility();
