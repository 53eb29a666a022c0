#pragma once
/// Where the sections are in a window of some size. A group is a rectangle with a title row, in
/// which one of its sections is shown.

#include "debugger_view/services.h"
#include "platform/geometry.h"

#include <vector>

struct SectionGroup {
    Rectangle cells; ///< the title row is the first one
    std::vector<SectionId> sections;
};

/// For so many cells between the rows above and below. All sections are somewhere, whatever the
/// size; the smaller it is, the more of them share a group.
std::vector<SectionGroup> view_layout(const Rectangle& cells);
