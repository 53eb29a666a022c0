// What each instruction changes, and its accesses to memory and ports in order; everything not
// named must stay as it was.

#include "support/flat_bus.h"
#include "z80/alu_reference.h"
#include "z80/processor_setup.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

std::vector<int> parse_bytes(const std::string& text) {
    std::vector<int> bytes;
    std::istringstream stream(text);
    for (int byte; stream >> std::hex >> byte;) bytes.push_back(byte);
    return bytes;
}

/// The state with "HL=1234 F=41" applied to it; "(4000)=12" goes to memory, "[10]=34" is what a
/// port reads. Values have the width in which describe() shows them.
z80_record patched(const z80_record& state, const std::string& text) {
    std::string line = " " + describe(state);
    std::istringstream stream(text);
    for (std::string token; stream >> token;) {
        const size_t equals = token.find('=');
        const std::string name = token.substr(0, equals), value = token.substr(equals + 1);
        const auto number = [](const std::string& digits) {
            return std::stoi(digits, nullptr, 16);
        };
        if (name[0] == '(') {
            flat_bus.memory[uint16_t(number(name.substr(1)))] = uint8_t(number(value));
        } else if (name[0] == '[') {
            flat_bus.input[uint8_t(number(name.substr(1)))] = uint8_t(number(value));
        } else {
            const bool half = name == "A" || name == "F";
            const size_t at = line.find(half ? " AF=" : " " + name + "=");
            EXPECT_NE(at, std::string::npos) << token;
            line.replace(at + (half ? 4 : name.size() + 2) + (name == "F" ? 2 : 0), value.size(),
                         value);
        }
    }
    z80_record s = state;
    const int fields = std::sscanf(
        line.c_str(),
        " AF=%hx BC=%hx DE=%hx HL=%hx IX=%hx IY=%hx SP=%hx PC=%hx AF'=%hx BC'=%hx DE'=%hx HL'=%hx "
        "I=%hhx R=%hhx IFF1=%hhu IFF2=%hhu IM=%hhu",
        &s.af, &s.bc, &s.de, &s.hl, &s.ix, &s.iy, &s.sp, &s.pc, &s.af_alt, &s.bc_alt, &s.de_alt,
        &s.hl_alt, &s.i, &s.r, &s.iff1, &s.iff2, &s.interrupt_mode);
    EXPECT_EQ(fields, 17) << line;
    return s;
}

/// Runs a line of the table, which says how it is read.
void run_case(const std::string& line) {
    std::string fields[5];
    std::istringstream stream(line);
    for (std::string& field : fields) std::getline(stream >> std::ws, field, '|');
    const auto& [name, code, before, after, accesses] = fields;
    const std::vector<int> bytes = parse_bytes(code);
    for (const int f : {0x00, 0xFF}) {
        fresh_processor();
        z80_state.af = uint16_t(0xA500 | f);
        z80_state = patched(z80_state, before);
        expect_step(name, bytes, patched(behind(bytes), after), accesses);
        if (before.find("F=") != std::string::npos) break;
    }
    if (bytes[0] != 0xDD) return;
    std::string with_iy = line;
    for (size_t at = 0; (at = with_iy.find("IX=", at)) != std::string::npos;) with_iy[at + 1] = 'Y';
    with_iy.replace(with_iy.find("| DD") + 2, 2, "FD");
    run_case(with_iy);
}

TEST(InstructionEffect, OfTheTable) {
    std::ifstream table(TEST_SOURCE_DIR "/instruction_effects.txt");
    int cases = 0;
    for (std::string line; std::getline(table, line);) {
        if (line.empty() || line[0] == '#') continue;
        run_case(line);
        ++cases;
    }
    EXPECT_GT(cases, 100);
}

TEST(InstructionEffect, MirrorsAndHoles) {
    for (int op = 0x44; op < 0x80; op += 8) {
        run_case("NEG|" + hex_bytes({0xED, op}) + "|AF=0100|AF=FFBB|");
        if (op == 0x44) continue; // RETN
        run_case("RETI|" + hex_bytes({0xED, op + 1}) +
                 "|(7F00)=34 (7F01)=12|PC=1234 SP=7F02|r7F00 r7F01");
    }
    for (int op = 0x0D; op < 0x100; op++) {
        const bool used = (op >= 0x40 && op < 0x80 && (op & ~0x20) != 0x4E && (op | 8) != 0x7F) ||
                          (op >= 0xA0 && op < 0xC0 && (op & 4) == 0);
        if (used) continue;
        fresh_processor();
        z80_state.interrupt_mode = 1;
        expect_step("hole", {0xED, op}, behind({0xED, op}), "");
        EXPECT_TRUE(flat_bus.traps.empty()) << op;
    }
}

