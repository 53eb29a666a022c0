/// mkcmd: packs memory images into a CMD load module or, by the extension, a cassette image.
///
///   mkcmd OUT.cmd|OUT.cas ENTRY-HEX LOAD-HEX FILE.bin [LOAD-HEX FILE.bin ...]
///
/// The module is a name block (type 5), load blocks of at most 256 bytes (type 1: address, data)
/// and the entry block (type 2). The cassette has a leader, the mark of machine code and the name,
/// blocks of at most 256 bytes with a checksum, and the entry block.

#include "files/whole_file.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint8_t LOAD_BLOCK = 1, ENTRY_BLOCK = 2, NAME_BLOCK = 5;
constexpr uint8_t TAPE_LEADER = 0xAA, TAPE_SYNC = 0x66, TAPE_CODE = 0x55;
constexpr uint8_t TAPE_BLOCK = 0x3C, TAPE_ENTRY = 0x78;
constexpr size_t LEADER_LENGTH = 256;
constexpr size_t ADDRESS_SPACE = 0x10000;
constexpr size_t BLOCK_DATA = 256;
constexpr size_t NAME_LENGTH = 6;

struct Part {
    uint16_t address;
    Bytes data;
};

int fail(const std::string& message) {
    std::fprintf(stderr, "mkcmd: %s\n", message.c_str());
    return 1;
}

std::optional<uint16_t> parse_address(const std::string& text) {
    if (text.empty() || text.size() > 4) return {};
    unsigned value = 0;
    for (const char c : text) {
        if (!std::isxdigit(static_cast<unsigned char>(c))) return {};
        value = value * 16 + unsigned(std::stoi(std::string(1, c), nullptr, 16));
    }
    return uint16_t(value);
}

std::optional<Bytes> read_file(const char* path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return {};
    std::ifstream in(path, std::ios::binary);
    if (!in) return {};
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

void add_word(Bytes& out, size_t value) {
    out.push_back(uint8_t(value));
    out.push_back(uint8_t(value >> 8));
}

/// Leader or block head, and the name.
void add_head(Bytes& out, const std::string& path, bool cassette) {
    std::string name = std::filesystem::path(path).stem().string().substr(0, NAME_LENGTH);
    for (char& c : name) c = char(std::toupper(static_cast<unsigned char>(c)));
    name.resize(NAME_LENGTH, ' ');
    if (cassette) out.assign(LEADER_LENGTH, TAPE_LEADER);
    out.push_back(cassette ? TAPE_SYNC : NAME_BLOCK);
    out.push_back(cassette ? TAPE_CODE : uint8_t(NAME_LENGTH));
    out.insert(out.end(), name.begin(), name.end());
}

/// The length byte of a module counts the address as well, modulo 256, so that 256 bytes make it 2.
/// A cassette's checksum is that of address and data.
void add_load_blocks(Bytes& out, const Part& part, bool cassette) {
    for (size_t at = 0; at < part.data.size(); at += BLOCK_DATA) {
        const size_t count = std::min(BLOCK_DATA, part.data.size() - at);
        out.push_back(cassette ? TAPE_BLOCK : LOAD_BLOCK);
        out.push_back(uint8_t(cassette ? count : count + 2));
        const auto summed = out.size();
        add_word(out, part.address + at);
        const auto first = part.data.begin() + long(at);
        out.insert(out.end(), first, first + long(count));
        const int sum = std::accumulate(out.begin() + long(summed), out.end(), 0);
        if (cassette) out.push_back(uint8_t(sum));
    }
}

void add_entry(Bytes& out, uint16_t entry, bool cassette) {
    out.push_back(cassette ? TAPE_ENTRY : ENTRY_BLOCK);
    if (!cassette) out.push_back(2);
    add_word(out, entry);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 5 || argc % 2 == 0) {
        return fail("usage: mkcmd OUT.cmd|OUT.cas ENTRY-HEX LOAD-HEX FILE.bin ...");
    }
    const auto entry = parse_address(argv[2]);
    if (!entry) return fail(std::string("entry address \"") + argv[2] + "\" is not 0 to FFFF");

    const bool cassette = std::filesystem::path(argv[1]).extension() == ".cas";
    Bytes module;
    add_head(module, argv[1], cassette);
    for (int i = 3; i < argc; i += 2) {
        const std::string file = argv[i + 1];
        const auto address = parse_address(argv[i]);
        if (!address) return fail(std::string("load address \"") + argv[i] + "\" is not 0 to FFFF");
        const auto data = read_file(argv[i + 1]);
        if (!data) return fail("cannot read " + file);
        if (data->empty()) return fail(file + " is empty");
        if (*address + data->size() > ADDRESS_SPACE) {
            return fail(file + " does not fit below the end of memory from " + argv[i]);
        }
        add_load_blocks(module, {*address, *data}, cassette);
    }
    add_entry(module, *entry, cassette);
    if (!replace_whole_file(argv[1], module)) return fail(std::string("cannot write ") + argv[1]);
    return 0;
}
