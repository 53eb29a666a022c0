#include "debugger_view/fact_list.h"

#include <algorithm>
#include <cmath>

void FactSection::draw(CellPainter& out, const SectionLook& look) {
    shown = facts();
    if (before.size() != shown.size()) before = shown;
    list.fit(int(shown.size()), out.rows());
    size_t names = 0, values = 0;
    for (const Fact& fact : shown) {
        names = std::max(names, fact.name.size());
        values = std::max(values, fact.value.size());
    }
    for (int row = 0; row < out.rows(); ++row) {
        const auto number = size_t(list.first()) + size_t(row);
        if (number >= shown.size()) break;
        const Fact& fact = shown[number];
        const bool is_cursor = int(number) == list.cursor() && look.focused;
        CellStyle name = look.theme.quiet, meaning = look.theme.text;
        CellStyle value = fact.value == before[number].value ? meaning : look.theme.changed;
        if (is_cursor) out.clear_row(row, name = value = meaning = look.cursor());
        out.text(0, row, fact.name, name);
        out.text(int(names) + 1, row, fact.value, value);
        out.text(int(names + values) + 3, row, fact.meaning, meaning);
    }
}

void FactSection::click(int /*column*/, int row, bool /*twice*/) {
    list.choose(list.first() + row);
}

void FactSection::stood() {
    before = std::move(shown);
    shown = facts();
}

std::string FactSection::spoken() const {
    const auto number = size_t(list.cursor());
    if (number >= shown.size()) return {};
    const Fact& fact = shown[number];
    return fact.name + " " + fact.value + " " + fact.meaning;
}

std::string hertz_text(double hertz) {
    const auto tenths = int64_t(std::lround(hertz * 10));
    const std::string whole = std::to_string(tenths / 10);
    return whole + (tenths < 10000 ? "." + std::to_string(tenths % 10) : "") + " Hz";
}
