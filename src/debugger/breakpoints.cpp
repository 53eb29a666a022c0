#include "debugger/breakpoints.h"

#include "debugger/looking_commands.h"
#include "debugger/past.h"
#include "debugger/raster.h"
#include "debugger/run_goal.h"
#include "debugger/symbols.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <utility>

namespace {

constexpr int64_t MOST_RASTER_LINES = 1000; ///< more than any picture has
constexpr uint16_t LAST_PORT = 0xFF;

/// What a breakpoint's texts have been compiled to.
struct CompiledBreakpoint {
    std::optional<Expression> condition;
    std::optional<LogText> line;
};

struct {
    std::vector<Breakpoint> all;
    std::vector<CompiledBreakpoint> compiled; ///< of each
    int last_number = 0;

    RunGoal goal;
    bool armed = false;  ///< the debugger is on
    bool filled = false; ///< something is in the maps of z80_watch
    int64_t looked = 0;  ///< the cycle of the last look at cycles and lines
    int raster = 0;      ///< the line then
} table;

/// In the order of BreakpointKind: the command that makes it.
constexpr auto COMMANDS = std::to_array<const char*>(
    {"break", "watch read", "watch write", "watch access", "break port read", "break port write",
     "break interrupt", "break cycle", "break frame", "break line"});

bool has_addresses(BreakpointKind kind) { return kind <= BreakpointKind::memory_access; }
bool has_ports(BreakpointKind kind) {
    return kind == BreakpointKind::port_read || kind == BreakpointKind::port_write;
}

/// Checks it, and compiles its texts. False and the problem when it cannot be so.
bool compile(const Breakpoint& breakpoint, CompiledBreakpoint& to, std::string& problem) {
    const BreakpointKind kind = breakpoint.kind;
    if (breakpoint.first > breakpoint.last) {
        problem = "the range ends before it begins";
        return false;
    }
    if (has_ports(kind) && breakpoint.last > LAST_PORT) {
        problem = "there are no ports above FF";
        return false;
    }
    if (breakpoint.at < 0 || (kind == BreakpointKind::line && breakpoint.at >= MOST_RASTER_LINES)) {
        problem = "this never comes";
        return false;
    }
    if (!breakpoint.condition.empty()) {
        to.condition = Expression::parse(breakpoint.condition, &debugger_symbols(), problem);
        if (!to.condition) return false;
    }
    if (!breakpoint.text.empty()) {
        to.line = LogText::parse(breakpoint.text, &debugger_symbols(), problem);
        if (!to.line) return false;
    }
    return true;
}

auto place_of(int number) { return std::ranges::find(table.all, number, &Breakpoint::number); }

void arm_again() {
    past_forget();
    if (table.armed) breakpoints_arm(table.goal);
}

// ---- arming ------------------------------------------------------------------------------------

uint8_t bits_of(BreakpointKind kind) {
    switch (kind) {
    case BreakpointKind::execute: return WATCH_EXECUTE;
    case BreakpointKind::memory_read:
    case BreakpointKind::port_read: return WATCH_READ;
    case BreakpointKind::memory_write:
    case BreakpointKind::port_write: return WATCH_WRITE;
    case BreakpointKind::memory_access: return WATCH_READ | WATCH_WRITE;
    default: return 0;
    }
}

void watch_range(uint8_t* map, const Breakpoint& breakpoint) {
    const uint8_t bits = bits_of(breakpoint.kind);
    for (size_t n = breakpoint.first; n <= breakpoint.last; ++n) map[n] |= bits;
}

void clear_maps() {
    if (table.filled) {
        std::memset(z80_watch.memory, 0, sizeof z80_watch.memory);
        std::memset(z80_watch.ports, 0, sizeof z80_watch.ports);
    }
    table.filled = false;
    z80_watch.interrupts = false;
    z80_watch.until = WATCH_NO_CYCLE;
    z80_watch.run = nullptr;
}

void watch_for(const Breakpoint& breakpoint) {
    const BreakpointKind kind = breakpoint.kind;
    if (has_addresses(kind)) watch_range(z80_watch.memory, breakpoint);
    if (has_ports(kind)) watch_range(z80_watch.ports, breakpoint);
    if (kind == BreakpointKind::interrupt) z80_watch.interrupts = true;
    if (kind == BreakpointKind::frame) return; // whoever runs frames asks for it
    table.filled = true;
    z80_watch.run = z80_run_watched;
}

void watch_for(const RunGoal& goal) {
    if (goal.is_none()) return;
    if (goal.every_address()) {
        for (uint8_t& bits : z80_watch.memory) bits |= WATCH_EXECUTE;
    }
    if (goal.address() != WATCH_NOWHERE) z80_watch.memory[goal.address()] |= WATCH_EXECUTE;
    if (goal.interrupts()) z80_watch.interrupts = true;
    table.filled = true;
    z80_watch.run = z80_run_watched;
}

/// When it has to be looked at, for one that waits for a time.
int64_t next_look(const Breakpoint& breakpoint) {
    if (!breakpoint.enabled) return WATCH_NO_CYCLE;
    if (breakpoint.kind == BreakpointKind::line) return raster_line_comes(int(breakpoint.at));
    const bool is_ahead =
        breakpoint.kind == BreakpointKind::cycle && breakpoint.at > z80_state.t_count;
    return is_ahead ? breakpoint.at : WATCH_NO_CYCLE;
}

// ---- hits --------------------------------------------------------------------------------------

bool is_within(const Breakpoint& breakpoint, const watch_hit& hit) {
    return hit.address >= breakpoint.first && hit.address <= breakpoint.last;
}

bool is_hit(const Breakpoint& breakpoint, const watch_hit& hit) {
    const BreakpointKind kind = breakpoint.kind;
    switch (hit.kind) {
    case watch_kind::execute: return kind == BreakpointKind::execute && is_within(breakpoint, hit);
    case watch_kind::memory_read:
    case watch_kind::memory_write: {
        const uint8_t bit = hit.kind == watch_kind::memory_read ? WATCH_READ : WATCH_WRITE;
        return has_addresses(kind) && (bits_of(kind) & bit) && is_within(breakpoint, hit);
    }
    case watch_kind::port_read:
        return kind == BreakpointKind::port_read && is_within(breakpoint, hit);
    case watch_kind::port_write:
        return kind == BreakpointKind::port_write && is_within(breakpoint, hit);
    case watch_kind::interrupt: return kind == BreakpointKind::interrupt;
    case watch_kind::cycle:
        if (kind == BreakpointKind::line) {
            return raster_line_began(int(breakpoint.at), table.looked, table.raster);
        }
        return kind == BreakpointKind::cycle && breakpoint.at > table.looked &&
               breakpoint.at <= hit.cycle;
    }
    return false;
}

ExpressionContext context_of(const Breakpoint& breakpoint, const watch_hit& hit, int64_t frame) {
    return {.hits = int64_t(breakpoint.hits),
            .value = hit.value,
            .before = hit.before,
            .address = hit.address,
            .from = hit.pc,
            .cycle = hit.cycle,
            .frame = frame,
            .line = raster_line()};
}

/// Whether it stops the machine.
bool take(size_t index, const watch_hit& hit, int64_t frame, BreakpointLog log) {
    Breakpoint& breakpoint = table.all[index];
    const CompiledBreakpoint& compiled = table.compiled[index];
    ++breakpoint.hits;
    const ExpressionContext context = context_of(breakpoint, hit, frame);
    if (compiled.condition && !compiled.condition->holds(context)) return false;
    if (breakpoint.action == BreakpointAction::log && log) {
        log(compiled.line ? compiled.line->text(context)
                          : std::to_string(breakpoint.number) + ": " + watch_hit_text(hit));
    }
    return breakpoint.action == BreakpointAction::stop;
}

template <typename Concerns>
int take_all(const watch_hit& hit, int64_t frame, BreakpointLog log, Concerns concerns) {
    int stops = 0;
    for (size_t n = 0; n < table.all.size(); ++n) {
        if (!table.all[n].enabled || !concerns(table.all[n])) continue;
        if (take(n, hit, frame, log) && !stops) stops = table.all[n].number;
    }
    return stops;
}

} // namespace

