#include "debugger_view/row_list.h"

#include "platform/keyboard.h"

#include <algorithm>
#include <utility>

void RowList::fit(int count, int shown) {
    rows = count;
    room = std::max(shown, 1);
    at = std::clamp(at, 0, std::max(rows - 1, 0));
    if (!scrolled) top = std::clamp(top, at - room + 1, at);
    top = std::clamp(top, 0, std::max(rows - room, 0));
}

void RowList::choose(int row) {
    at = std::clamp(row, 0, std::max(rows - 1, 0));
    scrolled = false;
}

void RowList::move_by(int count) {
    rows += count;
    at += count;
    top += count;
}

void RowList::scroll(int count) {
    top = std::clamp(top + count, 0, std::max(rows - room, 0));
    scrolled = true;
}

bool RowList::key(const Event& event) {
    switch (event.value) {
    case KEY_UP: choose(at - 1); return true;
    case KEY_DOWN: choose(at + 1); return true;
    case KEY_PAGE_UP: choose(at - room); return true;
    case KEY_PAGE_DOWN: choose(at + room); return true;
    case KEY_HOME: choose(0); return true;
    case KEY_END: choose(rows - 1); return true;
    default: return false;
    }
}
