// What each instruction changes, and its accesses to memory and ports in order; everything not
// named must stay as it was.

#include "support/flat_bus.h"
#include "z80/alu_reference.h"
#include "z80/processor_setup.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

#include <span>
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

/// Registers not given start as in fresh_processor: AF=A500 BC=B1C2 DE=D3E4 HL=4567 IX=5678
/// IY=6789 SP=7F00 PC=8000 AF'=1A2B BC'=3C4D DE'=5E6F HL'=7081 I=21 R=32 IFF1=0 IFF2=1 IM=0.
/// A case without F runs with all flags clear and all set.
struct Case {
    const char* name;
    const char* bytes;
    const char* before;
    const char* after;
    const char* accesses;
};

void run_case(const Case& c, const std::vector<int>& bytes, const std::string& before,
              const std::string& after) {
    const bool own_flags = before.find("F=") != std::string::npos;
    for (const int f : {0x00, 0xFF}) {
        fresh_processor();
        z80_state.af = uint16_t(0xA500 | f);
        z80_state = patched(z80_state, before);
        expect_step(c.name, bytes, patched(behind(bytes), after), c.accesses);
        if (own_flags) return;
    }
}

/// Runs every case; those behind DD run again behind FD with IY for IX.
void run_cases(std::span<const Case> cases) {
    for (const Case& c : cases) {
        std::vector<int> bytes = parse_bytes(c.bytes);
        std::string before = c.before, after = c.after;
        run_case(c, bytes, before, after);
        if (bytes[0] != 0xDD) continue;
        bytes[0] = 0xFD;
        for (std::string* text : {&before, &after}) {
            const size_t at = text->find("IX=");
            if (at != std::string::npos) text->replace(at, 2, "IY");
        }
        run_case(c, bytes, before, after);
    }
}

