#include "media/cmd_loader.h"

#include "z80/z80.h"

namespace {

/// Counts blocks over the whole run, so that the lines of several loads can be told apart.
int block_count = 0;

/// A one-byte count in which 0 stands for 256.
int count_of(int byte) { return byte == 0 ? 256 : byte; }

/// Low byte first; false at the end of the file.
bool read_address(std::FILE* file, uint16_t* address) {
    const int low = std::getc(file);
    const int high = std::getc(file);
    if (low == EOF || high == EOF) return false;
    *address = uint16_t(low | high << 8);
    return true;
}

/// False when the file ends inside the block; the bytes before that are in memory.
bool load_block(std::FILE* file, int length) {
    uint16_t address = 0;
    if (!read_address(file, &address)) return false;
    // The length counts the address as well, modulo 256: 0 to 2 stand for 254 to 256 data bytes.
    const int count = count_of((length - CMD_ADDRESS_SIZE) & 0xFF);
    std::printf("load from address %04xh, %i bytes.\n", unsigned(address), count);
    for (int i = 0; i < count; ++i) {
        const int byte = std::getc(file);
        if (byte == EOF) return false;
        mem_write(uint16_t(address + i), uint8_t(byte));
    }
    return true;
}

void skip_block(std::FILE* file, int type, int length) {
    const int count = count_of(length);
    std::fprintf(stderr, "unsupported block type %i of size %i, at offset: %i.\n", type, count,
                 int(std::ftell(file)));
    for (int i = 0; i < count && std::getc(file) != EOF; ++i) {
    }
}

int read_entry(std::FILE* file, int length, uint16_t* entry) {
    if (length != CMD_ENTRY_LENGTH) return 0;
    if (!read_address(file, entry)) return 1;
    std::fprintf(stderr, "start address at %xh.\n", unsigned(*entry));
    return 1;
}

} // namespace

int load_cmd(std::FILE* file, uint16_t* entry) {
    *entry = 0;
    for (;;) {
        const int type = std::getc(file);
        if (type == EOF) return 0;
        std::fprintf(stderr, "Block #%02i, type %i: \n", ++block_count, type);
        const int length = std::getc(file);
        if (type == CMD_ENTRY_BLOCK) return read_entry(file, length, entry);
        if (type == CMD_LOAD_BLOCK) {
            if (!load_block(file, length)) return 1;
        } else if (length != EOF) {
            skip_block(file, type, length);
        }
    }
}
