#pragma once
#include "platform/qt/qt_events.h"
#include "platform/window.h"

#include <QAction>
#include <QMenuBar>
#include <QProxyStyle>

#include <map>

/// The menu bar. Key hints are only texts: the program handles the keys itself.
class QtMenu {
public:
    QtMenu(QMenuBar& bar, QtEvents& events);

    void set(const std::vector<MenuEntry>& menus);
    /// From the first call on, the item shows whether it is checked.
    void check(int id, bool checked);
    void set_text(int id, const std::string& text);
    void set_state(int id, ItemState state);
    /// A menu of its own, its lower left corner at the point where it fits there.
    void popup(const std::vector<MenuEntry>& entries, const QPoint& place);

private:
    /// Marks the chosen menu also while none is pulled down: the bar has the keyboard then, and the
    /// machine stands still.
    class Style final : public QProxyStyle {
    public:
        void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                         const QWidget* widget) const override;
    };

    void add(QMenu& menu, const MenuEntry& entry, bool is_window_menu);
    void choose(int id, QAction& action);
    void tell_highlighted(const QAction& action, int id);

    Style style_;
    QMenuBar& bar_;
    QtEvents& events_;
    std::map<int, QAction*> items_;
};
