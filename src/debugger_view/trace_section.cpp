#include "debugger_view/section.h"

namespace {

class TraceSection final : public DebugSection {
public:
    const char* title() const override { return "Trace"; }
    void draw(CellPainter& /*out*/, const SectionLook& /*look*/) override {}
};

} // namespace

NewSection new_trace_section() { return std::make_unique<TraceSection>(); }
