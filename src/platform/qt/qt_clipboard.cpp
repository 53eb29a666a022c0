#include "platform/qt/qt_clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

std::optional<std::string> QtClipboard::text() {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (!data || !data->hasText()) return std::nullopt;
    QByteArray bytes = data->text().toLatin1();
    bytes.replace("\r\n", "\n").replace('\r', '\n').replace("\n", "\r\n");
    return bytes.toStdString();
}

bool QtClipboard::set_text(const std::string& text) {
    QByteArray bytes = QByteArray::fromStdString(text);
    bytes.replace("\r\n", "\n");
    QGuiApplication::clipboard()->setText(QString::fromLatin1(bytes));
    return true;
}
