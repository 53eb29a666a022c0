#pragma once
/// Texts and paths between the layer and Qt.

#include <QFile>
#include <QString>

#include <string>

/// What is made of a text before it is shown; a test looks at longer ones.
inline QString (*shown_text)(const QString& text) = nullptr;

/// Shown texts are UTF-8.
inline QString to_qt(const std::string& text) {
    const QString shown = QString::fromStdString(text);
    return shown_text ? shown_text(shown) : shown;
}

/// Paths are the host's bytes.
inline std::string path_from_qt(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

/// A text without the mark of its access key.
inline QString plain(const QString& text) {
    QString result;
    for (qsizetype n = 0; n < text.size(); ++n) {
        if (text[n] == '&' && ++n == text.size()) break;
        result += text[n];
    }
    return result;
}
