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
constexpr Qt::Alignment TEXT = Qt::AlignLeft | Qt::AlignVCenter;

bool is_number(const QString& cell) {
    return !cell.isEmpty() && std::ranges::all_of(cell, [](QChar c) { return c.isDigit(); });
}

} // namespace

QtTable::QtTable(QWidget* parent, const std::vector<std::string>& headings, QSize area)
    : QTreeWidget(parent) {
    constexpr int COLUMNS = 2; // where no headings say otherwise
    const int character = fontMetrics().horizontalAdvance('0');
    QStringList texts;
    for (const std::string& heading : headings) texts += to_qt(heading);
    if (texts.isEmpty()) {
        setColumnCount(COLUMNS);
        header()->setMinimumSectionSize(character * area.width() / COLUMNS);
    } else {
        setHeaderLabels(texts);
    }
    setHeaderHidden(texts.isEmpty());
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(!texts.isEmpty());
    setTabKeyNavigation(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    header()->setSectionsMovable(false);
    const int row = std::max(fontMetrics().height() + 4, sizeHintForRow(0));
    const int top = texts.isEmpty() ? 0 : header()->sizeHint().height();
    setMinimumSize(character * area.width() + verticalScrollBar()->sizeHint().width(),
                   top + row * area.height() + 2 * frameWidth());
    connect(this, &QTreeWidget::currentItemChanged, this, [this] { on_choice(); });
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this] {
        if (on_activation) on_activation();
    });
}

void QtTable::set_rows(const std::vector<std::string>& rows) {
    const QSignalBlocker silent(this);
    const int before = keeps_row ? std::max(row(), 0) : 0;
    const int top = verticalScrollBar()->value();
    while (topLevelItemCount() > int(rows.size())) {
        delete takeTopLevelItem(topLevelItemCount() - 1);
    }
    for (size_t n = 0; n < rows.size(); ++n) {
        if (int(n) == topLevelItemCount()) {
            addTopLevelItem(std::make_unique<QTreeWidgetItem>().release());
        }
        set_cells(*topLevelItem(int(n)), to_qt(rows[n]).split('\t'));
    }
    fit_columns();
    choose(std::min(before, int(rows.size()) - 1));
    verticalScrollBar()->setValue(top);
}

void QtTable::set_cells(QTreeWidgetItem& row, const QStringList& texts) {
    for (int column = 0; column < columnCount(); ++column) {
        const QString text = column < texts.size() ? texts[column] : QString();
        row.setText(column, text);
        const bool number = !isHeaderHidden() && is_number(text);
        row.setTextAlignment(column, number ? NUMBER : TEXT);
        if (number) headerItem()->setTextAlignment(column, NUMBER);
    }
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
    if (!enter || !currentItem() || !on_activation) return QTreeWidget::keyPressEvent(event);
    on_activation(); // and not the form's default button
}

void QtTable::fit_columns() {
    for (int column = 0; column + 1 < columnCount(); ++column) {
        resizeColumnToContents(column);
        setColumnWidth(column, columnWidth(column) + COLUMN_SPACING);
    }
}
