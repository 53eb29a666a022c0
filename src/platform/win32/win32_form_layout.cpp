#include "platform/win32/win32_form_layout.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr int GROUP_TOP = 6;  ///< points below its title
constexpr int GROUP_SIDE = 9; ///< points

bool takes_width(const FormNode& node) {
    if (node.control && node.kind != ControlKind::group) return node.control->takes_width();
    if (node.kind == ControlKind::buttons) return true;
    return std::ranges::any_of(node.children, takes_width);
}

bool takes_height(const FormNode& node) {
    if (node.control && node.kind != ControlKind::group) return node.control->takes_height();
    return std::ranges::any_of(node.children, takes_height);
}

/// Gives what is left to those that take it, or to all.
void share(int left, std::vector<int>& sizes, std::vector<bool> takes) {
    if (left <= 0 || sizes.empty()) return;
    int count = int(std::ranges::count(takes, true));
    for (size_t n = 0; n < sizes.size() && count; ++n) {
        if (!takes[n]) continue;
        const int part = left / count--;
        sizes[n] += part;
        left -= part;
    }
}

int sum(const std::vector<int>& sizes) { return std::accumulate(sizes.begin(), sizes.end(), 0); }

} // namespace

int Win32FormLayout::wanted_width(const FormNode& node) const {
    const int gaps = spacing() * std::max(int(node.children.size()) - 1, 0);
    int width = 0;
    switch (node.kind) {
    case ControlKind::row:
        for (const FormNode& child : node.children) width += wanted_width(child);
        return width + gaps;
    case ControlKind::buttons: return button_rows(node, room_).width;
    case ControlKind::grid: {
        const std::vector<int> columns = grid_columns(node);
        return sum(columns) + spacing() * std::max(int(columns.size()) - 1, 0);
    }
    case ControlKind::column:
    case ControlKind::group:
    case ControlKind::scroll:
        for (const FormNode& child : node.children) width = std::max(width, wanted_width(child));
        break;
    default: return node.control ? node.control->wanted_width() : 0;
    }
    if (node.kind == ControlKind::group) {
        return std::max(width + 2 * scale_.pixels(GROUP_SIDE), node.control->wanted_width());
    }
    return width + (node.limit ? GetSystemMetrics(SM_CXVSCROLL) : 0);
}

std::vector<int> Win32FormLayout::grid_columns(const FormNode& node) const {
    std::vector<int> columns;
    for (const FormNode& row : node.children) {
        columns.resize(std::max(columns.size(), row.children.size()));
        for (size_t n = 0; n < row.children.size(); ++n) {
            columns[n] = std::max(columns[n], wanted_width(row.children[n]));
        }
    }
    return columns;
}

/// Of the children of a row, or the columns of a grid.
std::vector<int> Win32FormLayout::widths(const FormNode& node, int width) const {
    std::vector<int> sizes;
    std::vector<bool> takes;
    if (node.kind == ControlKind::grid) {
        sizes = grid_columns(node);
        takes.resize(sizes.size());
        for (const FormNode& row : node.children) {
            for (size_t n = 0; n < row.children.size(); ++n) {
                if (takes_width(row.children[n])) takes[n] = true;
            }
        }
    } else {
        for (const FormNode& child : node.children) {
            sizes.push_back(wanted_width(child));
            takes.push_back(takes_width(child));
        }
    }
    share(width - sum(sizes) - spacing() * std::max(int(sizes.size()) - 1, 0), sizes, takes);
    return sizes;
}

int Win32FormLayout::row_height(const FormNode& node, const std::vector<int>& widths) const {
    int height = 0;
    for (size_t n = 0; n < node.children.size(); ++n) {
        height = std::max(height, wanted_height(node.children[n], widths[n]));
    }
    return height;
}

int Win32FormLayout::column_height(const FormNode& node, int width) const {
    int height = spacing() * std::max(int(node.children.size()) - 1, 0);
    for (const FormNode& child : node.children) height += wanted_height(child, width);
    return height;
}

int Win32FormLayout::wanted_height(const FormNode& node, int width) const {
    switch (node.kind) {
    case ControlKind::row: return row_height(node, widths(node, width));
    case ControlKind::grid: {
        const std::vector<int> columns = widths(node, width);
        int height = spacing() * std::max(int(node.children.size()) - 1, 0);
        for (const FormNode& row : node.children) height += row_height(row, columns);
        return height;
    }
    case ControlKind::buttons: {
        const Buttons buttons = button_rows(node, width);
        if (buttons.rows.empty()) return 0;
        const int row = wanted_height(node.children.front(), 0);
        return int(buttons.rows.size()) * (row + spacing()) - spacing();
    }
    case ControlKind::group: {
        const RECT inside = group_inside({0, 0, width, 0});
        return column_height(node, int(inside.right - inside.left)) +
               int(inside.top - inside.bottom);
    }
    case ControlKind::column: return column_height(node, width);
    case ControlKind::scroll: {
        const int bar = node.limit ? GetSystemMetrics(SM_CXVSCROLL) : 0;
        const int height = column_height(node, width - bar);
        return node.limit ? std::min(height, node.limit) : height;
    }
    default: return node.control ? node.control->wanted_height(width) : 0;
    }
}

