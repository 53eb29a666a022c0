#include "core/frame_driver.h"
#include "debugger/debugger.h"
#include "debugger/peek.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"
#include "platform/keyboard.h"
#include "z80/z80.h"

#include <array>
#include <cstdlib>

namespace {

/// A register, or a flag, at its place in the section.
struct RegisterField {
    const char* name; ///< as expressions have it
    const char* label;
    int column, row;
    int digits; ///< hexadecimal; 0 for a flag
    uint32_t (*of)(const z80_registers& registers);
};

template <uint16_t z80_registers::*PAIR>
uint32_t pair_of(const z80_registers& registers) {
    return registers.*PAIR;
}
template <uint8_t z80_registers::*BYTE>
uint32_t byte_of(const z80_registers& registers) {
    return registers.*BYTE;
}
template <unsigned BIT>
uint32_t flag_of(const z80_registers& registers) {
    return registers.af >> BIT & 1;
}

constexpr int ALTERNATES = 9, OTHERS = 19;

constexpr auto register_fields = std::to_array<RegisterField>({
    {"af", "AF ", 0, 0, 4, pair_of<&z80_registers::af>},
    {"bc", "BC ", 0, 1, 4, pair_of<&z80_registers::bc>},
    {"de", "DE ", 0, 2, 4, pair_of<&z80_registers::de>},
    {"hl", "HL ", 0, 3, 4, pair_of<&z80_registers::hl>},
    {"ix", "IX ", 0, 4, 4, pair_of<&z80_registers::ix>},
    {"sp", "SP ", 0, 5, 4, pair_of<&z80_registers::sp>},
    {"af'", "AF' ", ALTERNATES, 0, 4, pair_of<&z80_registers::af_alt>},
    {"bc'", "BC' ", ALTERNATES, 1, 4, pair_of<&z80_registers::bc_alt>},
    {"de'", "DE' ", ALTERNATES, 2, 4, pair_of<&z80_registers::de_alt>},
    {"hl'", "HL' ", ALTERNATES, 3, 4, pair_of<&z80_registers::hl_alt>},
    {"iy", "IY  ", ALTERNATES, 4, 4, pair_of<&z80_registers::iy>},
    {"pc", "PC  ", ALTERNATES, 5, 4, pair_of<&z80_registers::pc>},
    {"fs", "S", OTHERS, 0, 0, flag_of<7>},
    {"fz", "Z", OTHERS + 2, 0, 0, flag_of<6>},
    {"f5", "5", OTHERS + 4, 0, 0, flag_of<5>},
    {"fh", "H", OTHERS + 6, 0, 0, flag_of<4>},
    {"f3", "3", OTHERS + 8, 0, 0, flag_of<3>},
    {"fp", "P", OTHERS + 10, 0, 0, flag_of<2>},
    {"fn", "N", OTHERS + 12, 0, 0, flag_of<1>},
    {"fc", "C", OTHERS + 14, 0, 0, flag_of<0>},
    {"i", "I ", OTHERS, 1, 2, byte_of<&z80_registers::i>},
    {"r", "R ", OTHERS + 5, 1, 2, byte_of<&z80_registers::r>},
    {"im", "IM ", OTHERS, 2, 1, byte_of<&z80_registers::interrupt_mode>},
    {"iff1", "IFF1 ", OTHERS + 5, 2, 1, byte_of<&z80_registers::iff1>},
    {"iff2", "2 ", OTHERS + 12, 2, 1, byte_of<&z80_registers::iff2>},
});
constexpr int FIRST_FLAG = 12;
constexpr int FIELD_ROWS = 6;
constexpr std::array<int, 6> POINTERS = {1, 2, 3, 4, 10, 5}; ///< BC DE HL IX IY SP

int width_of(const RegisterField& field) {
    return int(std::string_view(field.label).size()) + field.digits;
}

class RegisterSection final : public DebugSection {
public:
    const char* title() const override { return "Registers"; }
    const char* keys() const override { return "Enter changes  Space goes there"; }

