#pragma once
/// What a remote client is told about the machine: its registers, by number, and its memory.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

/// In the order of their numbers. GDB knows the first twelve and the last one by these names,
/// whatever their numbers; front ends that ask for no description count on the order of the first
/// twelve.
enum RemoteRegister : uint8_t {
    REMOTE_AF,
    REMOTE_BC,
    REMOTE_DE,
    REMOTE_HL,
    REMOTE_AF_ALT,
    REMOTE_BC_ALT,
    REMOTE_DE_ALT,
    REMOTE_HL_ALT,
    REMOTE_IX,
    REMOTE_IY,
    REMOTE_SP,
    REMOTE_PC,
    REMOTE_I,
    REMOTE_R,
    REMOTE_IFF, ///< bit 0 IFF1, bit 1 IFF2
    REMOTE_IM,
    REMOTE_IR ///< I the high byte, R the low one: the same again, as GDB has them
};
constexpr size_t REMOTE_REGISTERS = REMOTE_IR + 1;
constexpr size_t REMOTE_PAIRS = REMOTE_I; ///< the first of them, with 16 bits each

/// In bytes, 1 or 2.
size_t remote_register_size(size_t number);
uint16_t remote_register(size_t number);
/// False when the register cannot hold the value, or there is none of this number.
bool set_remote_register(size_t number, uint16_t value);

/// Whether the processor can change a byte there: not in ROM, where nothing is connected, and in
/// RAM that this configuration has not.
bool remote_memory_is_writable(uint32_t address);

/// The documents that a client can ask for: "features", "target.xml" and "memory-map", "". Nothing
/// when there is none of that name.
std::optional<std::string> remote_document(std::string_view object, std::string_view annex);