RECT Win32FormLayout::group_inside(const RECT& frame) const {
    const int side = scale_.pixels(GROUP_SIDE);
    return {frame.left + side, frame.top + scale_.line() + scale_.pixels(GROUP_TOP),
            frame.right - side, frame.bottom - side};
}

void Win32FormLayout::place(const FormNode& node, const RECT& area) const {
    const int width = int(area.right - area.left);
    switch (node.kind) {
    case ControlKind::column: return place_column(node, area);
    case ControlKind::row: return place_row(node, area, widths(node, width));
    case ControlKind::buttons: return place_buttons(node, area);
    case ControlKind::grid: {
        const std::vector<int> columns = widths(node, width);
        RECT row_area = area;
        for (const FormNode& row : node.children) {
            row_area.bottom = row_area.top + row_height(row, columns);
            place_row(row, row_area, columns);
            row_area.top = row_area.bottom + spacing();
        }
        return;
    }
    case ControlKind::group:
        node.control->move(area);
        return place_column(node, group_inside(area));
    case ControlKind::scroll: {
        const int inner = width - (node.limit ? GetSystemMetrics(SM_CXVSCROLL) : 0);
        const int height = std::max(column_height(node, inner), int(area.bottom - area.top));
        node.panel->move(area, height);
        const int top = -node.panel->offset();
        return place_column(node, {0, top, inner, top + height});
    }
    default: return place_control(node, area);
    }
}

void Win32FormLayout::place_column(const FormNode& node, const RECT& area) const {
    const int width = int(area.right - area.left);
    std::vector<int> heights;
    std::vector<bool> takes;
    for (const FormNode& child : node.children) {
        heights.push_back(wanted_height(child, width));
        takes.push_back(takes_height(child));
    }
    const int gaps = spacing() * std::max(int(heights.size()) - 1, 0);
    share(int(area.bottom - area.top) - sum(heights) - gaps, heights, takes);
    RECT each = area;
    for (size_t n = 0; n < heights.size(); ++n) {
        each.bottom = each.top + heights[n];
        place(node.children[n], each);
        each.top = each.bottom + spacing();
    }
}

/// Controls of one row stand at one height, in the middle.
void Win32FormLayout::place_row(const FormNode& node, const RECT& area,
                                const std::vector<int>& widths) const {
    RECT each = area;
    for (size_t n = 0; n < node.children.size(); ++n) {
        const FormNode& child = node.children[n];
        each.right = each.left + widths[n];
        each.top = area.top;
        each.bottom = area.bottom;
        if (child.control && child.kind != ControlKind::group && !takes_height(child)) {
            const int height = wanted_height(child, widths[n]);
            each.top += (area.bottom - area.top - height) / 2;
            each.bottom = each.top + height;
        }
        place(child, each);
        each.left = each.right + spacing();
    }
}

void Win32FormLayout::place_control(const FormNode& node, const RECT& area) const {
    if (!node.control) return;
    RECT own = area;
    const bool button = node.kind == ControlKind::button;
    if (!node.control->takes_width() && !button) {
        own.right = std::min(own.right, own.left + node.control->wanted_width());
    }
    node.control->move(own);
}

Win32FormLayout::Buttons Win32FormLayout::button_rows(const FormNode& node, int width) const {
    Buttons result;
    int used = 0;
    for (const FormNode& child : node.children) {
        const int wanted = wanted_width(child);
        if (result.rows.empty() || used + spacing() + wanted > width) {
            result.rows.emplace_back();
            used = -spacing();
        }
        result.rows.back().push_back(&child);
        used += spacing() + wanted;
        result.width = std::max(result.width, used);
    }
    return result;
}

void Win32FormLayout::place_buttons(const FormNode& node, const RECT& area) const {
    int top = int(area.top);
    for (const auto& row : button_rows(node, int(area.right - area.left)).rows) {
        int width = -spacing();
        for (const FormNode* button : row) width += wanted_width(*button) + spacing();
        const int height = wanted_height(*row.front(), 0);
        int left = std::max(int(area.right) - width, int(area.left));
        for (const FormNode* button : row) {
            const int right = left + wanted_width(*button);
            button->control->move({left, top, right, top + height});
            left = right + spacing();
        }
        top += height + spacing();
    }
}