    void draw(CellPainter& out, const SectionLook& look) override {
        const StopBefore& before = view_before();
        for (size_t n = 0; n < register_fields.size(); ++n) {
            const RegisterField& field = register_fields[n];
            const uint32_t value = field.of(z80_state);
            const bool changed = debugger_stands() && value != field.of(before.registers);
            CellStyle style = changed ? look.theme.changed : look.theme.text;
            const bool is_here = int(n) == at && look.focused;
            if (is_here) style = look.cursor();
            if (!field.digits) {
                out.text(field.column, field.row, value ? field.label : "-", style);
                continue;
            }
            const int column = out.text(field.column, field.row, field.label, look.theme.quiet);
            out.text(column, field.row, hex(value, field.digits), style);
        }
        draw_time(out, look);
        for (int row = FIELD_ROWS; row < out.rows(); ++row) draw_pointer(out, look, row);
    }

    bool key(const Event& event) override {
        switch (event.value) {
        case KEY_UP: return move(0, -1);
        case KEY_DOWN: return move(0, 1);
        case KEY_LEFT: return move(-1, 0);
        case KEY_RIGHT: return move(1, 0);
        case KEY_RETURN: change(); return true;
        default: return false;
        }
    }

    void type(std::string_view text) override {
        if (text == " " && address()) view_show_memory(*address());
    }

    void click(int column, int row, bool /*twice*/) override {
        for (size_t n = 0; n < register_fields.size(); ++n) {
            const RegisterField& field = register_fields[n];
            const bool hit = row == field.row && column >= field.column &&
                             column < field.column + std::max(width_of(field), 1);
            if (!hit) continue;
            at = int(n);
            return change();
        }
    }

    std::optional<uint16_t> address() const override {
        if (register_fields[size_t(at)].digits != 4) return std::nullopt;
        return uint16_t(register_fields[size_t(at)].of(z80_state));
    }

    std::string spoken() const override {
        const RegisterField& field = register_fields[size_t(at)];
        return std::string(field.name) + " " + hex(field.of(z80_state), std::max(field.digits, 1));
    }

private:
    void draw_time(CellPainter& out, const SectionLook& look) const {
        const CellStyle style = look.theme.quiet;
        out.text(OTHERS, 3, "cycle", style);
        out.text(OTHERS, 4, std::to_string(z80_state.t_count), look.theme.text);
        const int column = out.text(OTHERS, 5, "line ", style);
        out.text(column, 5, std::to_string(debugger_raster_line()), look.theme.text);
    }

    /// What a pair points at: bytes and characters, or words of the stack.
    void draw_pointer(CellPainter& out, const SectionLook& look, int row) const {
        if (row - FIELD_ROWS >= int(POINTERS.size())) return;
        const RegisterField& field = register_fields[size_t(POINTERS[size_t(row - FIELD_ROWS)])];
        const auto address = uint16_t(field.of(z80_state));
        int column = out.text(0, row, "(" + std::string(field.label, 2) + ") ", look.theme.quiet);
        for (int n = 0; n < 6; ++n) {
            const auto place = uint16_t(address + n);
            const CellStyle style = view_byte_changed(place) ? look.theme.changed : look.theme.text;
            column = out.text(column, row, hex(debug_peek(place), 2), style) + 1;
        }
        out.text(column, row, debugger_symbols().near(address), look.theme.name);
    }

    /// To the nearest field that lies in that direction.
    bool move(int columns, int rows) {
        const RegisterField& from = register_fields[size_t(at)];
        int best = -1, least = 0;
        for (size_t n = 0; n < register_fields.size(); ++n) {
            const RegisterField& to = register_fields[n];
            const int along =
                columns ? (to.column - from.column) * columns : (to.row - from.row) * rows;
            const int beside = columns ? to.row - from.row : to.column - from.column;
            if (along <= 0 || (columns && beside)) continue;
            const int distance = columns ? along : 100 * along + std::abs(beside);
            if (best < 0 || distance < least) {
                best = int(n);
                least = distance;
            }
        }
        if (best >= 0) at = best;
        return true;
    }

    void change() const {
        const RegisterField& field = register_fields[size_t(at)];
        if (!field.digits) {
            const auto bit = uint16_t(0x80U >> (at - FIRST_FLAG));
            return view_change(
                [bit] { debugger_set_register("f", uint16_t((z80_state.af ^ bit) & 0xFF)); });
        }
        const std::string name = field.name;
        view_ask_address(name + " =", hex(field.of(z80_state), field.digits),
                         [name](uint16_t value) {
                             view_change([name, value] { debugger_set_register(name, value); });
                         });
    }

    int at = 0; ///< number of the field under the cursor
};

} // namespace

NewSection new_register_section() { return std::make_unique<RegisterSection>(); }
