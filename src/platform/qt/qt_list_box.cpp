#include "platform/qt/qt_list_box.h"

#include "platform/qt/qt_text.h"

#include <QHeaderView>
#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr int SHOWN_ITEMS = 10;
constexpr int COLUMN_WIDTH = 15; ///< characters, at least
constexpr int COLUMNS = 2;

} // namespace

QtListBox::QtListBox(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(COLUMNS);
    setHeaderHidden(true);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setTabKeyNavigation(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    header()->setMinimumSectionSize(fontMetrics().horizontalAdvance('0') * COLUMN_WIDTH);
    connect(this, &QTreeWidget::currentItemChanged, this, [this] {
        if (on_choice) on_choice();
    });
}

void QtListBox::set_items(const std::vector<std::string>& items) {
    const QSignalBlocker silent(this);
    while (topLevelItemCount() > int(items.size()))
        delete takeTopLevelItem(topLevelItemCount() - 1);
    for (size_t n = 0; n < items.size(); ++n) {
        const QStringList texts = to_qt(items[n]).split('\t');
        if (int(n) == topLevelItemCount())
            addTopLevelItem(std::make_unique<QTreeWidgetItem>().release());
        for (int column = 0; column < std::min(int(texts.size()), COLUMNS); ++column) {
            topLevelItem(int(n))->setText(column, texts[column]);
        }
    }
    resizeColumnToContents(0);
    const int frame = 2 * frameWidth();
    setMinimumSize(header()->minimumSectionSize() * COLUMNS + frame,
                   fontMetrics().lineSpacing() * SHOWN_ITEMS + frame);
    choose(items.empty() ? -1 : 0);
}

int QtListBox::item() const { return indexOfTopLevelItem(currentItem()); }

QString QtListBox::text() const {
    if (!currentItem()) return {};
    return currentItem()->text(0) + '\t' + currentItem()->text(1);
}

void QtListBox::choose(int item) {
    const QSignalBlocker silent(this);
    setCurrentItem(item < 0 ? nullptr : topLevelItem(item));
}
