#include "debugger_view/view.h"

#include "debugger/command_words.h"
#include "debugger/debugger.h"
#include "debugger/expression.h"
#include "debugger/peek.h"
#include "debugger_view/actions.h"
#include "debugger_view/view_state.h"
#include "platform/keyboard.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr Size SMALLEST = {30, 10}; ///< cells; below nothing is drawn
constexpr int64_t DRAWS_PER_SECOND = 10;
constexpr int WHEEL_NOTCH = 120, ROWS_PER_NOTCH = 3;
constexpr const char* GENERAL_HINTS =
    "F5 go  F6 stop  F9 breakpoint  F10 over  F11 into  Ctrl+F11 out  Shift: backwards";

constexpr std::array<NewSection (*)(), SECTIONS> makers = {
    new_register_section, new_listing_section, new_memory_section,     new_stack_section,
    new_call_section,     new_watch_section,   new_breakpoint_section, new_trace_section,
    new_picture_section,  new_crtc_section,    new_sound_section,      new_disk_section,
    new_port_section,     new_command_section, new_time_section};

struct OpenView {
    std::array<NewSection, SECTIONS> sections;
    std::array<uint64_t, SECTIONS> fronted = {}; ///< when each came to the front, by a counter
    uint64_t front_counter = 0;
    SectionId focus = SectionId::listing;
    std::vector<SectionGroup> groups;
    CellGrid grid;
    std::optional<ViewPrompt> prompt;
    std::string told;
    bool changed = true;
    int64_t drawn_at = 0; ///< by the host's clock
    int front = 0;        ///< its number as the debugger's
    StopBefore before, now;
};
/// There while the window is open.
std::optional<OpenView> view;

Pane& pane() { return platform().pane(PaneId::debugger); }
const ViewTheme& theme() { return theme_for(platform().status_bar().background_colour()); }

// ---- sections ----------------------------------------------------------------------------------

SectionId front_of(const SectionGroup& group) {
    return *std::ranges::max_element(
        group.sections, {}, [](SectionId section) { return view->fronted[size_t(section)]; });
}

struct Tab {
    SectionId section;
    int left, right;
};

/// Those that have room in the title row; that of the front always.
std::vector<Tab> tabs_of(const SectionGroup& group) {
    std::vector<Tab> tabs;
    int column = 0;
    for (const SectionId section : group.sections) {
        const int width = int(std::string_view(view_section(section).title()).size()) + 2;
        tabs.push_back({section, column, column + width});
        column += width;
    }
    const SectionId front = front_of(group);
    while (tabs.size() > 1 && tabs.front().section != front) {
        const auto here = std::ranges::find(tabs, front, &Tab::section);
        if (here->right <= group.cells.width()) break;
        const int gone = tabs.front().right;
        tabs.erase(tabs.begin());
        for (Tab& tab : tabs) {
            tab.left -= gone;
            tab.right -= gone;
        }
    }
    return tabs;
}

Rectangle content_of(const SectionGroup& group) {
    Rectangle cells = group.cells;
    cells.top = std::min(cells.top + 1, cells.bottom);
    cells.right = std::max(cells.right - 1, cells.left); // a column between it and the next one
    return cells;
}

SectionLook look_of(SectionId section) {
    return {theme(), section == view->focus && !view->prompt};
}

void draw_group(const SectionGroup& group) {
    const SectionId front = front_of(group);
    CellPainter all(view->grid, group.cells);
    all.clear_row(0, theme().title);
    for (const Tab& tab : tabs_of(group)) {
        CellStyle style = theme().title;
        if (tab.section == front) {
            style = front == view->focus ? theme().focus : theme().front;
        }
        all.text(tab.left, 0, " " + std::string(view_section(tab.section).title()) + " ", style);
    }
    CellPainter content(view->grid, content_of(group));
    if (content.rows() > 0) view_section(front).draw(content, look_of(front));
}

/// All sections in the order of the groups: what Tab goes through.
std::vector<SectionId> sections_in_order() {
    std::vector<SectionId> order;
    for (const SectionGroup& group : view->groups) {
        order.insert(order.end(), group.sections.begin(), group.sections.end());
    }
    return order;
}

void focus_next(int by) {
    const std::vector<SectionId> order = sections_in_order();
    const auto here = std::ranges::find(order, view->focus) - order.begin();
    const auto count = ptrdiff_t(order.size());
    view_focus(order[size_t((here + by + count) % count)]);
}

// ---- drawing -----------------------------------------------------------------------------------

Size cells_of_pane() {
    const Size size = pane().size(), cell = pane().cell_size();
    if (cell.width <= 0 || cell.height <= 0) return {};
    return {size.width / cell.width, size.height / cell.height};
}

