#pragma once
/// CMD load modules: typed blocks that place bytes at addresses and name an entry point.

#include <cstdint>
#include <span>

enum CmdBlock : int { CMD_LOAD_BLOCK = 1, CMD_ENTRY_BLOCK = 2 }; ///< others are skipped
constexpr int CMD_ENTRY_LENGTH = 2;
constexpr int CMD_ADDRESS_SIZE = 2; ///< of a load block, counted in its length

/// Puts the blocks of `module` into the machine through mem_write, as the processor would write
/// them. `entry` is 0 until an entry block is read. Returns 1 when a load was completed by an entry
/// block or cut off inside a block, 0 at the end of the module between blocks or on a bad entry
/// block. Prints a line for every block on the standard streams.
int load_cmd(std::span<const uint8_t> module, uint16_t* entry);
