#pragma once
/// What the window does for its sections.

#include "debugger/breakpoints.h"
#include "debugger/symbols.h"
#include "z80/z80.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class SectionId : uint8_t {
    registers,
    listing,
    memory,
    stack,
    calls,
    watches,
    breakpoints,
    trace,
    picture,
    crtc,
    sound,
    disk,
    ports,
    commands,
    time_line,
};
constexpr size_t SECTIONS = 15;

/// Asks for a line of text at the bottom. `done` returns an empty text, or what is wrong with the
/// answer: then the line stays open. Esc ends it without an answer.
void view_ask(std::string label, std::string text,
              std::function<std::string(const std::string&)> done);
/// The same; what is typed replaces the text.
void view_ask_anew(std::string label, std::string text,
                   std::function<std::string(const std::string&)> done);
/// The same for an address: a number, a symbol or an expression.
void view_ask_address(std::string label, std::string text, std::function<void(uint16_t)> done);
/// Changes the machine. In the past it asks before whether what came after may be forgotten.
void view_change(std::function<void()> change);
/// Says something in the line at the bottom, until the next key.
void view_tell(const std::string& text);

/// Brings the section to the front and gives it the keys.
void view_focus(SectionId section);
void view_show_listing(uint16_t address);
void view_show_memory(uint16_t address);

/// The breakpoint of exactly this address; null without one.
const Breakpoint* view_breakpoint(BreakpointKind kind, uint16_t address);
/// Sets one there, or removes it.
void view_toggle_breakpoint(BreakpointKind kind, uint16_t address);

/// The value of an expression for the machine as it is; nothing and the problem otherwise.
std::optional<int64_t> view_value(std::string_view expression, std::string& problem);

/// The machine at the stop before this one.
struct StopBefore {
    z80_registers registers = {};
    std::vector<uint8_t> memory = {}; ///< of all addresses; empty before the second stop
};
const StopBefore& view_before();
/// Whether the byte is another one than at the stop before.
bool view_byte_changed(uint16_t address);

/// Lines that commands and breakpoints have written, for the command section.
void view_print(const std::string& lines);
