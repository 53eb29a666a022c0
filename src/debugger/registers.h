#pragma once
/// The processor's registers by name, as expressions know them (expression.h).

#include <cstdint>
#include <string_view>

struct z80_registers;

/// Sets one, of which the low bits count. False when there is none of this name, and for a value
/// that no processor has.
bool set_register(z80_registers& registers, std::string_view name, uint16_t value);
