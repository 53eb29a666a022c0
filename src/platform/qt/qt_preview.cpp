#include "platform/qt/qt_preview.h"

#include "platform/qt/qt_text.h"

#include <QFileInfo>
#include <QFontDatabase>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QTreeView>

#include <algorithm>
#include <memory>

namespace {

constexpr int WIDTH = 34; ///< characters of a line
constexpr int LIST_WIDTH = 46;
constexpr int LEAST_WIDTH = 16;
constexpr int SIDEBAR_WIDTH = 14;
constexpr int TYPE_COLUMN = 2; ///< the name's ending says as much

} // namespace

void add_preview(QFileDialog& box, const FileDialog& dialog) {
    auto* splitter = box.findChild<QSplitter*>("splitter");
    if (!dialog.preview || !splitter) return;
    auto* panel = std::make_unique<QPlainTextEdit>().release();
    panel->setReadOnly(true);
    panel->setTabChangesFocus(true);
    panel->setLineWrapMode(QPlainTextEdit::NoWrap);
    panel->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    panel->setAccessibleName("What is in the file");
    panel->setPlaceholderText("What is in the file\nthat is marked");
    const int character = panel->fontMetrics().horizontalAdvance('0');
    panel->setMinimumWidth(character * LEAST_WIDTH);
    splitter->addWidget(panel); // owns the panel now
    splitter->setCollapsible(splitter->indexOf(panel), false);
    const QList<int> widths = {character * SIDEBAR_WIDTH, character * LIST_WIDTH,
                               character * WIDTH};
    box.resize(character * (SIDEBAR_WIDTH + LIST_WIDTH + WIDTH + 4),
               std::max(box.height(), box.sizeHint().height()));
    splitter->setSizes(widths);
    if (auto* files = box.findChild<QTreeView*>("treeView")) files->hideColumn(TYPE_COLUMN);
    const auto show = [panel, preview = dialog.preview](const QString& path) {
        QStringList lines;
        for (const std::string& line : preview(path_from_qt(path))) lines += to_qt(line);
        panel->setPlainText(lines.join('\n'));
    };
    QObject::connect(&box, &QFileDialog::currentChanged, panel, show);
    auto* name = box.findChild<QLineEdit*>("fileNameEdit");
    QObject::connect(name, &QLineEdit::textEdited, panel, [&box, show](const QString& typed) {
        const QFileInfo file(box.directory(), typed);
        if (file.isFile()) show(file.filePath());
    });
}
