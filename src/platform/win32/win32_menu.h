#pragma once
/// The menu of the main window, and menus that open beside it.

#include "platform/win32/win32_context.h"
#include "platform/window.h"

#include <map>
#include <memory>
#include <type_traits>
#include <vector>

class Win32Menu {
public:
    void set(const std::vector<MenuEntry>& menus);
    void check(int id, bool checked);
    void set_text(int id, const std::string& text);
    void set_state(int id, ItemState state);
    HMENU bar() const { return bar_.get(); }
    /// Is it one of the menus that the bar opens?
    bool is_of_bar(HMENU menu) const;

    /// Holds a menu of its own ready, its lower left corner at the point of the desktop.
    void prepare_popup(const std::vector<MenuEntry>& entries, POINT place);
    /// Shows that menu, which is then gone again. What is chosen comes as WM_COMMAND.
    void show_popup(HWND window);

private:
    struct Destroyer {
        void operator()(HMENU menu) const { DestroyMenu(menu); }
    };
    using Handle = std::unique_ptr<std::remove_pointer_t<HMENU>, Destroyer>;

    struct Item {
        MenuEntry entry; ///< without its children
        HMENU submenu = nullptr;
    };
    /// The items of one menu, hidden ones too. Windows knows only those that are shown.
    struct List {
        HMENU menu = nullptr;
        std::vector<Item> items;
    };
    struct Place {
        size_t list = 0;
        size_t item = 0;
    };
    using Lists = std::vector<List>;

    static HMENU build(Lists& lists, const std::vector<MenuEntry>& entries, HMENU menu);
    static void fill(const List& list);
    Item* find(int id);

    Handle bar_;
    Lists lists_; ///< of the bar
    std::map<int, Place> places_;
    Handle popup_;
    POINT popup_place_{};
};
