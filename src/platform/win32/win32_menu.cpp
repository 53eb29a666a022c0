#include "platform/win32/win32_menu.h"

#include <utility>

namespace {

void append_entry(HMENU menu, const MenuEntry& entry, HMENU submenu) {
    if (submenu) {
        AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(submenu), wide(entry.text).c_str());
        return;
    }
    const UINT flags = (entry.checked ? MF_CHECKED : MF_UNCHECKED) |
                       (entry.state == ItemState::greyed ? MF_GRAYED : MF_ENABLED);
    AppendMenuW(menu, flags, UINT_PTR(entry.id), wide(entry.text).c_str());
}

} // namespace

/// The submenus belong to their menu, which destroys them with itself.
HMENU Win32Menu::build(Lists& lists, const std::vector<MenuEntry>& entries, HMENU menu) {
    List list{.menu = menu, .items = {}};
    for (const MenuEntry& entry : entries) {
        Item item;
        item.entry.id = entry.id;
        item.entry.text = entry.text;
        item.entry.checked = entry.checked;
        item.entry.state = entry.state;
        if (!entry.children.empty()) item.submenu = build(lists, entry.children, CreatePopupMenu());
        list.items.push_back(std::move(item));
    }
    fill(list);
    lists.push_back(std::move(list));
    return menu;
}

/// Of separators that have nothing between them, one is shown, and none at either end.
void Win32Menu::fill(const List& list) {
    while (GetMenuItemCount(list.menu) > 0) RemoveMenu(list.menu, 0, MF_BYPOSITION);
    bool separator = false;
    bool first = true;
    for (const auto& [entry, submenu] : list.items) {
        if (entry.text.empty()) {
            separator = !first;
            continue;
        }
        if (entry.state == ItemState::hidden) continue;
        if (std::exchange(separator, false)) AppendMenuW(list.menu, MF_SEPARATOR, 0, nullptr);
        append_entry(list.menu, entry, submenu);
        first = false;
    }
}

void Win32Menu::set(const std::vector<MenuEntry>& menus) {
    lists_.clear();
    places_.clear();
    bar_.reset(build(lists_, menus, CreateMenu()));
    for (size_t list = 0; list < lists_.size(); ++list) {
        for (size_t item = 0; item < lists_[list].items.size(); ++item) {
            const int id = lists_[list].items[item].entry.id;
            if (id) places_[id] = {list, item};
        }
    }
}

Win32Menu::Item* Win32Menu::find(int id) {
    const auto place = places_.find(id);
    return place == places_.end() ? nullptr : &lists_[place->second.list].items[place->second.item];
}

void Win32Menu::check(int id, bool checked) {
    Item* item = find(id);
    if (!item) return;
    item->entry.checked = checked;
    CheckMenuItem(bar(), UINT(id), MF_BYCOMMAND | (checked ? MF_CHECKED : MF_UNCHECKED));
}

void Win32Menu::set_text(int id, const std::string& text) {
    Item* item = find(id);
    if (!item) return;
    item->entry.text = text;
    std::wstring shown = wide(text);
    MENUITEMINFOW info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_STRING;
    info.dwTypeData = shown.data();
    SetMenuItemInfoW(bar(), UINT(id), FALSE, &info);
}

void Win32Menu::set_state(int id, ItemState state) {
    Item* item = find(id);
    if (!item) return;
    const ItemState before = std::exchange(item->entry.state, state);
    if (before == state) return;
    if (before == ItemState::hidden || state == ItemState::hidden)
        return fill(lists_[places_[id].list]);
    EnableMenuItem(bar(), UINT(id),
                   MF_BYCOMMAND | (state == ItemState::greyed ? MF_GRAYED : MF_ENABLED));
}

bool Win32Menu::is_of_bar(HMENU menu) const {
    for (int n = 0; n < GetMenuItemCount(bar()); ++n) {
        if (GetSubMenu(bar(), n) == menu) return true;
    }
    return false;
}

void Win32Menu::prepare_popup(const std::vector<MenuEntry>& entries, POINT place) {
    Lists lists;
    popup_.reset(build(lists, entries, CreatePopupMenu()));
    popup_place_ = place;
}

void Win32Menu::show_popup(HWND window) {
    const Handle menu = std::move(popup_);
    if (!menu) return;
    TrackPopupMenuEx(menu.get(), TPM_LEFTALIGN | TPM_BOTTOMALIGN, int(popup_place_.x),
                     int(popup_place_.y), window, nullptr);
}
