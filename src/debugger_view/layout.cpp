#include "debugger_view/layout.h"

#include <algorithm>

namespace {

using enum SectionId;

constexpr int REGISTER_COLUMNS = 36;
constexpr int REGISTER_ROWS = 8; ///< with the title
constexpr int POINTER_ROWS = 6;  ///< more, with what the pairs point at
constexpr int PICTURE_COLUMNS = 56, PICTURE_ROWS = 24;
constexpr int TIME_ROWS = 2;
constexpr Size MIDDLE = {112, 32}, LARGE = {160, 50};

/// 80 x 25 and the like: listing and registers above all the others.
std::vector<SectionGroup> small_layout(const Rectangle& all) {
    const int middle = all.top + all.height() * 11 / 20;
    const int right = std::max(all.right - REGISTER_COLUMNS, all.left + all.width() / 2);
    const int below = std::min(all.top + REGISTER_ROWS, middle);
    std::vector<SectionGroup> groups = {
        {{all.left, all.top, right, middle}, {listing}},
        {{right, all.top, all.right, below}, {registers}},
        {{right, below, all.right, middle}, {stack, calls, watches}},
        {{all.left, middle, all.right, all.bottom},
         {memory, commands, breakpoints, trace, picture, crtc, sound, disk, ports}}};
    if (middle - below >= 3) return groups;
    groups[1].cells.bottom = middle;
    groups[3].sections.insert(groups[3].sections.begin() + 4, {stack, calls, watches});
    groups.erase(groups.begin() + 2);
    return groups;
}

/// Three columns: registers and stack; listing and memory; the picture and what else there is.
std::vector<SectionGroup> middle_layout(const Rectangle& all) {
    const int left = all.left + REGISTER_COLUMNS;
    const int right = all.right - std::max(36, all.width() / 4);
    const int registers_end = all.top + REGISTER_ROWS + POINTER_ROWS;
    const int middle = all.top + all.height() * 6 / 10;
    return {{{all.left, all.top, left, registers_end}, {registers}},
            {{all.left, registers_end, left, all.bottom}, {stack, calls, watches}},
            {{left, all.top, right, middle}, {listing}},
            {{left, middle, right, all.bottom}, {memory}},
            {{right, all.top, all.right, middle}, {picture, crtc, sound, disk, ports}},
            {{right, middle, all.right, all.bottom}, {commands, breakpoints, trace}}};
}

/// The same, where nearly everything has a place of its own.
std::vector<SectionGroup> large_layout(const Rectangle& all) {
    const int left = all.left + REGISTER_COLUMNS;
    const int right = all.right - std::max(PICTURE_COLUMNS, all.width() * 3 / 10);
    const int registers_end = all.top + REGISTER_ROWS + POINTER_ROWS;
    const int third = (all.bottom - registers_end) / 3;
    const int listing_end = all.top + all.height() * 5 / 10;
    const int memory_end = all.top + all.height() * 8 / 10;
    const int picture_end = all.top + std::min(PICTURE_ROWS, all.height() * 35 / 100);
    const int chips_end = picture_end + std::min(20, all.height() * 4 / 10);
    return {{{all.left, all.top, left, registers_end}, {registers}},
            {{all.left, registers_end, left, registers_end + third}, {stack}},
            {{all.left, registers_end + third, left, registers_end + 2 * third}, {calls}},
            {{all.left, registers_end + 2 * third, left, all.bottom}, {watches}},
            {{left, all.top, right, listing_end}, {listing}},
            {{left, listing_end, right, memory_end}, {memory}},
            {{left, memory_end, right, all.bottom}, {commands}},
            {{right, all.top, all.right, picture_end}, {picture}},
            {{right, picture_end, all.right, chips_end}, {crtc, sound, disk, ports}},
            {{right, chips_end, all.right, all.bottom}, {trace, breakpoints}}};
}

} // namespace

std::vector<SectionGroup> view_layout(const Rectangle& cells) {
    const auto has = [&](Size size) {
        return cells.width() >= size.width && cells.height() >= size.height;
    };
    const int time = std::max(cells.bottom - TIME_ROWS, cells.top);
    const Rectangle all = {cells.left, cells.top, cells.right, time};
    const auto groups_of = has(LARGE) ? large_layout : has(MIDDLE) ? middle_layout : small_layout;
    std::vector<SectionGroup> groups = groups_of(all);
    groups.push_back({{cells.left, time, cells.right, cells.bottom}, {time_line}});
    return groups;
}
