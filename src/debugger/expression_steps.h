#pragma once
/// What a compiled expression consists of: steps for a stack of values.

#include "debugger/expression.h"

enum class Expression::Op : uint8_t {
    // They push.
    number,
    variable, ///< operand: a Variable
    // They change the topmost.
    negate,
    complement,
    is_zero,
    is_not_zero,
    read_byte,
    read_word,
    read_port,
    // They take two and push one.
    multiply,
    divide,
    remainder,
    add,
    subtract,
    shift_left,
    shift_right,
    less,
    less_or_equal,
    greater,
    greater_or_equal,
    equal,
    not_equal,
    bit_and,
    bit_xor,
    bit_or,
    // Operand: where to go on when the topmost decides; else it is dropped.
    if_zero,
    if_not_zero
};

/// How many values an expression may keep at a time.
constexpr int EXPRESSION_STACK = 64;

/// Pairs and their halves stand in the same order.
enum ExpressionVariable : int64_t {
    VARIABLE_PAIRS,                            ///< af bc de hl ix iy, af' bc' de' hl', sp pc
    VARIABLE_HIGH_BYTES = VARIABLE_PAIRS + 12, ///< a b d h ixh iyh a' ...
    VARIABLE_LOW_BYTES = VARIABLE_HIGH_BYTES + 12,
    VARIABLE_FLAGS = VARIABLE_LOW_BYTES + 12, ///< + the number of the bit in F
    VARIABLE_I = VARIABLE_FLAGS + 8,
    VARIABLE_R,
    VARIABLE_IFF1,
    VARIABLE_IFF2,
    VARIABLE_IM,
    VARIABLE_HITS,
    VARIABLE_VALUE,
    VARIABLE_BEFORE,
    VARIABLE_ADDRESS,
    VARIABLE_FROM,
    VARIABLE_CYCLE,
    VARIABLE_FRAME,
    VARIABLE_LINE
};