/// An operand as opcodes name it: register codes B C D E H L memory A, 8 for an immediate. Behind
/// DD and FD, H and L are the halves of the index register and memory is at a displacement.
struct Form {
    int prefix, code;
};
constexpr int immediate = 8;
constexpr int displacement = 0xFD; // -3

std::vector<Form> forms(bool with_immediate) {
    std::vector<Form> all;
    for (int code = 0; code < (with_immediate ? 9 : 8); code++) all.push_back({0, code});
    for (const int prefix : {0xDD, 0xFD}) {
        for (int code = 4; code <= 6; code++) all.push_back({prefix, code});
    }
    return all;
}

uint16_t& index_pair(z80_record& s, int prefix) {
    return prefix == 0xDD ? s.ix : prefix == 0xFD ? s.iy : s.hl;
}

uint16_t memory_address(int prefix) {
    return uint16_t(index_pair(z80_state, prefix) - (prefix ? 3 : 0));
}

void set_register(z80_record& s, Form form, int value) {
    uint16_t* const pairs[4] = {&s.bc, &s.de, &index_pair(s, form.prefix), &s.af};
    uint16_t& pair = *pairs[form.code / 2];
    const bool high = form.code == 7 || form.code % 2 == 0;
    pair = uint16_t(high ? value << 8 | (pair & 0xFF) : (pair & 0xFF00) | value);
}

uint8_t get_register(z80_record s, Form form) {
    const uint16_t pairs[4] = {s.bc, s.de, index_pair(s, form.prefix), s.af};
    const bool high = form.code == 7 || form.code % 2 == 0;
    return uint8_t(pairs[form.code / 2] >> (high ? 8 : 0));
}

/// The operand's value before the instruction.
void put_operand(Form form, int value) {
    if (form.code == 6) flat_bus.memory[memory_address(form.prefix)] = uint8_t(value);
    if (form.code != 6 && form.code != immediate) set_register(z80_state, form, value);
}

/// The operand's new value: in `want` for a register, as the text of the access for memory.
std::string stored(z80_record& want, Form form, int value) {
    char text[32] = "";
    if (form.code != 6) {
        set_register(want, form, value);
    } else {
        std::snprintf(text, sizeof text, "w%02X=%02X", memory_address(form.prefix), value);
    }
    return text;
}

std::string read_access(Form form) {
    char text[32] = "";
    if (form.code == 6) std::snprintf(text, sizeof text, "r%02X", memory_address(form.prefix));
    return text;
}

std::vector<int> encode(Form form, int opcode, int operand = -1) {
    std::vector<int> bytes;
    if (form.prefix) bytes.push_back(form.prefix);
    bytes.push_back(opcode);
    if (form.prefix && form.code == 6) bytes.push_back(displacement);
    if (operand >= 0) bytes.push_back(operand);
    return bytes;
}

void set_flags(z80_record& s, int f) { s.af = uint16_t((s.af & 0xFF00) | f); }

constexpr int samples[] = {0x00, 0x01, 0x0F, 0x10, 0x29, 0x7F, 0x80, 0xFF};

TEST(InstructionEffect, ByteLoads) {
    for (const int prefix : {0, 0xDD, 0xFD}) {
        for (int op = 0x40; op < 0x80; op++) {
            const int to = op >> 3 & 7, from = op & 7;
            const bool memory = to == 6 || from == 6;
            const bool index = memory || to == 4 || to == 5 || from == 4 || from == 5;
            if (op == 0x76 || (prefix && !index)) continue;
            fresh_processor();
            // Next to the memory operand, H and L are the real ones.
            const int beside = memory ? 0 : prefix;
            const Form source = {from == 6 ? prefix : beside, from};
            const Form target = {to == 6 ? prefix : beside, to};
            if (from == 6) put_operand(source, 0x77);
            const int value = from == 6 ? 0x77 : get_register(z80_state, source);
            const auto bytes = encode({prefix, memory ? 6 : 0}, op);
            z80_record want = behind(bytes);
            const std::string write = stored(want, target, value);
            expect_step("LD r,r", bytes, want, read_access(source) + write);
        }
    }
    for (const Form form : forms(false)) {
        fresh_processor();
        const auto bytes = encode(form, 0x06 | form.code << 3, 0x42);
        z80_record want = behind(bytes);
        const std::string write = stored(want, form, 0x42);
        expect_step("LD r,n", bytes, want, write);
    }
}

