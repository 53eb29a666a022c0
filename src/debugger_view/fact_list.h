#pragma once
/// Rows of a name, a value and what it means, as the sections of the chips show them.

#include "debugger_view/row_list.h"
#include "debugger_view/section.h"

#include <string>
#include <vector>

struct Fact {
    std::string name, value, meaning;
};

class FactSection : public DebugSection {
public:
    void draw(CellPainter& out, const SectionLook& look) override;
    bool key(const Event& event) override { return list.key(event); }
    void click(int column, int row, bool twice) override;
    void scroll(int rows) override { list.scroll(rows); }
    void stood() override;
    std::string spoken() const override;

private:
    virtual std::vector<Fact> facts() const = 0;

    std::vector<Fact> shown, before; ///< before: at the last stop
    RowList list;
};

std::string hertz_text(double hertz);
