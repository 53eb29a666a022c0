#pragma once
/// Texts and paths between the layer and Qt.

#include <QFile>
#include <QString>

#include <string>

/// Shown texts are UTF-8.
inline QString to_qt(const std::string& text) { return QString::fromStdString(text); }

/// Paths are the host's bytes.
inline std::string path_from_qt(const QString& path) {
    return QFile::encodeName(path).toStdString();
}