constexpr Case unprefixed[] = {
    {"NOP at the top of memory", "00", "PC=FFFF", "PC=0000", ""},
    {"LD HL,nn across the top", "21 34 12", "PC=FFFE", "HL=1234 PC=0001", ""},
    {"LD BC,nn", "01 34 12", "", "BC=1234", ""},
    {"LD DE,nn", "11 34 12", "", "DE=1234", ""},
    {"LD SP,nn", "31 34 12", "", "SP=1234", ""},
    {"LD (BC),A", "02", "", "", "wB1C2=A5"},
    {"LD (DE),A", "12", "", "", "wD3E4=A5"},
    {"LD A,(BC)", "0A", "(B1C2)=77", "A=77", "rB1C2"},
    {"LD A,(DE)", "1A", "(D3E4)=77", "A=77", "rD3E4"},
    {"LD (nn),HL at FFFF", "22 FF FF", "", "", "wFFFF=67 w00=45"},
    {"LD HL,(nn) at FFFF", "2A FF FF", "(FFFF)=78 (0)=56", "HL=5678", "rFFFF r00"},
    {"LD (nn),A", "32 34 12", "", "", "w1234=A5"},
    {"LD A,(nn)", "3A 34 12", "(1234)=77", "A=77", "r1234"},
    {"INC BC", "03", "BC=00FF", "BC=0100", ""},
    {"INC DE", "13", "DE=FFFF", "DE=0000", ""},
    {"INC HL", "23", "", "HL=4568", ""},
    {"INC SP", "33", "SP=FFFF", "SP=0000", ""},
    {"DEC BC", "0B", "BC=0100", "BC=00FF", ""},
    {"DEC DE", "1B", "DE=0000", "DE=FFFF", ""},
    {"DEC HL", "2B", "", "HL=4566", ""},
    {"DEC SP", "3B", "SP=0000", "SP=FFFF", ""},
    {"ADD HL,DE", "19", "F=FF HL=0FFF DE=0001", "HL=1000 F=D4", ""},
    {"ADD HL,HL", "29", "F=00 HL=8800", "HL=1000 F=11", ""},
    {"ADD HL,SP", "39", "F=00 HL=2700 SP=0100", "HL=2800 F=28", ""},
    {"EX AF,AF'", "08", "AF=1234", "AF=1A2B AF'=1234", ""},
    {"EXX", "D9", "", "BC=3C4D DE=5E6F HL=7081 BC'=B1C2 DE'=D3E4 HL'=4567", ""},
    {"EX DE,HL", "EB", "", "DE=4567 HL=D3E4", ""},
    {"EX (SP),HL", "E3", "(7F00)=34 (7F01)=12", "HL=1234", "r7F00 r7F01 w7F00=67 w7F01=45"},
    {"LD SP,HL", "F9", "", "SP=4567", ""},
    {"JR backward", "18 80", "", "PC=7F82", ""},
    {"JR across zero", "18 FC", "PC=0000", "PC=FFFE", ""},
    {"DJNZ from zero", "10 FE", "BC=00C2", "BC=FFC2 PC=8000", ""},
    {"CALL, stack wraps", "CD 34 12", "SP=0001", "PC=1234 SP=FFFF", "wFFFF=03 w00=80"},
    {"RET", "C9", "(7F00)=34 (7F01)=12", "PC=1234 SP=7F02", "r7F00 r7F01"},
    {"CALL NZ taken", "C4 34 12", "F=BF", "PC=1234 SP=7EFE", "w7EFE=03 w7EFF=80"},
    {"CALL NZ not taken", "C4 34 12", "F=40", "", ""}, // reads its operand all the same
    {"RET NC taken", "D0", "F=FE (7F00)=34 (7F01)=12", "PC=1234 SP=7F02", "r7F00 r7F01"},
    {"RST 38", "FF", "", "PC=0038 SP=7EFE", "w7EFE=01 w7EFF=80"},
    {"PUSH BC", "C5", "", "SP=7EFE", "w7EFE=C2 w7EFF=B1"},
    {"PUSH DE", "D5", "", "SP=7EFE", "w7EFE=E4 w7EFF=D3"},
    {"PUSH HL", "E5", "", "SP=7EFE", "w7EFE=67 w7EFF=45"},
    {"PUSH AF", "F5", "AF=1234", "SP=7EFE", "w7EFE=34 w7EFF=12"},
    {"POP DE", "D1", "(7F00)=34 (7F01)=12", "DE=1234 SP=7F02", "r7F00 r7F01"},
    {"POP HL", "E1", "(7F00)=34 (7F01)=12", "HL=1234 SP=7F02", "r7F00 r7F01"},
    {"POP AF", "F1", "(7F00)=FF (7F01)=12", "AF=12FF SP=7F02", "r7F00 r7F01"},
    {"POP at FFFF", "C1", "SP=FFFF (FFFF)=34 (0)=12", "BC=1234 SP=0001", "rFFFF r00"},
    {"OUT (n),A", "D3 10", "", "", "o10=A5"},
    {"IN A,(n)", "DB 10", "[10]=00", "A=00", "i10"},
    {"DI", "F3", "IFF1=1", "IFF1=0 IFF2=0", ""},
    {"EI", "FB", "IFF2=0", "IFF1=1 IFF2=1", ""},
    {"HALT", "76", "", "PC=8000", ""},
};

TEST(InstructionEffect, Unprefixed) { run_cases(unprefixed); }

