#include "media/cmd_loader.h"

#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <optional>

namespace {

/// Counts blocks over the whole run, so that the lines of several loads can be told apart.
int block_count = 0;

/// A one-byte count in which 0 stands for 256.
size_t count_of(int byte) { return byte == 0 ? 256 : size_t(byte); }

class Module {
public:
    explicit Module(std::span<const uint8_t> bytes) : all_(bytes) {}

    size_t offset() const { return offset_; }
    /// Nothing at the end; so in what follows.
    std::optional<uint8_t> byte() {
        if (offset_ == all_.size()) return {};
        return all_[offset_++];
    }
    /// Low byte first.
    std::optional<uint16_t> address() {
        const auto low = byte(), high = byte();
        if (!high) return {};
        return uint16_t(*low | *high << 8);
    }
    /// As many bytes as there are.
    std::span<const uint8_t> bytes(size_t count) {
        const auto part = all_.subspan(offset_, std::min(count, all_.size() - offset_));
        offset_ += part.size();
        return part;
    }

private:
    std::span<const uint8_t> all_;
    size_t offset_ = 0;
};

/// False when the module ends inside the block; the bytes before that are in memory.
bool load_block(Module& module, int length) {
    const auto address = module.address();
    if (!address) return false;
    // The length counts the address as well, modulo 256: 0 to 2 stand for 254 to 256 data bytes.
    const size_t count = count_of((length - CMD_ADDRESS_SIZE) & 0xFF);
    machine_print(TEXT_OUTPUT, "load from address %04xh, %i bytes.\n", unsigned(*address),
                  int(count));
    const auto data = module.bytes(count);
    for (size_t i = 0; i < data.size(); ++i) mem_write(uint16_t(*address + i), data[i]);
    return data.size() == count;
}

void skip_block(Module& module, int type, int length) {
    const size_t count = count_of(length);
    machine_print(TEXT_ERROR, "unsupported block type %i of size %i, at offset: %i.\n", type,
                  int(count), int(module.offset()));
    module.bytes(count);
}

int read_entry(Module& module, int length, uint16_t* entry) {
    if (length != CMD_ENTRY_LENGTH) return 0;
    const auto address = module.address();
    if (!address) return 1;
    *entry = *address;
    machine_print(TEXT_ERROR, "start address at %xh.\n", unsigned(*entry));
    return 1;
}

} // namespace

int load_cmd(std::span<const uint8_t> bytes, uint16_t* entry) {
    constexpr int NO_LENGTH = -1;
    Module module(bytes);
    *entry = 0;
    for (;;) {
        const auto type = module.byte();
        if (!type) return 0;
        machine_print(TEXT_ERROR, "Block #%02i, type %i: \n", ++block_count, int(*type));
        const auto byte = module.byte();
        const int length = byte ? *byte : NO_LENGTH;
        if (*type == CMD_ENTRY_BLOCK) return read_entry(module, length, entry);
        if (*type == CMD_LOAD_BLOCK) {
            if (!load_block(module, length)) return 1;
        } else if (byte) {
            skip_block(module, *type, length);
        }
    }
}