void tell_screen_reader() {
    const DebugSection& section = view_section(view->focus);
    std::string text = view_state_text() + "\n" + section.title() + ": " + section.spoken();
    int rows = 2;
    if (view->prompt || !view->told.empty()) {
        text += "\n" +
                (view->prompt ? view->prompt->label + " " + view->prompt->edit.text() : view->told);
        ++rows;
    }
    pane().set_message(text, rows);
}

/// While long work goes on the machine is its tool, and what was shown stays.
void draw(bool all) {
    const Size cells = cells_of_pane();
    if (cells.width < SMALLEST.width || cells.height < SMALLEST.height) return;
    const bool works = debugger_progress().has_value();
    if (all || cells != view->grid.size()) {
        const Size size = pane().size();
        pane().fill_rectangle({0, 0, size.width, size.height}, theme().text.ground);
        view->grid.forget_drawn();
    }
    if (!works || cells != view->grid.size()) {
        view->grid.begin(cells, theme().text);
        view->groups = view_layout({0, ROWS_ABOVE, cells.width, cells.height - ROWS_BELOW});
    }
    if (!works) {
        for (const SectionGroup& group : view->groups) draw_group(group);
    }
    CellPainter whole(view->grid, {0, 0, cells.width, cells.height});
    view_draw_above(whole, theme());
    const std::string own = view_section(view->focus).keys();
    view_draw_below(whole, theme(), view->told,
                    "Tab next  " + own + (own.empty() ? "" : "  ") + GENERAL_HINTS);
    view->grid.draw(pane());
    if (works) return;
    for (const SectionGroup& group : view->groups) {
        const SectionId front = front_of(group);
        view_section(front).draw_picture(pane(), content_of(group), look_of(front));
    }
    tell_screen_reader();
}

// ---- events ------------------------------------------------------------------------------------

/// The debugger has stopped the machine, or lets it go.
void heard_of(const DebugStop* stop) {
    view->changed = true;
    if (!stop) return;
    view->told.clear();
    std::vector<uint8_t> memory(0x10000);
    for (size_t at = 0; at < memory.size(); ++at) memory[at] = debug_peek(uint16_t(at));
    view->before = std::exchange(view->now, {z80_state, std::move(memory)});
    for (const NewSection& section : view->sections) section->stood();
}

void take_key(const Event& event) {
    if (event.value == KEY_ESCAPE) {
        if (debugger_progress()) debugger_cancel();
        return;
    }
    if (debugger_progress()) return;
    if (const DebugAction* action = debug_action_of(event)) return action->act();
    if (event.value == KEY_TAB) return focus_next(event.modifiers & MODIFIER_SHIFT ? -1 : 1);
    view_section(view->focus).key(event);
}

const SectionGroup* group_at(int column, int row) {
    const auto found = std::ranges::find_if(view->groups, [=](const SectionGroup& group) {
        const Rectangle& cells = group.cells;
        return column >= cells.left && column < cells.right && row >= cells.top &&
               row < cells.bottom;
    });
    return found == view->groups.end() ? nullptr : &*found;
}

void click_group(const SectionGroup& group, int column, int row, bool twice) {
    column -= group.cells.left;
    row -= group.cells.top;
    if (row == 0) {
        for (const Tab& tab : tabs_of(group)) {
            if (column >= tab.left && column < tab.right) view_focus(tab.section);
        }
        return;
    }
    const SectionId section = front_of(group);
    view_focus(section);
    view_section(section).click(column, row - 1, twice);
}

void take_pointer(const Event& event) {
    const Size cell = pane().cell_size();
    const int column = event.pointer.x / cell.width, row = event.pointer.y / cell.height;
    const SectionGroup* group = group_at(column, row);
    if (event.pointer.act == Pointer::Act::wheel) {
        if (!group) return;
        const int rows = -event.value * ROWS_PER_NOTCH / WHEEL_NOTCH;
        return view_section(front_of(*group)).scroll(rows);
    }
    view->told.clear();
    if (debugger_progress()) return;
    view->prompt.reset();
    if (row == 0) return view_click_button(column);
    const bool twice = event.pointer.act == Pointer::Act::double_click;
    if (group) click_group(SectionGroup(*group), column, row, twice);
}

bool is_control(const std::string& text) {
    return text.empty() || uint8_t(text.front()) < ' ' || text.front() == 0x7F;
}

bool is_used_pointer(const Event& event) {
    using Act = Pointer::Act;
    const Act act = event.pointer.act;
    const bool pressed = act == Act::press || act == Act::double_click;
    return act == Act::wheel || (pressed && event.pointer.button == BUTTON_LEFT);
}

} // namespace

