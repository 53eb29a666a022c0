#include "z80/disassembler.h"

#include "z80/z80.h"

#include <array>
#include <cstdio>
#include <initializer_list>
#include <string_view>

namespace {

using std::string_view;

// Operand kinds. The low byte, signed, is what the operands add to the instruction's length.
constexpr int NO_OPERAND = 0;
constexpr int BYTE = 1;
constexpr int WORD = 2;
constexpr int BYTE_BEFORE_OPCODE = 256; ///< displacement of DDCB and FDCB
constexpr int JUMP_DISTANCE = 257;
constexpr int TWO_BYTES = 258;
constexpr int PREFIX_ALONE = 255;

// Blocks of the minor table.
constexpr int BLOCK_CB = 0, BLOCK_DD = 1, BLOCK_ED = 2, BLOCK_FD = 3, BLOCK_DDCB = 4,
              BLOCK_FDCB = 5, BLOCKS = 6;

// How operands stand in the texts.
constexpr string_view N = "%02xh";
constexpr string_view NN = "%02x%02xh"; ///< high byte first
constexpr string_view TARGET = "%04xh";

/// A mnemonic as a printf format. Without a text it is a prefix, and the kind is its block.
struct Entry {
    std::array<char, 32> text = {};
    int kind = NO_OPERAND;

