#include "media/program_outline.h"

#include "media/cmd_loader.h"
#include "media/tape.h"

#include <algorithm>

namespace {

constexpr uint8_t FILE_LEADER = 0x00; ///< of a tokenized file that was made into a tape
constexpr uint8_t FILE_SYNC[] = {0xA5, 0xD3, 0xD3, 0xD3};
/// A leader between two programs; fewer bytes of its kind are part of what stands before.
constexpr size_t SHORTEST_LEADER = 4;
constexpr size_t LONGEST_RECORD = 240;
constexpr uint8_t RECORD_END = 0x0D;
constexpr uint8_t BLANK = ' ';
constexpr uint8_t NAME_BLOCK = 5; ///< of a load module

/// Takes a file apart from front to back. Behind its end every byte is 0.
class Reader {
public:
    explicit Reader(std::span<const uint8_t> bytes) : rest_(bytes), size_(bytes.size()) {}

    size_t at() const { return size_ - rest_.size(); }
    std::span<const uint8_t> rest() const { return rest_; }
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
    /// As many as there are.
    std::span<const uint8_t> take(size_t count) {
        const auto taken = rest_.first(std::min(count, rest_.size()));
        skip(count);
        return taken;
    }
    void skip(size_t count) {
        ran_out_ |= count > rest_.size();
        rest_ = rest_.subspan(std::min(count, rest_.size()));
    }
    /// To the first byte with the value, or to the end.
    void find(uint8_t value) {
        rest_ = rest_.subspan(size_t(std::ranges::find(rest_, value) - rest_.begin()));
    }
    size_t skip_run(uint8_t value) {
        const size_t before = rest_.size();
        while (!at_end() && peek() == value) skip(1);
        return before - rest_.size();
    }

private:
    std::span<const uint8_t> rest_;
    size_t size_;
    bool ran_out_ = false;
};

/// A count of one byte in which 0 stands for 256.
size_t count_of(uint8_t byte) { return byte == 0 ? 256 : byte; }

std::string name_of(std::span<const uint8_t> bytes) {
    std::string name(bytes.begin(), bytes.end());
    name.erase(name.find_last_not_of(BLANK) + 1);
    return name;
}

void add_block(ProgramOutline& program, uint16_t address, size_t count) {
    if (count == 0) return;
    const auto last = uint16_t(std::min<size_t>(address + count - 1, 0xFFFF));
    const bool is_first = program.bytes == 0;
    program.lowest = is_first ? address : std::min(program.lowest, address);
    program.highest = is_first ? last : std::max(program.highest, last);
    program.bytes += uint32_t(count);
}

/// Lines, each with a link that is not 0, a number, and a text that ends with 0.
void read_basic(Reader& tape, TapeProgram& program) {
    program.name = name_of(tape.take(1));
    const size_t start = tape.at();
    while (tape.word() != 0) {
        tape.word();
        tape.find(0);
        tape.skip(1);
    }
    program.bytes = uint32_t(tape.at() - start);
    if (tape.ran_out()) program.damage = "the tape ends inside the BASIC program";
}

void read_machine_code(Reader& tape, TapeProgram& program) {
    program.content = TapeContent::machine_code;
    program.name = name_of(tape.take(TAPE_NAME_SIZE));
    while (tape.peek() == TAPE_BLOCK) {
        tape.skip(1);
        const size_t count = count_of(tape.byte());
        const uint16_t address = tape.word();
        const auto bytes = tape.take(count);
        auto sum = uint8_t(address + (address >> 8));
        for (const uint8_t byte : bytes) sum += byte;
        add_block(program, address, bytes.size());
        const bool damaged = tape.byte() != sum;
        if (!damaged || tape.ran_out()) continue;
        program.damage = "the checksum of a block is wrong";
    }
    // Another byte than the mark of the entry: what follows is loaded by the program itself.
    if (tape.byte() == TAPE_ENTRY) program.entry = tape.word();
    if (tape.ran_out() && program.damage.empty()) {
        program.damage = "the tape ends inside the machine-code program";
    }
}

/// The length of the record of text that begins here; nothing when it is none.
std::optional<size_t> record_length(std::span<const uint8_t> tape) {
    const auto possible = tape.first(std::min(tape.size(), LONGEST_RECORD));
    const auto end = std::ranges::find_if(possible, [](uint8_t byte) { return byte < BLANK; });
    const auto length = size_t(end - possible.begin());
    if (end == possible.end() || *end != RECORD_END) return {};
    const bool ends = length + 1 == tape.size() || tape[length + 1] == TAPE_LEADER ||
                      tape[length + 1] == TAPE_SYNC;
    return ends ? std::optional(length) : std::nullopt;
}

/// Reads what stands behind a sync byte.
void read_program(Reader& tape, TapeProgram& program) {
    if (const auto length = record_length(tape.rest())) {
        program.content = TapeContent::data;
        program.bytes = uint32_t(*length);
        tape.skip(*length + 1);
    } else if (tape.peek() == TAPE_MACHINE_CODE_MARK) {
        tape.skip(1);
        read_machine_code(tape, program);
    } else {
        read_basic(tape, program);
    }
}

bool is_file_sync(std::span<const uint8_t> bytes) {
    return bytes.size() >= std::size(FILE_SYNC) &&
           std::ranges::equal(bytes.first(std::size(FILE_SYNC)), FILE_SYNC);
}

/// The sync byte that the tape begins with, wherever the firmware finds it.
bool find_first_sync(Reader& tape) {
    if (tape.peek() == TAPE_LEADER) {
        tape.skip_run(TAPE_LEADER);
    } else if (tape.peek() != TAPE_SYNC) { // the text of a virtual tape
        tape.find(0);
        tape.find(TAPE_SYNC);
    }
    return !tape.at_end();
}

/// Behind the sync byte of the next program, with the place of its leader; false without one.
bool find_next(Reader& tape, size_t& start) {
    while (!tape.at_end()) {
        start = tape.at();
        const size_t zeros = tape.skip_run(FILE_LEADER);
        if (zeros >= SHORTEST_LEADER && is_file_sync(tape.rest())) {
            tape.skip(std::size(FILE_SYNC));
            return true;
        }
        if (zeros > 0) continue;
        const bool leads = tape.skip_run(TAPE_LEADER) >= SHORTEST_LEADER;
        if (leads && tape.peek() == TAPE_SYNC) {
            tape.skip(1);
            return true;
        }
        if (tape.at() == start) tape.skip(1);
    }
    return false;
}

} // namespace