// ---- for the sections --------------------------------------------------------------------------

DebugSection& view_section(SectionId section) { return *view->sections[size_t(section)]; }
SectionId view_focused() { return view->focus; }
std::optional<ViewPrompt>& view_prompt() { return view->prompt; }

void view_ask(std::string label, std::string text,
              std::function<std::string(const std::string&)> done) {
    view->prompt = ViewPrompt{
        .label = std::move(label), .edit = LineEdit(std::move(text)), .done = std::move(done)};
}

void view_ask_anew(std::string label, std::string text,
                   std::function<std::string(const std::string&)> done) {
    view_ask(std::move(label), std::move(text), std::move(done));
    view->prompt->edit.select_all();
}

void view_ask_address(std::string label, std::string text, std::function<void(uint16_t)> done) {
    view_ask_anew(std::move(label), std::move(text),
                  [done = std::move(done)](const std::string& answer) {
                      std::string problem;
                      const auto address = parse_address(answer, &debugger_symbols(), problem);
                      if (address) done(*address);
                      return problem;
                  });
}

void view_change(std::function<void()> change) {
    if (!debugger_is_in_past()) return change();
    view->prompt =
        ViewPrompt{.label = "This is the past: after a change all that came later is forgotten. "
                            "Change it? y/n",
                   .yes = std::move(change)};
}

void view_tell(const std::string& text) { view->told = text; }

void view_focus(SectionId section) {
    view->focus = section;
    view->fronted[size_t(section)] = ++view->front_counter;
}

void view_show_listing(uint16_t address) {
    view_focus(SectionId::listing);
    view_section(SectionId::listing).go_to(address);
}

void view_show_memory(uint16_t address) {
    view_focus(SectionId::memory);
    view_section(SectionId::memory).go_to(address);
}

std::optional<int64_t> view_value(std::string_view expression, std::string& problem) {
    const auto parsed = Expression::parse(expression, &debugger_symbols(), problem);
    if (!parsed) return std::nullopt;
    return parsed->value(debugger_context());
}

const StopBefore& view_before() { return view->before; }

bool view_byte_changed(uint16_t address) {
    if (view->before.memory.empty() || !debugger_stands()) return false;
    return view->before.memory[address] != debug_peek(address);
}

// ---- for the program ---------------------------------------------------------------------------

void debugger_view_start() {
    if (view) return;
    view.emplace();
    for (size_t n = 0; n < SECTIONS; ++n) view->sections[n] = makers[n]();
    view->front = debugger_add_front(heard_of);
    view->before.registers = view->now.registers = z80_state;
    for (const NewSection& section : view->sections) section->stood();
    debugger_view_paint();
}

void debugger_view_end() {
    if (!view) return;
    debugger_remove_front(view->front);
    view.reset();
}

bool debugger_view_is_open() { return view.has_value(); }

void debugger_view_paint() {
    if (view) draw(true);
}

void debugger_view_changed() {
    if (view) view->changed = true;
}

void debugger_view_turn() {
    if (!view) return;
    Clock& clock = platform().clock();
    const bool moves = !debugger_stands() || debugger_progress();
    const bool is_due = clock.counter() - view->drawn_at >= clock.frequency() / DRAWS_PER_SECOND;
    if (!std::exchange(view->changed, false) && (!moves || !is_due)) return;
    view->drawn_at = clock.counter();
    if (!debugger_progress()) {
        for (const SectionGroup& group : view->groups) view_section(front_of(group)).look();
    }
    draw(false);
}

bool debugger_view_wants(const Event& event) {
    if (!view) return false;
    switch (event.kind) {
    case Event::Kind::key_down:
    case Event::Kind::text: return event.pane == PaneId::debugger;
    case Event::Kind::pointer:
        return event.pointer.pane == PaneId::debugger && is_used_pointer(event);
    default: return false;
    }
}

void debugger_view_take(const Event& event) {
    if (!view) return;
    // What keys such as Enter and Tab give as text has been taken as a key.
    if (event.kind == Event::Kind::text && is_control(event.text)) return;
    view->changed = true;
    if (event.kind == Event::Kind::pointer) return take_pointer(event);
    if (view->prompt) {
        view_prompt_take(event);
        return;
    }
    if (event.kind == Event::Kind::text) {
        if (!debugger_progress()) view_section(view->focus).type(event.text);
        return;
    }
    view->told.clear();
    take_key(event);
}

void debugger_view_log(const std::string& line) {
    view_print(line);
    debugger_view_changed();
}