    constexpr bool is_prefix() const { return text[0] == 0; }
};

constexpr int kind_of(string_view text) {
    if (text.find(TARGET) != string_view::npos) return JUMP_DISTANCE;
    if (text.find(NN) != string_view::npos) return WORD;
    const size_t first = text.find(N);
    if (first == string_view::npos) return NO_OPERAND;
    return text.find(N, first + 1) == string_view::npos ? BYTE : TWO_BYTES;
}

constexpr Entry join(std::initializer_list<string_view> parts) {
    Entry entry;
    size_t length = 0;
    for (const string_view part : parts) {
        for (const char c : part) entry.text[length++] = c;
    }
    entry.kind = kind_of({entry.text.data(), length});
    return entry;
}

constexpr Entry with_kind(Entry entry, int kind) {
    entry.kind = kind;
    return entry;
}
constexpr Entry prefix(int block) { return with_kind({}, block); }

/// What stands for HL and its parts: the unprefixed names, or those of an index register.
struct Names {
    string_view pair, high, low, memory;
};
constexpr Names HL_NAMES = {"hl", "h", "l", "(hl)"};
constexpr Names IX_NAMES = {"ix", "ixh", "ixl", "(ix+%02xh)"};
constexpr Names IY_NAMES = {"iy", "iyh", "iyl", "(iy+%02xh)"};

constexpr unsigned MEMORY_OPERAND = 6;
constexpr unsigned HALT = 0x76;

constexpr string_view digit(unsigned n) { return string_view("01234567").substr(n, 1); }

constexpr string_view byte_operand(unsigned n, const Names& names) {
    const string_view operands[8] = {"b", "c", "d", "e", names.high, names.low, names.memory, "a"};
    return operands[n & 7];
}
constexpr string_view pair_operand(unsigned n, const Names& names, string_view last) {
    const string_view operands[4] = {"bc", "de", names.pair, last};
    return operands[n & 3];
}
constexpr string_view condition(unsigned n) {
    constexpr string_view conditions[8] = {"nz", "z", "nc", "c", "po", "pe", "p", "m"};
    return conditions[n & 7];
}
constexpr string_view shift(unsigned n) {
    constexpr string_view shifts[8] = {"rlc ", "rrc ", "rl ",   "rr ",
                                       "sla ", "sra ", "slia ", "srl "};
    return shifts[n & 7];
}
constexpr string_view arithmetic(unsigned n) {
    constexpr string_view operations[8] = {"add a,", "adc a,", "sub ", "sbc a,",
                                           "and ",   "xor ",   "or ",  "cp "};
    return operations[n & 7];
}

// ---- unprefixed --------------------------------------------------------------------------------

constexpr Entry jump_or_nothing(unsigned y) {
    switch (y) {
    case 0: return join({"nop"});
    case 1: return join({"ex af,af'"});
    case 2: return join({"djnz ", TARGET});
    case 3: return join({"jr ", TARGET});
    default: return join({"jr ", condition(y - 4), ",", TARGET});
    }
}

constexpr Entry load_indirect(unsigned y, const Names& names) {
    switch (y) {
    case 0: return join({"ld (bc),a"});
    case 1: return join({"ld a,(bc)"});
    case 2: return join({"ld (de),a"});
    case 3: return join({"ld a,(de)"});
    case 4: return join({"ld (", NN, "),", names.pair});
    case 5: return join({"ld ", names.pair, ",(", NN, ")"});
    case 6: return join({"ld (", NN, "),a"});
    default: return join({"ld a,(", NN, ")"});
    }
}

/// Opcodes 00 to 3F.
constexpr Entry first_quarter(unsigned op, const Names& names) {
    constexpr string_view on_accumulator[8] = {"rlca", "rrca", "rla", "rra",
                                               "daa",  "cpl",  "scf", "ccf"};
    const unsigned y = op >> 3 & 7;
    const string_view pair = pair_operand(op >> 4, names, "sp");
    const string_view byte = byte_operand(y, names);
    switch (op & 0x0F) {
    case 0x01: return join({"ld ", pair, ",", NN});
    case 0x03: return join({"inc ", pair});
    case 0x09: return join({"add ", names.pair, ",", pair});
    case 0x0B: return join({"dec ", pair});
    default: break;
    }
    switch (op & 7) {
    case 0: return jump_or_nothing(y);
    case 2: return load_indirect(y, names);
    case 4: return join({"inc ", byte});
    case 5: return join({"dec ", byte});
    case 6: return join({"ld ", byte, ",", N});
    default: return join({on_accumulator[y]});
    }
}

/// Beside the memory operand, H and L keep their names behind a prefix.
constexpr Entry load_byte(unsigned op, const Names& names) {
    if (op == HALT) return join({"halt"});
    const bool memory = (op & 7) == MEMORY_OPERAND || (op >> 3 & 7) == MEMORY_OPERAND;
    const Names used = memory ? Names{"hl", "h", "l", names.memory} : names;
    return join({"ld ", byte_operand(op >> 3, used), ",", byte_operand(op, used)});
}

constexpr Entry restart(unsigned op) {
    const unsigned y = op >> 3 & 7;
    if (y < 2) return join({"rst ", y ? "8" : "0"});
    return join({"rst ", digit(y >> 1), y & 1 ? "8h" : "0h"});
}

/// Opcodes C0 to FF.
constexpr Entry last_quarter(unsigned op, const Names& names) {
    switch (op) {
    case 0xC3: return join({"jp ", NN});
    case 0xC9: return join({"ret"});
    case 0xCB: return prefix(BLOCK_CB);
    case 0xCD: return join({"call ", NN});
    case 0xD3: return join({"out (", N, "),a"});
    case 0xD9: return join({"exx"});
    case 0xDB: return join({"in a,(", N, ")"});
    case 0xDD: return prefix(BLOCK_DD);
    case 0xE3: return join({"ex (sp),", names.pair});
    case 0xE9: return join({"jp (", names.pair, ")"});
    case 0xEB: return join({"ex de,hl"});
    case 0xED: return prefix(BLOCK_ED);
    case 0xF3: return join({"di"});
    case 0xF9: return join({"ld sp,", names.pair});
    case 0xFB: return join({"ei"});
    case 0xFD: return prefix(BLOCK_FD);
    default: break;
    }
    const string_view when = condition(op >> 3);
    switch (op & 7) {
    case 0: return join({"ret ", when});
    case 1: return join({"pop ", pair_operand(op >> 4, names, "af")});
    case 2: return join({"jp ", when, ",", NN});
    case 4: return join({"call ", when, ",", NN});
    case 5: return join({"push ", pair_operand(op >> 4, names, "af")});
    case 6: return join({arithmetic(op >> 3), N});
    default: return restart(op);
    }
}

constexpr Entry unprefixed(unsigned op, const Names& names) {
    switch (op >> 6) {
    case 0: return first_quarter(op, names);
    case 1: return load_byte(op, names);
    case 2: return join({arithmetic(op >> 3), byte_operand(op, names)});
    default: return last_quarter(op, names);
    }
}

// ---- CB, DDCB, FDCB ----------------------------------------------------------------------------

constexpr Entry bit_group(unsigned op, string_view load, string_view operand, string_view remark) {
    constexpr string_view groups[4] = {"", "bit ", "res ", "set "};
    const unsigned y = op >> 3 & 7;
    if (op < 0x40) return join({load, shift(y), operand});
    return join({load, groups[op >> 6], digit(y), ",", operand, remark});
}

constexpr Entry indexed_bit_group(unsigned op, const Names& names) {
    const bool copies = (op & 7) != MEMORY_OPERAND;
    const bool tests = op >> 6 == 1;
    Entry load = join({});
    if (copies && !tests) load = join({"ld ", byte_operand(op, HL_NAMES), ","});
    const string_view remark = copies && tests ? "  ;undoc equiv" : "";
    return with_kind(bit_group(op, load.text.data(), names.memory, remark), BYTE_BEFORE_OPCODE);
}

// ---- ED ----------------------------------------------------------------------------------------

constexpr unsigned LAST_TRAP = 0x06;

/// 28 to 3F: names of a wider set of traps, of which the processor serves none.
constexpr Entry named_trap(unsigned op) {
    constexpr string_view names[24] = {
        "system",   "mouse",   "getdir", "setdir", "",      "",          "",         "debug",
        "open",     "close",   "read",   "write",  "lseek", "strerror",  "time",     "opendir",
        "closedir", "readdir", "chdir",  "getcwd", "misc",  "ftruncate", "opendisk", "closedisk"};
    const string_view name = names[op - 0x28];
    return name.empty() ? join({"undefined"}) : join({"emt_", name});
}

constexpr Entry interrupt_mode(unsigned op) {
    switch (op) {
    case 0x46: return join({"im 0"});
    case 0x56: return join({"im 1"});
    case 0x5E: return join({"im 2"});
    case 0x66: return join({"im\t0\t\t;undoc equiv"});
    case 0x76: return join({"im\t1\t\t;undoc equiv"});
    case 0x7E: return join({"im\t2\t\t;undoc equiv"});
    default: return join({"undefined"});
    }
}

/// 40 to 7F.
constexpr Entry extended_group(unsigned op) {
    constexpr string_view special[8] = {"ld i,a", "ld r,a", "ld a,i",    "ld a,r",
                                        "rrd",    "rld",    "undefined", "undefined"};
    const unsigned y = op >> 3 & 7;
    const string_view byte = byte_operand(y, HL_NAMES);
    const string_view pair = pair_operand(op >> 4, HL_NAMES, "sp");
    const string_view remark = (op & 0xF0) == 0x60 ? "\t;undoc equiv" : ""; // 22 and 2A are shorter
    switch (op & 7) {
    case 0: return y == MEMORY_OPERAND ? join({"in (c)"}) : join({"in ", byte, ",(c)"});
    case 1: return join({"out (c),", y == MEMORY_OPERAND ? "0" : byte});
    case 2: return join({y & 1 ? "adc" : "sbc", " hl,", pair});
    case 3:
        if (y & 1) return join({"ld ", pair, ",(", NN, ")", remark});
        return join({"ld (", NN, "),", pair, remark});
    case 4: return join({y ? "neg\t\t\t;undoc equiv" : "neg"});
    case 5: return join({y == 0 ? "retn" : y == 1 ? "reti" : "ret\t\t\t;undoc equiv"});
    case 6: return interrupt_mode(op);
    default: return join({special[y]});
    }
}

/// A0 to BF.
constexpr Entry block_instruction(unsigned op) {
    constexpr string_view names[4][4] = {{"ldi", "cpi", "ini", "outi"},
                                         {"ldd", "cpd", "ind", "outd"},
                                         {"ldir", "cpir", "inir", "otir"},
                                         {"lddr", "cpdr", "indr", "otdr"}};
    if ((op & 7) > 3) return join({"undefined"});
    return join({names[op >> 3 & 3][op & 3]});
}

constexpr Entry extended(unsigned op) {
    if (op <= LAST_TRAP) return join({"emulator trap"});
    if (op >= 0x28 && op < 0x40) return named_trap(op);
    if (op >= 0x40 && op < 0x80) return extended_group(op);
    if (op >= 0xA0 && op < 0xC0) return block_instruction(op);
    return join({"undefined"});
}

// ---- DD, FD ------------------------------------------------------------------------------------

/// Behind a prefix an instruction is another one where it names HL or a part of it.
constexpr Entry indexed(unsigned op, const Names& names, int bit_block) {
    if (op == 0xCB) return prefix(bit_block);
    if (op == 0x9C) return join({"sbc ", names.high});
    if (op == 0x9D) return join({"sbc ", names.low});
    const Entry entry = unprefixed(op, names);
    if (entry.text != unprefixed(op, HL_NAMES).text) return entry;
    return with_kind(join({"undefined"}), PREFIX_ALONE);
}

// ---- the tables --------------------------------------------------------------------------------

using Block = std::array<Entry, 256>; ///< by opcode

constexpr Block make_block(Entry (*entry_of)(unsigned op)) {
    Block block = {};
    for (unsigned op = 0; op < block.size(); ++op) block[op] = entry_of(op);
    return block;
}

constexpr Block major = make_block([](unsigned op) { return unprefixed(op, HL_NAMES); });
constexpr Block cb_block =
    make_block([](unsigned op) { return bit_group(op, "", byte_operand(op, HL_NAMES), ""); });
constexpr Block dd_block =
    make_block([](unsigned op) { return indexed(op, IX_NAMES, BLOCK_DDCB); });
constexpr Block ed_block = make_block(extended);
constexpr Block fd_block =
    make_block([](unsigned op) { return indexed(op, IY_NAMES, BLOCK_FDCB); });
constexpr Block ddcb_block =
    make_block([](unsigned op) { return indexed_bit_group(op, IX_NAMES); });
constexpr Block fdcb_block =
    make_block([](unsigned op) { return indexed_bit_group(op, IY_NAMES); });

/// Indexed by the block numbers above.
constexpr std::array<const Block*, BLOCKS> minor = {&cb_block, &dd_block,   &ed_block,
                                                    &fd_block, &ddcb_block, &fdcb_block};

// ---- one line ----------------------------------------------------------------------------------

/// The entry of the instruction at `next`, which becomes the address behind the opcode bytes.
const Entry& find_entry(uint16_t& next, byte_reader read) {
    const Entry& entry = major[read(next++)];
    if (!entry.is_prefix()) return entry;
    const Entry& second = (*minor[size_t(entry.kind)])[read(next++)];
    if (!second.is_prefix()) return second;
    ++next; // the displacement
    return (*minor[size_t(second.kind)])[read(next++)];
}

/// The first and the second number that the text of the entry asks for. No byte beyond them is
/// read: it may be a device's, and reading the disk controller's status ends its interrupt request.
std::array<unsigned, 2> operands_of(const Entry& entry, uint16_t next, byte_reader read) {
    const auto behind = uint16_t(next + 1);
    switch (entry.kind) {
    case BYTE: return {read(next), 0};
    case WORD: return {read(behind), read(next)};
    case TWO_BYTES: return {read(next), read(behind)};
    case JUMP_DISTANCE: return {uint16_t(behind + int8_t(read(next))), 0};
    case BYTE_BEFORE_OPCODE: return {read(uint16_t(next - 2)), 0};
    default: return {0, 0};
    }
}

constexpr int BYTE_COLUMNS = 4;

} // namespace