TEST(InstructionEffect, ByteArithmeticOnEveryOperand) {
    for (const Form form : forms(true)) {
        for (int n = 0; n < 8 * 8 * 3; n++) {
            const int operation = n & 7, value = samples[n >> 3 & 7], f = (n >> 6) * 0x7F + n / 128;
            fresh_processor();
            set_flags(z80_state, f);
            put_operand(form, value);
            const int opcode =
                form.code == immediate ? 0xC6 | operation << 3 : 0x80 | operation << 3 | form.code;
            const auto bytes = encode(form, opcode, form.code == immediate ? value : -1);
            z80_record want = behind(bytes);
            const ByteResult result = reference_alu(operation, z80_state.af >> 8, value, f);
            want.af = uint16_t(result.value << 8 | result.flags);
            expect_step("ALU", bytes, want, read_access(form));
            if (form.code == immediate || operation > 1) continue;

            fresh_processor(); // INC and DEC of the same operand
            set_flags(z80_state, f);
            put_operand(form, value);
            const auto step = encode(form, 0x04 | form.code << 3 | operation);
            const ByteResult stepped = reference_step(value, operation ? -1 : 1, f);
            want = behind(step);
            const std::string write = stored(want, form, stepped.value);
            set_flags(want, stepped.flags);
            expect_step("INC/DEC", step, want,
                        form.code == 6 ? read_access(form) + " " + write : "");
        }
    }
}

TEST(InstructionEffect, BitGroupsOnEveryOperand) {
    for (const int prefix : {0, 0xDD, 0xFD}) {
        for (int n = 0; n < 256 * 16; n++) {
            const int op = n & 0xFF, value = samples[n >> 8 & 7], f = n >> 11 ? 0xFF : 0x00;
            const int number = op >> 3 & 7;
            const Form operand = {prefix, prefix ? 6 : op & 7};
            fresh_processor();
            z80_state.ix = z80_state.iy = 0x0001; // the displacement wraps below zero
            put_operand(operand, value);
            set_flags(z80_state, f);
            std::vector<int> bytes = {0xCB, op};
            if (prefix) bytes = {prefix, 0xCB, displacement, op};
            z80_record want = behind(bytes);
            ByteResult result = {uint8_t(value & ~(1 << number)), uint8_t(f)};
            if (op < 0x40) result = reference_rotate(number, value, f);
            if (op >= 0xC0) result.value = uint8_t(value | 1 << number);
            std::string accesses = read_access(operand);
            if (op >> 6 == 1) {
                result.flags = reference_bit(value, number, (op & 7) == 6, f);
            } else {
                const std::string write = stored(want, operand, result.value);
                if (!write.empty()) accesses += " " + write;
                if (prefix && (op & 7) != 6) stored(want, {0, op & 7}, result.value);
            }
            set_flags(want, result.flags);
            expect_step("CB", bytes, want, accesses);
        }
    }
}

TEST(InstructionEffect, PortRegisters) {
    for (int code = 0; code < 8; code++) {
        if (code == 6) continue;
        fresh_processor();
        flat_bus.input[0xC2] = 0x81;
        z80_record want = behind({0xED, 0x40});
        stored(want, {0, code}, 0x81);
        set_flags(want, FLAG_S | FLAG_PV);
        expect_step("IN r,(C)", {0xED, 0x40 | code << 3}, want, "iC2");
        fresh_processor();
        char output[16];
        std::snprintf(output, sizeof output, "oC2=%02X", get_register(z80_state, {0, code}));
        expect_step("OUT (C),r", {0xED, 0x41 | code << 3}, behind({0xED, 0x41}), output);
    }
}

} // namespace
