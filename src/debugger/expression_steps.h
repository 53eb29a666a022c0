#pragma once
/// What a compiled expression consists of: steps for a stack of values.

#include "debugger/expression.h"

enum class Expression::Op : uint8_t {
    // They push.
    number,
    variable, ///< operand: a register or an ExpressionVariable
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

/// Below these are the numbers of registers in register_names.
enum ExpressionVariable : int64_t {
    VARIABLE_HITS = 0x100,
    VARIABLE_VALUE,
    VARIABLE_BEFORE,
    VARIABLE_ADDRESS,
    VARIABLE_FROM,
    VARIABLE_CYCLE,
    VARIABLE_FRAME,
    VARIABLE_LINE
};