uint8_t peek_memory(uint16_t address) {
    const int64_t now = z80_state.t_count;
    const uint8_t value = mem_read(address);
    z80_state.t_count = now;
    return value;
}

uint16_t disassemble(uint16_t address, char* line) {
    return disassemble_by(peek_memory, address, line);
}

uint16_t disassemble_by(byte_reader read, uint16_t address, char* line) {
    uint16_t next = address;
    const Entry& entry = find_entry(next, read);
    const auto end = uint16_t(next + int8_t(entry.kind));
    const auto length = uint16_t(end - address);

    char* const line_end = line + DISASSEMBLY_LINE;
    char* out = line;
    const auto room = [&] { return size_t(line_end - out); };
    out += std::snprintf(out, room(), " %04X ", unsigned{address});
    for (uint16_t n = 0; n < length; ++n) {
        out += std::snprintf(out, room(), "%02X ", unsigned{read(uint16_t(address + n))});
    }
    for (int n = length; n < BYTE_COLUMNS; ++n) out += std::snprintf(out, room(), "   ");
    const auto [first, second] = operands_of(entry, next, read);
    std::snprintf(out, room(), entry.text.data(), first, second);
    return end;
}

std::string disassembly_listing() {
    std::string listing;
    char line[DISASSEMBLY_LINE];
    char heading[16];
    uint16_t address = 0;
    uint16_t next = 0;
    do {
        address = next;
        next = disassemble(address, line);
        std::snprintf(heading, sizeof heading, ". %04Xh    ", unsigned{address});
        listing.append(heading).append(line) += '\n';
    } while (next > address);
    return listing;
}

void regdump(char* line, int kind) {
    const z80_record& s = z80_state;
    switch (kind) {
    case 0:
        std::snprintf(line, DISASSEMBLY_LINE,
                      "AF:%04X,BC:%04X,DE:%04X,HL:%04X,IP:%04X,R:%02X|SZ-H-PNC", s.af, s.bc, s.de,
                      s.hl, s.pc, s.r);
        break;
    case 1:
        std::snprintf(line, DISASSEMBLY_LINE, "IX:%04X,IY:%04X,SP:%02X,I:%02X,BP:%04X(%s),FL:%08i",
                      s.ix, s.iy, s.sp, s.i, s.breakpoint, s.breakpoint_enabled ? "ON " : "OFF",
                      bytetobin(uint8_t(s.af)));
        break;
    default:
        std::snprintf(line, DISASSEMBLY_LINE, "TCOUNT:%024llu",
                      static_cast<unsigned long long>(s.t_count));
        break;
    }
}

int bytetobin(uint8_t value) {
    int digits = 0;
    for (int bit = 7; bit >= 0; --bit) digits = digits * 10 + (value >> bit & 1);
    return digits;
}
