#include "platform/qt/qt_table.h"

#include "platform/qt/qt_text.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>
#include <memory>

namespace {

constexpr int COLUMN_SPACING = 16; ///< pixels behind the widest cell

constexpr Qt::Alignment NUMBER = Qt::AlignRight | Qt::AlignVCenter;

bool is_number(const QString& cell) {
    return !cell.isEmpty() && std::ranges::all_of(cell, [](QChar c) { return c.isDigit(); });
}

} // namespace

QtTable::QtTable(QWidget* parent, const std::vector<std::string>& headings, QSize area)
    : QTreeWidget(parent) {
    QStringList texts;
    for (const std::string& heading : headings) texts += to_qt(heading);
    setHeaderLabels(texts);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    header()->setSectionsMovable(false);
    const int row = std::max(fontMetrics().height() + 4, sizeHintForRow(0));
    setMinimumSize(fontMetrics().horizontalAdvance('0') * area.width() +
                       verticalScrollBar()->sizeHint().width(),
                   header()->sizeHint().height() + row * area.height() + 2 * frameWidth());
    connect(this, &QTreeWidget::currentItemChanged, this, [this] { on_choice(); });
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this] { on_activation(); });
}

void QtTable::set_rows(const std::vector<std::string>& rows) {
    const QSignalBlocker silent(this);
    const int before = std::max(row(), 0);
    const int top = verticalScrollBar()->value();
    clear();
    for (const std::string& cells : rows) {
        const QStringList texts = to_qt(cells).split('\t');
        auto* item = std::make_unique<QTreeWidgetItem>(this, texts).release();
        for (int column = 0; column < texts.size(); ++column) {
            if (!is_number(texts[column])) continue;
            item->setTextAlignment(column, NUMBER);
            headerItem()->setTextAlignment(column, NUMBER);
        }
    }
    fit_columns();
    choose(std::min(before, int(rows.size()) - 1));
    verticalScrollBar()->setValue(top);
}

int QtTable::row() const { return indexOfTopLevelItem(currentItem()); }

void QtTable::choose(int row) {
    const QSignalBlocker silent(this);
    setCurrentItem(topLevelItem(row));
}

QString QtTable::text() const {
    QStringList cells;
    for (int column = 0; currentItem() && column < columnCount(); ++column) {
        cells += currentItem()->text(column);
    }
    return cells.join('\t');
}

void QtTable::keyPressEvent(QKeyEvent* event) {
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!enter || !currentItem()) return QTreeWidget::keyPressEvent(event);
    on_activation(); // and not the form's default button
}

void QtTable::fit_columns() {
    for (int column = 0; column + 1 < columnCount(); ++column) {
        resizeColumnToContents(column);
        setColumnWidth(column, columnWidth(column) + COLUMN_SPACING);
    }
}
