#include "media/damage.h"

#include "media/cmd_loader.h"
#include "media/snapshot.h"
#include "media/tape.h"

#include <algorithm>

namespace {

/// Takes a file apart from front to back. Behind its end every byte is 0.
class Reader {
public:
    explicit Reader(std::span<const uint8_t> bytes) : rest_(bytes) {}

    bool at_end() const { return rest_.empty(); }
    bool ran_out() const { return ran_out_; }
    uint8_t peek() const { return rest_.empty() ? 0 : rest_[0]; }
    uint8_t byte() {
        const uint8_t value = peek();
        skip(1);
        return value;
    }
    uint16_t word() {
        const uint8_t low = byte();
        return uint16_t(low | byte() << 8);
    }
    void skip(size_t count) {
        ran_out_ |= count > rest_.size();
        rest_ = rest_.subspan(std::min(count, rest_.size()));
    }
    /// To the first byte with the value, or to the end.
    void find(uint8_t value) {
        while (!at_end() && peek() != value) skip(1);
    }
    void skip_run(uint8_t value) {
        while (!at_end() && peek() == value) skip(1);
    }

private:
    std::span<const uint8_t> rest_;
    bool ran_out_ = false;
};

/// A count of one byte in which 0 stands for 256.
size_t count_of(uint8_t byte) { return byte == 0 ? 256 : byte; }

/// Lines, each with a link that is not 0, a number, and a text that ends with 0.
std::string basic_damage(Reader& tape) {
    while (tape.word() != 0) {
        tape.word();
        tape.find(0);
        tape.skip(1);
    }
    return tape.ran_out() ? "the tape ends inside the BASIC program" : "";
}

std::string machine_code_damage(Reader& tape) {
    tape.skip(TAPE_NAME_SIZE);
    while (tape.peek() == TAPE_BLOCK) {
        tape.skip(1);
        const size_t count = count_of(tape.byte());
        uint8_t sum = 0;
        for (size_t n = 0; n < count + sizeof(uint16_t); ++n) sum += tape.byte();
        const bool damaged = tape.byte() != sum;
        if (damaged && !tape.ran_out()) return "the checksum of a block is wrong";
    }
    // Another byte than the mark of the entry: what follows is loaded by the program itself.
    if (tape.byte() == TAPE_ENTRY) tape.word();
    return tape.ran_out() ? "the tape ends inside the machine-code program" : "";
}

} // namespace

std::string tape_damage(std::span<const uint8_t> bytes) {
    Reader tape(bytes);
    if (tape.peek() == TAPE_LEADER) {
        tape.skip_run(TAPE_LEADER);
    } else if (tape.peek() != TAPE_SYNC) { // the text of a virtual tape
        tape.find(0);
        tape.find(TAPE_SYNC);
    }
    if (tape.at_end()) return "there is no program on it";
    tape.skip(1);
    return tape.byte() == TAPE_MACHINE_CODE_MARK ? machine_code_damage(tape) : basic_damage(tape);
}

std::string load_module_damage(std::span<const uint8_t> bytes) {
    Reader module(bytes);
    if (module.at_end()) return "the file is empty";
    while (!module.at_end()) {
        const uint8_t type = module.byte();
        const uint8_t length = module.byte();
        if (type == CMD_ENTRY_BLOCK) {
            if (length != CMD_ENTRY_LENGTH) return "the block with the entry address is damaged";
            module.word();
            return module.ran_out() ? "the file ends inside the entry address" : "";
        }
        // The length of a load block counts its address too, modulo 256.
        const bool loads = type == CMD_LOAD_BLOCK;
        module.skip(loads ? CMD_ADDRESS_SIZE + count_of(uint8_t(length - CMD_ADDRESS_SIZE))
                          : count_of(length));
        if (module.ran_out()) return "the file ends inside a block";
    }
    return "there is no entry address";
}

std::string snapshot_damage(std::span<const uint8_t> snapshot) {
    if (snapshot.size() >= SNAPSHOT_SIZE) return {};
    return std::to_string(snapshot.size()) + " bytes found, " + std::to_string(SNAPSHOT_SIZE) +
           " bytes needed";
}