constexpr Case extended[] = {
    {"LD (nn),BC", "ED 43 34 12", "", "", "w1234=C2 w1235=B1"},
    {"LD (nn),DE", "ED 53 34 12", "", "", "w1234=E4 w1235=D3"},
    {"LD (nn),HL", "ED 63 34 12", "", "", "w1234=67 w1235=45"},
    {"LD (nn),SP", "ED 73 FF FF", "", "", "wFFFF=00 w00=7F"},
    {"LD BC,(nn)", "ED 4B 34 12", "(1234)=78 (1235)=56", "BC=5678", "r1234 r1235"},
    {"LD DE,(nn)", "ED 5B 34 12", "(1234)=78 (1235)=56", "DE=5678", "r1234 r1235"},
    {"LD HL,(nn)", "ED 6B 34 12", "(1234)=78 (1235)=56", "HL=5678", "r1234 r1235"},
    {"LD SP,(nn)", "ED 7B FF FF", "(FFFF)=78 (0)=56", "SP=5678", "rFFFF r00"},
    {"ADC HL,DE", "ED 5A", "F=01 HL=7FFF DE=0000", "HL=8000 F=94", ""},
    {"ADC HL,HL", "ED 6A", "F=01 HL=8000", "HL=0001 F=05", ""},
    {"ADC HL,SP", "ED 7A", "F=00 HL=FFFF SP=0001", "HL=0000 F=51", ""},
    {"SBC HL,DE", "ED 52", "F=01 HL=0000 DE=0000", "HL=FFFF F=BB", ""},
    {"SBC HL,HL", "ED 62", "F=00", "HL=0000 F=42", ""},
    {"SBC HL,SP", "ED 72", "F=01 HL=8000 SP=0000", "HL=7FFF F=3E", ""},
    {"LD I,A", "ED 47", "", "I=A5", ""},
    {"LD R,A", "ED 4F", "", "R=A5", ""},
    {"LD A,I", "ED 57", "F=FF", "AF=2125", ""},
    {"LD A,R counts itself", "ED 5F", "F=00 R=FF IFF1=1 IFF2=0", "A=81 F=80", ""},
    {"RRD", "ED 67", "AF=8401 (4567)=20", "AF=8081", "r4567 w4567=42"},
    {"RLD", "ED 6F", "AF=7A00 (4567)=31", "AF=7320", "r4567 w4567=1A"},
    {"IN (C)", "ED 70", "F=FF [C2]=00", "F=6D", "iC2"},
    {"OUT (C),0", "ED 71", "", "", "oC2=00"},
    {"RETN", "ED 45", "(7F00)=34 (7F01)=12", "PC=1234 SP=7F02 IFF1=1", "r7F00 r7F01"},
    {"IM 0", "ED 46", "IM=1", "IM=0", ""},
    {"IM 0 mirror", "ED 66", "IM=1", "IM=0", ""},
    {"IM 1", "ED 56", "", "IM=1", ""},
    {"IM 1 mirror", "ED 76", "", "IM=1", ""},
    {"IM 2", "ED 5E", "", "IM=2", ""},
    {"IM 2 mirror", "ED 7E", "", "IM=2", ""},
};