std::vector<TapeProgram> tape_programs(std::span<const uint8_t> image) {
    std::vector<TapeProgram> programs;
    Reader tape(image);
    size_t start = 0;
    bool found = tape.peek() == FILE_LEADER && find_next(tape, start);
    if (!found) {
        tape = Reader(image);
        found = find_first_sync(tape);
        start = tape.at() > 0 && image[0] == TAPE_LEADER ? 0 : tape.at();
        tape.skip(1);
    }
    for (; found && programs.size() < MOST_TAPE_PROGRAMS; found = find_next(tape, start)) {
        programs.emplace_back().start = start;
        read_program(tape, programs.back());
    }
    return programs;
}

ProgramOutline load_module_outline(std::span<const uint8_t> bytes) {
    Reader module(bytes);
    ProgramOutline program;
    if (module.at_end()) program.damage = "the file is empty";
    while (!module.at_end()) {
        const uint8_t type = module.byte();
        const uint8_t length = module.byte();
        if (type == CMD_ENTRY_BLOCK) {
            if (length != CMD_ENTRY_LENGTH) {
                program.damage = "the block with the entry address is damaged";
                return program;
            }
            program.entry = module.word();
            if (module.ran_out()) program.damage = "the file ends inside the entry address";
            return program;
        }
        if (type == CMD_LOAD_BLOCK) {
            // The length counts the address too, modulo 256.
            const uint16_t address = module.word();
            const auto data = module.take(count_of(uint8_t(length - CMD_ADDRESS_SIZE)));
            add_block(program, address, data.size());
        } else {
            const auto body = module.take(count_of(length));
            if (type == NAME_BLOCK) program.name = name_of(body);
        }
        if (module.ran_out()) {
            program.damage = "the file ends inside a block";
            return program;
        }
    }
    if (program.damage.empty()) program.damage = "there is no entry address";
    return program;
}
