#include "host/recording/gif.h"

#include "files/whole_file.h"

#include <cstring>
#include <string_view>
#include <vector>

namespace {
constexpr uint32_t COLOURS = 256;
constexpr uint8_t MINIMUM_CODE_SIZE = 8;
/// Global colour table of 256 entries, unsorted, eight bits of colour resolution.
constexpr uint8_t SCREEN_FLAGS = 0xF7;

constexpr uint32_t startbits = MINIMUM_CODE_SIZE + 1;
constexpr uint32_t clear = 256;
constexpr uint32_t end = 257;

constexpr uint32_t LONGEST_STRING = 97;
constexpr uint32_t SLOTS = 5003; ///< prime, so that every hash spreads over all slots
constexpr uint32_t STORE_SIZE = 16384;
constexpr uint32_t ENTRY_OVERHEAD = 3; ///< code and length byte before a stored string

// Limits that force a clear: the last 12-bit codes, two thirds of the slots, the string store.
constexpr uint32_t LAST_CODE = 4093;
constexpr uint32_t MOST_STRINGS = 3335;
constexpr uint32_t FULLEST_STORE = 15379;
static_assert(FULLEST_STORE + ENTRY_OVERHEAD + LONGEST_STRING <= STORE_SIZE);

constexpr uint32_t BLOCK_LIMIT = 250; ///< a sub-block with more bytes than this is written

struct LzwState {
    std::vector<uint8_t> file;
    uint32_t codebits = startbits;
    uint32_t entries = 0;           ///< codes written since the last clear
    uint32_t actual = 0;            ///< strings stored since the last clear
    uint32_t next = 1;              ///< free byte in the store
    uint32_t length = 0;            ///< of the current string
    uint32_t lastentry = 0;         ///< code of the current string without its last pixel
    uint16_t hashcode = 0;          ///< of the current string
    const uint8_t* test = nullptr;  ///< first pixel of the current string
    uint8_t buffer[STORE_SIZE];     ///< entries of code, length and pixels; 0 is never used
    uint16_t str_index[SLOTS];      ///< offsets of entries, 0 = empty
    uint8_t block[BLOCK_LIMIT + 4]; ///< output sub-block
    uint32_t nbytes = 0;            ///< its whole bytes
    uint32_t nbits = 0;             ///< bits waiting for the byte after them
    uint32_t pending = 0;           ///< those bits
};
LzwState lzw;

void put(int value) { lzw.file.push_back(uint8_t(value)); }

void put16(int value) {
    put(value);
    put(value >> 8);
}

void flush_block() {
    put(int(lzw.nbytes));
    lzw.file.insert(lzw.file.end(), lzw.block, lzw.block + lzw.nbytes);
    lzw.nbytes = 0;
}

/// Appends a code, least significant bit first.
void write_code(uint32_t code) {
    lzw.pending |= code << lzw.nbits;
    lzw.nbits += lzw.codebits;
    for (; lzw.nbits > 7; lzw.nbits -= 8) {
        lzw.block[lzw.nbytes++] = uint8_t(lzw.pending);
        lzw.pending >>= 8;
    }
    if (code == end && lzw.nbits > 0) {
        lzw.block[lzw.nbytes++] = uint8_t(lzw.pending);
    }
    if (lzw.nbytes > BLOCK_LIMIT || code == end) {
        flush_block();
    }
}

void initialize() {
    write_code(clear);
    lzw.entries = 0;
    lzw.actual = 0;
    lzw.length = 0;
    lzw.next = 1;
    lzw.codebits = startbits;
    std::memset(lzw.str_index, 0, sizeof lzw.str_index);
}

/// Whether the entry holds the current string. The cheap differences come first: most of the
/// strings met while probing differ in length or in the last pixel.
bool is_current_string(const uint8_t* entry) {
    const uint32_t length = lzw.length;
    const uint8_t* stored = entry + ENTRY_OVERHEAD;
    return entry[2] == length && stored[length - 1] == lzw.test[length - 1] &&
           std::memcmp(stored, lzw.test, length) == 0;
}

/// The slot that holds the current string, or the empty one where it belongs. The home slot of a
/// hash is passed over. At most two thirds of the slots are taken, so the search ends.
uint32_t find_slot() {
    uint32_t slot = lzw.hashcode % SLOTS;
    for (;;) {
        slot = slot + 1 == SLOTS ? 0 : slot + 1;
        const uint32_t offset = lzw.str_index[slot];
        if (offset == 0 || is_current_string(lzw.buffer + offset)) {
            return slot;
        }
    }
}

uint32_t stored_code(uint32_t offset) {
    return lzw.buffer[offset] | uint32_t(lzw.buffer[offset + 1]) << 8;
}

void store_string(uint32_t slot) {
    const uint32_t code = end + lzw.entries;
    uint8_t* entry = lzw.buffer + lzw.next;
    entry[0] = uint8_t(code);
    entry[1] = uint8_t(code >> 8);
    entry[2] = uint8_t(lzw.length);
    std::memcpy(entry + ENTRY_OVERHEAD, lzw.test, lzw.length);
    lzw.str_index[slot] = uint16_t(lzw.next);
    lzw.next += lzw.length + ENTRY_OVERHEAD;
    ++lzw.actual;
}

/// Makes the pixel the whole current string; single pixels are their own codes. A string stays
/// where it stands in the picture, whose rows follow each other without a gap.
void start_string(const uint8_t* pixel) {
    lzw.test = pixel;
    lzw.length = 1;
    lzw.lastentry = *pixel;
}

/// Writes the string at hand where a clear or the end follows. It counts for no string here, but a
/// decoder counts every code and may widen the next one after it.
void write_last_string() {
    write_code(lzw.lastentry);
    if (lzw.entries + 1 + end == 1U << lzw.codebits) {
        ++lzw.codebits;
    }
}

/// Writes the code of the string before `pixel`, and starts over with the pixel.
void emit(uint32_t slot, const uint8_t* pixel) {
    write_code(lzw.lastentry);
    ++lzw.entries;
    // A string of the full length may be known already; it uses up its code all the same.
    if (lzw.str_index[slot] == 0) {
        store_string(slot);
    }
    start_string(pixel);
    if (lzw.entries + end == 1U << lzw.codebits) {
        ++lzw.codebits;
    }
    if (lzw.entries + end > LAST_CODE || lzw.actual > MOST_STRINGS || lzw.next > FULLEST_STORE) {
        write_last_string();
        initialize();
    }
}

void encode_pixel(const uint8_t* pixel) {
    if (lzw.length == 0) {
        start_string(pixel);
        return;
    }
    if (lzw.length == 1) {
        lzw.hashcode = uint16_t((*lzw.test + 1) * 301);
    }
    ++lzw.length;
    lzw.hashcode = uint16_t(lzw.hashcode * (*pixel + lzw.length) + 1);

    const uint32_t slot = find_slot();
    const uint32_t offset = lzw.str_index[slot];
    if (offset != 0 && lzw.length < LONGEST_STRING) {
        lzw.lastentry = stored_code(offset);
        return;
    }
    emit(slot, pixel);
}

void write_headers(int width, int height, const uint8_t* colours) {
    constexpr std::string_view SIGNATURE = "GIF87a";
    lzw.file.assign(SIGNATURE.begin(), SIGNATURE.end());
    put16(width);
    put16(height);
    put(SCREEN_FLAGS);
    put16(0); // background colour, pixel aspect
    lzw.file.insert(lzw.file.end(), colours, colours + size_t{3} * COLOURS);
    put(',');
    put16(0);
    put16(0);
    put16(width);
    put16(height);
    put(0); // no colours of its own, not interlaced
    put(MINIMUM_CODE_SIZE);
}
} // namespace

int gif_save(const char* path, int width, int height, const uint8_t* pixels,
             const uint8_t* colours) {
    write_headers(width, height, colours);
    lzw.codebits = startbits;
    lzw.nbytes = 0;
    lzw.nbits = 0;
    lzw.pending = 0;
    initialize();
    const size_t count = size_t(width) * size_t(height);
    for (size_t i = 0; i < count; ++i) {
        encode_pixel(pixels + i);
    }
    write_last_string();
    write_code(end);
    put(0);
    put(';');
    return replace_whole_file(path, lzw.file) ? 1 : 0;
}