TEST(InstructionEffect, Extended) {
    run_cases(extended);
    for (int op = 0x44; op < 0x80; op += 8) {
        const std::string neg = hex_bytes({0xED, op}), reti = hex_bytes({0xED, op + 1});
        const Case mirrors[] = {
            {"NEG", neg.c_str(), "AF=0100", "AF=FFBB", ""},
            {"RETI", reti.c_str(), "(7F00)=34 (7F01)=12", "PC=1234 SP=7F02", "r7F00 r7F01"}};
        run_cases(std::span(mirrors, op == 0x44 ? 1 : 2));
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

constexpr Case blocks[] = {
    // Transfers: n = value + A gives bits 3 and 5.
    {"LDI", "ED A0", "F=FF BC=0002 (4567)=08", "F=CD BC=0001 DE=D3E5 HL=4568", "r4567 wD3E4=08"},
    {"LDI wraps", "ED A0", "F=00 BC=0001 HL=FFFF DE=FFFF (FFFF)=05", "F=28 BC=0000 DE=0000 HL=0000",
     "rFFFF wFFFF=05"},
    {"LDD wraps", "ED A8", "F=00 BC=0000 HL=0000 DE=0000 (0)=00", "F=04 BC=FFFF DE=FFFF HL=FFFF",
     "r00 w00=00"},
    {"LDIR repeats", "ED B0", "BC=0002 (4567)=77", "BC=0001 DE=D3E5 HL=4568 PC=8000",
     "r4567 wD3E4=77"},
    {"LDIR ends", "ED B0", "F=FF BC=0001 (4567)=08", "F=C9 BC=0000 DE=D3E5 HL=4568",
     "r4567 wD3E4=08"},
    {"LDDR repeats", "ED B8", "BC=0101", "BC=0100 DE=D3E3 HL=4566 PC=8000", "r4567 wD3E4=00"},
    {"LDDR ends", "ED B8", "F=00 BC=0001 (4567)=5D", "F=20 BC=0000 DE=D3E3 HL=4566",
     "r4567 wD3E4=5D"},
    // Searches: n = A - value - H gives bits 3 and 5; C is kept.
    {"CPI", "ED A1", "F=01 BC=0002", "F=87 BC=0001 HL=4568", "r4567"},
    {"CPI borrows", "ED A1", "AF=0000 BC=0002 (4567)=01", "F=BE BC=0001 HL=4568", "r4567"},
    {"CPD matches", "ED A9", "F=FF BC=0001 (4567)=A5", "F=43 BC=0000 HL=4566", "r4567"},
    {"CPIR fails", "ED B1", "F=01 BC=0003", "F=83 BC=0000 HL=456A", "r4567 r4568 r4569"},
    {"CPIR finds", "ED B1", "F=00 BC=0001 (4567)=A5", "F=42 BC=0000 HL=4568", "r4567"},
    {"CPDR wraps", "ED B9", "F=00 BC=0000 HL=0000 (FFFF)=A5", "F=46 BC=FFFE HL=FFFE", "r00 rFFFF"},
    // Input and output: B counts, the port is C.
    {"INI", "ED A2", "F=FF BC=0210 [10]=77", "F=BF BC=0110 HL=4568", "i10 w4567=77"},
    {"IND", "ED AA", "F=00 BC=0110 [10]=77", "F=42 BC=0010 HL=4566", "i10 w4567=77"},
    {"INIR repeats", "ED B2", "BC=0010 [10]=77", "BC=FF10 HL=4568 PC=8000", "i10 w4567=77"},
    {"INIR ends", "ED B2", "F=BD BC=0110 [10]=77", "F=FF BC=0010 HL=4568", "i10 w4567=77"},
    {"INDR repeats", "ED BA", "BC=0210", "BC=0110 HL=4566 PC=8000", "i10 w4567=00"},
    {"INDR ends", "ED BA", "F=00 BC=0110", "F=42 BC=0010 HL=4566", "i10 w4567=00"},
    {"OUTI", "ED A3", "F=FF BC=0010 (4567)=77", "F=BF BC=FF10 HL=4568", "r4567 o10=77"},
    {"OUTD", "ED AB", "F=00 BC=0110 HL=0000 (0)=77", "F=42 BC=0010 HL=FFFF", "r00 o10=77"},
    {"OTIR repeats", "ED B3", "BC=0210 HL=FFFF (FFFF)=77", "BC=0110 HL=0000 PC=8000",
     "rFFFF o10=77"},
    {"OTIR ends", "ED B3", "F=00 BC=0110 (4567)=77", "F=42 BC=0010 HL=4568", "r4567 o10=77"},
    {"OTDR repeats", "ED BB", "BC=0210", "BC=0110 HL=4566 PC=8000", "r4567 o10=00"},
    {"OTDR ends", "ED BB", "F=41 BC=0110", "F=43 BC=0010 HL=4566", "r4567 o10=00"},
};

TEST(InstructionEffect, Blocks) { run_cases(blocks); }

constexpr Case indexed[] = {
    {"LD IX,nn", "DD 21 34 12", "", "IX=1234", ""},
    {"LD (nn),IX", "DD 22 FF FF", "IX=5678", "", "wFFFF=78 w00=56"},
    {"LD IX,(nn)", "DD 2A 34 12", "(1234)=BC (1235)=9A", "IX=9ABC", "r1234 r1235"},
    {"INC IX", "DD 23", "IX=FFFF", "IX=0000", ""},
    {"DEC IX", "DD 2B", "IX=0000", "IX=FFFF", ""},
    {"LD (IX+d),n wraps up", "DD 36 01 42", "IX=FFFF", "", "w00=42"},
    {"LD (IX+d),n wraps down", "DD 36 80 42", "IX=0010", "", "wFF90=42"},
    {"POP IX", "DD E1", "(7F00)=34 (7F01)=12", "IX=1234 SP=7F02", "r7F00 r7F01"},
    {"PUSH IX", "DD E5", "IX=1234", "SP=7EFE", "w7EFE=34 w7EFF=12"},
    {"EX (SP),IX", "DD E3", "IX=9ABC (7F00)=34 (7F01)=12", "IX=1234",
     "r7F00 r7F01 w7F00=BC w7F01=9A"},
    {"JP (IX)", "DD E9", "IX=1234", "PC=1234", ""},
    {"LD SP,IX", "DD F9", "IX=1234", "SP=1234", ""},
    {"ADD IX,BC", "DD 09", "F=FF IX=0FFF BC=0001", "IX=1000 F=D4", ""},
    {"ADD IX,DE", "DD 19", "F=00 IX=2700 DE=0100", "IX=2800 F=28", ""},
    {"ADD IX,IX", "DD 29", "F=00 IX=8800", "IX=1000 F=11", ""},
    {"ADD IX,SP", "DD 39", "F=00 IX=FFFF SP=0001", "IX=0000 F=11", ""},
};

TEST(InstructionEffect, Indexed) { run_cases(indexed); }

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
