// Every operand of every arithmetic instruction, through the helper and through the instruction.

#include "support/flat_bus.h"
#include "z80/alu_reference.h"
#include "z80/z80.h"

#include <gtest/gtest.h>

namespace {

constexpr uint16_t code = 0x8000;
constexpr uint16_t data = 0x4000;
/// Both carries, with all other flags clear and set.
constexpr int old_flags[] = {0x00, 0x01, 0xFE, 0xFF};

struct Arithmetic : testing::Test {
    Arithmetic() {
        flat_bus.clear();
        z80_init(2216750);
        z80_state.hl = data;
    }
};

void set_af(int a, int f) { z80_state.af = uint16_t(a << 8 | f); }
ByteResult af() { return {uint8_t(z80_state.af >> 8), uint8_t(z80_state.af)}; }
uint8_t flags() { return uint8_t(z80_state.af); }

void run_code() {
    z80_state.pc = code;
    z80_run(0);
}

std::string show(const char* what, int opcode, int a, int v, int f, ByteResult got,
                 ByteResult want) {
    char text[160];
    std::snprintf(text, sizeof text,
                  "%s %02X: A %02X operand %02X F %02X gave %02X F %02X, not %02X F %02X", what,
                  opcode, a, v, f, got.value, got.flags, want.value, want.flags);
    return text;
}

TEST_F(Arithmetic, AccumulatorWithOperand) {
    using Helper = void (*)(uint8_t);
    constexpr Helper helpers[8] = {do_add_byte, do_adc_byte, do_sub_byte, do_sbc_byte,
                                   do_and_byte, do_xor_byte, do_or_byte,  do_cp};
    for (int operation = 0; operation < 8; operation++) {
        const int opcode = 0x80 | operation << 3; // operand B
        flat_bus.load(code, {opcode});
        for (const int f : old_flags) {
            for (int pair = 0; pair < 0x10000; pair++) {
                const int a = pair >> 8, v = pair & 0xFF;
                const ByteResult want = reference_alu(operation, a, v, f);
                set_af(a, f);
                helpers[operation](uint8_t(v));
                if (af() != want) FAIL() << show("helper", opcode, a, v, f, af(), want);
                set_af(a, f);
                z80_state.bc = uint16_t(v << 8);
                run_code();
                if (af() != want) FAIL() << show("opcode", opcode, a, v, f, af(), want);
                if (operation > 3) continue;
                (operation < 2 ? do_add_flags : do_sub_flags)(uint8_t(a), uint8_t(v), want.value);
                if (af() != want) FAIL() << show("flags", opcode, a, v, f, af(), want);
            }
        }
    }
}

TEST_F(Arithmetic, AccumulatorAloneWithEveryFlagRegister) {
    struct {
        int opcode;
        void (*helper)();
    } constexpr cases[] = {{0x07, do_rlca}, {0x0F, do_rrca}, {0x17, do_rla},
                           {0x1F, do_rra},  {0x27, do_daa},  {0x2F, nullptr},
                           {0x37, nullptr}, {0x3F, nullptr}, {0x44, do_negate}};
    const auto expected = [](int opcode, int a, int f) -> ByteResult {
        const int kept = f & (FLAG_S | FLAG_Z | FLAG_PV), c = f & FLAG_C;
        switch (opcode) {
        case 0x27: { // the data sheet's correction: 06 and 60, up after additions, down after N
            const bool low = (f & FLAG_H) != 0 || (a & 0x0F) > 9, high = c || a > 0x99;
            const int correction = (low ? 0x06 : 0) + (high ? 0x60 : 0);
            const int result = f & FLAG_N ? a - correction : a + correction;
            const bool half = f & FLAG_N ? (f & FLAG_H) && (a & 0x0F) < 6 : (a & 0x0F) > 9;
            return {uint8_t(result),
                    uint8_t(sign_zero_53(result) | parity_flag(result) | flag_if(half, FLAG_H) |
                            (f & FLAG_N) | flag_if(high, FLAG_C))};
        }
        case 0x2F: return {uint8_t(~a), uint8_t(kept | c | FLAG_H | FLAG_N | (~a & 0x28))};
        case 0x37: return {uint8_t(a), uint8_t(kept | FLAG_C | (a & 0x28))};
        case 0x3F: return {uint8_t(a), uint8_t(kept | (c ? FLAG_H : FLAG_C) | (a & 0x28))};
        case 0x44: return reference_alu(2, 0, a, f);
        default:
            const ByteResult rotated = reference_rotate(opcode >> 3, a, f);
            return {rotated.value,
                    uint8_t(kept | (rotated.value & 0x28) | (rotated.flags & FLAG_C))};
        }
    };
    for (const auto& [opcode, helper] : cases) {
        flat_bus.load(code, {opcode == 0x44 ? 0xED : opcode, opcode});
        for (int pair = 0; pair < 0x10000; pair++) {
            const int a = pair >> 8, f = pair & 0xFF;
            const ByteResult want = expected(opcode, a, f);
            set_af(a, f);
            run_code();
            if (af() != want) FAIL() << show("opcode", opcode, a, a, f, af(), want);
            if (!helper) continue;
            set_af(a, f);
            helper();
            if (af() != want) FAIL() << show("helper", opcode, a, a, f, af(), want);
        }
    }
}

TEST_F(Arithmetic, OneOperandHelpers) {
    using Rotate = uint8_t (*)(uint8_t);
    constexpr Rotate rotates[8] = {rlc_byte, rrc_byte, rl_byte,   rr_byte,
                                   sla_byte, sra_byte, slia_byte, srl_byte};
    for (int n = 0; n < 4 * 256; n++) {
        const int v = n & 0xFF, f = old_flags[n >> 8];
        for (int kind = 0; kind < 8; kind++) {
            set_af(0x5A, f);
            const uint8_t result = rotates[kind](uint8_t(v));
            const ByteResult got = {result, flags()}, want = reference_rotate(kind, v, f);
            ASSERT_EQ(got, want) << show("rotate", kind << 3, 0x5A, v, f, got, want);
            for (const int form : {0x40, 0x46}) {
                const int opcode = form | kind << 3;
                set_af(0x5A, f);
                do_test_bit(uint8_t(opcode), uint8_t(v), uint8_t(kind));
                const ByteResult tested = {0x5A, reference_bit(v, kind, form == 0x46, f)};
                ASSERT_EQ(af(), tested) << show("bit", opcode, 0x5A, v, f, af(), tested);
            }
        }
        for (const int delta : {1, -1}) {
            const ByteResult want = reference_step(v, delta, f);
            set_af(0x5A, f);
            (delta > 0 ? do_flags_inc_byte : do_flags_dec_byte)(want.value);
            ASSERT_EQ(flags(), want.flags) << show("step", delta, 0x5A, v, f, af(), want);
        }
        set_af(0x5A, f);
        flat_bus.input[0x37] = uint8_t(v);
        ASSERT_EQ(in_with_flags(0x37), v);
        ASSERT_EQ(flags(), (f & 0x29) | (sign_zero_53(v) & 0xC0) | parity_flag(v)) << "IN " << v;
        ASSERT_EQ(parity(uint8_t(v)), std::popcount(unsigned(v)) % 2 == 0) << v;
        ASSERT_EQ(parity_table[v], parity(uint8_t(v))) << v;

        z80_state.i = z80_state.r = uint8_t(v);
        for (const int iff2 : {0, 1}) {
            z80_state.iff2 = uint8_t(iff2);
            const ByteResult want = {
                uint8_t(v), uint8_t(sign_zero_53(v) | (f & FLAG_C) | flag_if(iff2 != 0, FLAG_PV))};
            for (const auto load : {do_ld_a_i, do_ld_a_r}) {
                set_af(0x5A, f);
                load();
                ASSERT_EQ(af(), want) << show("LD A,I", 0x57, 0x5A, v, f, af(), want);
            }
        }
    }
    set_af(0x84, FLAG_C);
    flat_bus.memory[data] = 0x20;
    do_rrd();
    EXPECT_EQ(af(), (ByteResult{0x80, 0x81}));
    EXPECT_EQ(flat_bus.memory[data], 0x42);
    do_rld();
    EXPECT_EQ(af(), (ByteResult{0x84, 0x85}));
    EXPECT_EQ(flat_bus.memory[data], 0x20);
}

TEST_F(Arithmetic, WordAdditionAndSubtraction) {
    constexpr int halves[] = {0x00, 0x01, 0x02, 0x07, 0x08, 0x09, 0x0E, 0x0F,
                              0x10, 0x11, 0x28, 0x55, 0x7E, 0x7F, 0x80, 0x81,
                              0xAA, 0xEF, 0xF0, 0xF7, 0xF8, 0xFE, 0xFF};
    std::vector<int> values;
    for (const int high : halves) {
        for (const int low : halves) values.push_back(high << 8 | low);
    }
    struct {
        WordOperation operation;
        std::initializer_list<int> bytes; // with BC as the operand
        void (*helper)(uint16_t);
        void (*flags)(uint16_t, uint16_t, uint16_t);
    } const cases[] = {
        {WordOperation::add, {0x09}, do_add_word, do_add_word_flags},
        {WordOperation::adc, {0xED, 0x4A}, do_adc_word, do_adc_word_flags},
        {WordOperation::sbc, {0xED, 0x42}, do_sbc_word, do_sbc_word_flags},
    };
    for (const auto& [operation, bytes, helper, flag_helper] : cases) {
        flat_bus.load(code, bytes);
        const auto result = [] { return WordResult{z80_state.hl, flags()}; };
        for (const int a : values) {
            for (const int v : values) {
                for (const int f : old_flags) {
                    const WordResult want = reference_word(operation, a, v, f);
                    set_af(0x5A, f);
                    z80_state.hl = uint16_t(a);
                    helper(uint16_t(v));
                    const bool by_helper = result() == want;
                    set_af(0x5A, f);
                    flag_helper(uint16_t(a), uint16_t(v), want.value);
                    const bool by_flags = flags() == want.flags;
                    set_af(0x5A, f);
                    z80_state.hl = uint16_t(a);
                    z80_state.bc = uint16_t(v);
                    run_code();
                    if (by_helper && by_flags && result() == want) continue;
                    FAIL() << std::hex << "operation " << int(operation) << " on " << a << ", " << v
                           << " F " << f << ": helper " << by_helper << ", flags " << by_flags
                           << ", opcode gave " << z80_state.hl << " F " << int(flags()) << ", not "
                           << want.value << " F " << int(want.flags);
                }
            }
        }
    }
}

} // namespace
