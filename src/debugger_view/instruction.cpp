#include "debugger_view/instruction.h"

#include "debugger/peek.h"
#include "debugger/symbols.h"
#include "debugger_view/cells.h"
#include "z80/disassembler.h"

#include <array>
#include <cctype>
#include <charconv>
#include <string_view>

namespace {

constexpr size_t LINE_BYTES = 6; ///< of the disassembler's line: blank, address, blank
constexpr size_t LINE_MNEMONIC = LINE_BYTES + 4 * 3;
constexpr size_t ADDRESS_DIGITS = 4;
constexpr int WAY_BACK = 24; ///< bytes; most wrong beginnings have come right by then

/// Where a number of four digits stands in the text; npos without one.
size_t number_in(std::string_view text) {
    for (size_t at = 0; at + ADDRESS_DIGITS < text.size(); ++at) {
        size_t digits = 0;
        while (digits < ADDRESS_DIGITS && std::isxdigit(uint8_t(text[at + digits]))) ++digits;
        const bool begins = at == 0 || !std::isalnum(uint8_t(text[at - 1]));
        if (begins && digits == ADDRESS_DIGITS && text[at + digits] == 'h') return at;
    }
    return std::string_view::npos;
}

/// "rst 28h": the one jump whose target is not a word.
std::optional<uint16_t> rst_target(std::string_view text) {
    if (!text.starts_with("rst ")) return std::nullopt;
    unsigned value = 0;
    std::from_chars(text.data() + 4, text.data() + text.size(), value, 16);
    return uint16_t(value);
}

void name_number(ShownInstruction& shown) {
    const size_t at = number_in(shown.text);
    if (at == std::string::npos) {
        shown.target = rst_target(shown.text);
        if (shown.target) shown.remark = debugger_symbols().name_at(*shown.target);
        return;
    }
    unsigned value = 0;
    std::from_chars(shown.text.data() + at, shown.text.data() + at + ADDRESS_DIGITS, value, 16);
    if (value == 0) return; // more often a number than the start of the ROM
    const auto address = uint16_t(value);
    shown.target = address;
    const std::string name = debugger_symbols().name_at(address);
    if (name.empty()) {
        shown.remark = debugger_symbols().near(address);
    } else {
        shown.text.replace(at, ADDRESS_DIGITS + 1, name);
        shown.remark = hex(address, ADDRESS_DIGITS);
    }
}

int length_at(uint16_t address) {
    std::array<char, DISASSEMBLY_LINE> line;
    return uint16_t(disassemble_by(debug_peek, address, line.data()) - address);
}

} // namespace

ShownInstruction shown_instruction(uint16_t address) {
    std::array<char, DISASSEMBLY_LINE> line;
    ShownInstruction shown = {.address = address};
    shown.length = uint16_t(disassemble_by(debug_peek, address, line.data()) - address);
    const std::string text = line.data();
    shown.bytes = text.substr(LINE_BYTES, size_t(shown.length) * 3 - 1);
    shown.text = text.substr(LINE_MNEMONIC);
    name_number(shown);
    return shown;
}

uint16_t address_before(uint16_t address) {
    for (int back = WAY_BACK; back > 1; --back) {
        int before = back;
        for (int left = back; left > 0;) {
            before = left;
            left -= length_at(uint16_t(address - left));
            if (left == 0) return uint16_t(address - before);
        }
    }
    return uint16_t(address - 1);
}