int breakpoint_add(Breakpoint breakpoint, std::string& problem) {
    CompiledBreakpoint compiled;
    if (!compile(breakpoint, compiled, problem)) return 0;
    breakpoint.number = ++table.last_number;
    table.all.push_back(std::move(breakpoint));
    table.compiled.push_back(std::move(compiled));
    arm_again();
    return table.last_number;
}

bool breakpoint_change(const Breakpoint& breakpoint, std::string& problem) {
    const auto place = place_of(breakpoint.number);
    CompiledBreakpoint compiled;
    if (place == table.all.end()) {
        problem = "there is no such breakpoint";
        return false;
    }
    if (!compile(breakpoint, compiled, problem)) return false;
    const uint64_t hits = place->hits;
    *place = breakpoint;
    place->hits = hits;
    table.compiled[size_t(place - table.all.begin())] = std::move(compiled);
    arm_again();
    return true;
}

bool breakpoint_remove(int number) {
    const auto place = place_of(number);
    if (place == table.all.end()) return false;
    table.compiled.erase(table.compiled.begin() + (place - table.all.begin()));
    table.all.erase(place);
    arm_again();
    return true;
}

void breakpoints_remove_all(int front) {
    for (size_t n = table.all.size(); n-- > 0;) {
        if (table.all[n].front == front) breakpoint_remove(table.all[n].number);
    }
}

