#pragma once
/// The page's menu bar and menus beside it. Their looks and keys are the page's; it tells what is
/// about to be shown, what is highlighted and what was chosen.

#include "platform/window.h"

struct WebMenu {
    void set(const std::vector<MenuEntry>& menus);
    void check(int id, bool checked);
    void set_text(int id, const std::string& text);
    void set_state(int id, ItemState state);
    /// Coordinates of the client area.
    void popup(const std::vector<MenuEntry>& entries, int x, int y);
};
