#include "platform/qt/qt_menu.h"

#include "platform/qt/qt_text.h"

#include <QMenu>
#include <QStyleOption>

#include <memory>

namespace {

void show_mark(QAction& action, bool checked) {
    action.setCheckable(true);
    action.setChecked(checked);
}

void show_state(QAction& action, ItemState state) {
    action.setEnabled(state == ItemState::usual);
    action.setVisible(state != ItemState::hidden);
}

} // namespace

QtMenu::QtMenu(QMenuBar& bar, QtEvents& events) : bar_(bar), events_(events) {
    bar_.setNativeMenuBar(false);
    bar_.setStyle(&style_);
}

void QtMenu::Style::drawControl(ControlElement element, const QStyleOption* option,
                                QPainter* painter, const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element != CE_MenuBarItem || !item || !(item->state & State_Selected))
        return QProxyStyle::drawControl(element, option, painter, widget);
    QStyleOptionMenuItem marked = *item;
    marked.state |= State_Sunken;
    QProxyStyle::drawControl(element, &marked, painter, widget);
}

void QtMenu::set(const std::vector<MenuEntry>& menus) {
    items_.clear();
    bar_.clear();
    for (const MenuEntry& menu : menus) {
        QMenu& pulldown = *bar_.addMenu(to_qt(menu.text));
        QObject::connect(&pulldown, &QMenu::aboutToShow, [this] { events_.menu_opens(); });
        tell_highlighted(*pulldown.menuAction(), 0);
        for (const MenuEntry& entry : menu.children) add(pulldown, entry, true);
    }
}

void QtMenu::tell_highlighted(const QAction& action, int id) {
    QObject::connect(&action, &QAction::hovered, [this, id] { events_.item_highlighted(id); });
}

void QtMenu::add(QMenu& menu, const MenuEntry& entry, bool is_window_menu) {
    if (entry.text.empty()) {
        menu.addSeparator();
        return;
    }
    if (!entry.children.empty()) {
        QMenu& submenu = *menu.addMenu(to_qt(entry.text));
        tell_highlighted(*submenu.menuAction(), 0);
        for (const MenuEntry& child : entry.children) add(submenu, child, is_window_menu);
        return;
    }
    QAction* action = menu.addAction(to_qt(entry.text));
    if (is_window_menu) items_[entry.id] = action;
    if (entry.checked) show_mark(*action, true);
    show_state(*action, entry.state);
    tell_highlighted(*action, entry.id);
    QObject::connect(action, &QAction::triggered,
                     [this, id = entry.id, action] { choose(id, *action); });
}

void QtMenu::choose(int id, QAction& action) {
    // The program decides whether the mark changes.
    if (action.isCheckable()) action.setChecked(!action.isChecked());
    events_.set_menu_open(false);
    events_.post(Event::Kind::command, id);
}

void QtMenu::check(int id, bool checked) {
    const auto item = items_.find(id);
    if (item == items_.end()) return;
    show_mark(*item->second, checked);
}

void QtMenu::set_text(int id, const std::string& text) {
    const auto item = items_.find(id);
    if (item != items_.end()) item->second->setText(to_qt(text));
}

void QtMenu::set_state(int id, ItemState state) {
    const auto item = items_.find(id);
    if (item != items_.end()) show_state(*item->second, state);
}

void QtMenu::popup(const std::vector<MenuEntry>& entries, const QPoint& place) {
    auto* const menu = std::make_unique<QMenu>(bar_.window()).release(); // the window owns it
    QObject::connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    for (const MenuEntry& entry : entries) add(*menu, entry, false);
    menu->popup(place - QPoint(0, menu->sizeHint().height()));
}