const std::vector<Breakpoint>& breakpoints() { return table.all; }

const Breakpoint* breakpoint(int number) {
    const auto place = place_of(number);
    return place == table.all.end() ? nullptr : &*place;
}

std::string breakpoint_text(const Breakpoint& breakpoint) {
    std::string text = COMMANDS[size_t(breakpoint.kind)];
    const int digits = has_ports(breakpoint.kind) ? 2 : 4;
    if (has_addresses(breakpoint.kind) || has_ports(breakpoint.kind)) {
        text += formatted(" %0*X", digits, breakpoint.first);
        if (breakpoint.last != breakpoint.first) {
            text += formatted("-%0*X", digits, breakpoint.last);
        }
    } else if (breakpoint.kind != BreakpointKind::interrupt) {
        text += " " + std::to_string(breakpoint.at);
    }
    if (!breakpoint.condition.empty()) text += " if " + breakpoint.condition;
    if (breakpoint.action == BreakpointAction::log) text += " log \"" + breakpoint.text + "\"";
    if (breakpoint.action == BreakpointAction::count) text += " count";
    return breakpoint.once ? text + " once" : text;
}

std::string watch_hit_text(const watch_hit& hit) {
    switch (hit.kind) {
    case watch_kind::execute: return formatted("at %04X", hit.address);
    case watch_kind::memory_read:
        return formatted("read of %02Xh from %04X, by %04X", hit.value, hit.address, hit.pc);
    case watch_kind::memory_write:
        return formatted("write of %02Xh to %04X, where %02Xh was, by %04X", hit.value, hit.address,
                         hit.before, hit.pc);
    case watch_kind::port_read:
        return formatted("read of %02Xh from port %02X, by %04X", hit.value, hit.address, hit.pc);
    case watch_kind::port_write:
        return formatted("write of %02Xh to port %02X, by %04X", hit.value, hit.address, hit.pc);
    case watch_kind::interrupt:
        return formatted("interrupt to %04X, behind %04X", hit.address, hit.pc);
    case watch_kind::cycle: break;
    }
    return "cycle " + std::to_string(hit.cycle);
}

void breakpoints_arm(const RunGoal& goal) {
    const bool was_watched = z80_watch.run != nullptr;
    clear_maps();
    table.armed = true;
    table.goal = goal;
    for (const Breakpoint& breakpoint : table.all) {
        if (breakpoint.enabled) watch_for(breakpoint);
    }
    watch_for(goal);
    if (!was_watched) z80_watch.last_pc = WATCH_NOWHERE; // it was not kept
    breakpoints_arm_cycle();
}

void breakpoints_disarm() {
    clear_maps();
    table.armed = false;
    table.goal = {};
}

int64_t breakpoints_arm_cycle() {
    table.looked = z80_state.t_count;
    if (!z80_watch.run) return WATCH_NO_CYCLE;
    table.raster = raster_line();
    int64_t next = table.goal.cycle();
    if (next <= z80_state.t_count) next = WATCH_NO_CYCLE;
    for (const Breakpoint& breakpoint : table.all) next = std::min(next, next_look(breakpoint));
    z80_watch.until = next;
    return next;
}

int breakpoints_take(const watch_hit& hit, int64_t frame, BreakpointLog log) {
    return take_all(hit, frame, log,
                    [&](const Breakpoint& breakpoint) { return is_hit(breakpoint, hit); });
}

int breakpoints_take_frame(int64_t frame, BreakpointLog log) {
    const watch_hit hit = {
        .kind = watch_kind::cycle, .pc = z80_state.pc, .cycle = z80_state.t_count};
    return take_all(hit, frame, log, [&](const Breakpoint& breakpoint) {
        return breakpoint.kind == BreakpointKind::frame && breakpoint.at == frame;
    });
}

std::vector<uint64_t> breakpoint_hits() {
    std::vector<uint64_t> hits;
    for (const Breakpoint& breakpoint : table.all) hits.push_back(breakpoint.hits);
    return hits;
}

void breakpoints_set_hits(const std::vector<uint64_t>& hits) {
    const size_t count = std::min(hits.size(), table.all.size());
    for (size_t n = 0; n < count; ++n) table.all[n].hits = hits[n];
}

bool breakpoint_hits_matter() {
    return std::ranges::any_of(table.compiled, [](const CompiledBreakpoint& compiled) {
        return compiled.condition && compiled.condition->uses_hits();
    });
}
