#pragma once
/// A section of the debugger's window: something of the machine that is shown in a rectangle of
/// cells, and takes keys and the mouse there. What it needs of the window is in services.h.

#include "debugger_view/cells.h"
#include "debugger_view/theme.h"
#include "platform/events.h"

struct Pane;

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// How a section is drawn.
struct SectionLook {
    const ViewTheme& theme;
    bool focused = false; ///< it has the keys
    CellStyle cursor() const { return focused ? theme.cursor : theme.rest; }
};

class DebugSection {
public:
    virtual ~DebugSection() = default;
    DebugSection() = default;
    DebugSection(const DebugSection&) = delete;
    DebugSection& operator=(const DebugSection&) = delete;

    virtual const char* title() const = 0;
    /// What its own keys do, for the line at the bottom.
    virtual const char* keys() const { return ""; }
    virtual void draw(CellPainter& out, const SectionLook& look) = 0;
    /// Behind what draw has drawn: for what is not made of cells. `cells` as of the painter.
    virtual void draw_picture(Pane& /*pane*/, const Rectangle& /*cells*/,
                              const SectionLook& /*look*/) {}
    /// Before it is drawn in a turn: looks at the past, which takes some time and runs the machine
    /// for a while.
    virtual void look() {}
    /// Whether the key was of use.
    virtual bool key(const Event& /*event*/) { return false; }
    virtual void type(std::string_view /*text*/) {}
    /// A click with the left button on a cell of it.
    virtual void click(int /*column*/, int /*row*/, bool /*twice*/) {}
    /// By the wheel: rows, down counts up.
    virtual void scroll(int /*rows*/) {}
    /// The machine has come to stand, or is another one.
    virtual void stood() {}

    /// Of what the cursor is on.
    virtual std::optional<uint16_t> address() const { return std::nullopt; }
    /// Shows this address, if it shows any.
    virtual bool go_to(uint16_t /*address*/) { return false; }
    /// What is under the cursor, for screen readers.
    virtual std::string spoken() const { return {}; }
};

using NewSection = std::unique_ptr<DebugSection>;
NewSection new_register_section();
NewSection new_listing_section();
NewSection new_memory_section();
NewSection new_stack_section();
NewSection new_call_section();
NewSection new_watch_section();
NewSection new_breakpoint_section();
NewSection new_trace_section();
NewSection new_picture_section();
NewSection new_crtc_section();
NewSection new_sound_section();
NewSection new_disk_section();
NewSection new_port_section();
NewSection new_command_section();
NewSection new_time_section();
