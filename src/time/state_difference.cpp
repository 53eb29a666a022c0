#include "time/state_difference.h"

#include "time/byte_stream.h"
#include "time/deflate.h"

#include <algorithm>
#include <cstring>

namespace {

using Bytes = std::span<const uint8_t>;

constexpr size_t WORD = sizeof(uint64_t);
constexpr size_t STRIDE = 32 * WORD; ///< compared at one stroke
constexpr size_t MOST_BYTES = 1 << 28;

/// The word at this place; what lies behind the end counts as 0.
uint64_t word_at(Bytes bytes, size_t at) {
    uint64_t word = 0;
    if (at < bytes.size()) std::memcpy(&word, &bytes[at], std::min(WORD, bytes.size() - at));
    return word;
}

size_t words_of(size_t bytes) { return (bytes + WORD - 1) / WORD; }

/// The first word from `word` on, before `end`, that is different, or the same.
size_t next_different(Bytes a, Bytes b, size_t word, size_t end) {
    const size_t common = std::min(a.size(), b.size());
    while (word < end) {
        const size_t at = word * WORD;
        if (at + STRIDE <= common && std::memcmp(&a[at], &b[at], STRIDE) == 0) {
            word += STRIDE / WORD;
        } else if (word_at(a, at) != word_at(b, at)) {
            return word;
        } else {
            ++word;
        }
    }
    return end;
}
size_t next_same(Bytes a, Bytes b, size_t word, size_t end) {
    while (word < end && word_at(a, word * WORD) != word_at(b, word * WORD)) ++word;
    return word;
}

/// Runs of words that are the same, and then of words that differ and follow, exclusive-or'ed with
/// the base.
std::vector<uint8_t> runs_of(Bytes base, Bytes bytes) {
    ByteWriter runs;
    std::vector<uint64_t> words;
    const size_t end = words_of(bytes.size());
    for (size_t word = 0; word < end;) {
        const size_t from = next_different(base, bytes, word, end);
        const size_t behind = next_same(base, bytes, from, end);
        runs.number(from - word);
        runs.number(behind - from);
        words.clear();
        for (size_t n = from; n < behind; ++n) {
            words.push_back(word_at(base, n * WORD) ^ word_at(bytes, n * WORD));
        }
        const auto* const first = reinterpret_cast<const uint8_t*>(words.data());
        runs.raw({first, words.size() * WORD});
        word = behind;
    }
    return runs.take();
}

bool apply_runs(ByteReader runs, Bytes base, std::vector<uint8_t>& bytes) {
    const size_t end = words_of(bytes.size());
    size_t word = 0;
    while (!runs.empty()) {
        const uint64_t same = runs.number();
        const uint64_t different = runs.number();
        if (same > end - word || different > end - word - same) return false;
        word += same;
        const Bytes run = runs.raw(different * WORD);
        if (!runs.good()) return false;
        for (size_t n = 0; n < different; ++n, ++word) {
            const uint64_t now = word_at(run, n * WORD) ^ word_at(base, word * WORD);
            std::memcpy(&bytes[word * WORD], &now, std::min(WORD, bytes.size() - word * WORD));
        }
    }
    return runs.good();
}

} // namespace

std::vector<uint8_t> difference_of(Bytes base, Bytes bytes) {
    if (std::ranges::equal(base, bytes)) return {};
    const std::vector<uint8_t> runs = runs_of(base, bytes);
    ByteWriter difference;
    difference.number(bytes.size());
    difference.number(runs.size());
    difference.raw(deflated(runs, DEFLATE_FAST));
    return difference.take();
}

int difference_apply(Bytes base, Bytes difference, std::vector<uint8_t>& bytes) {
    bytes.assign(base.begin(), base.end());
    if (difference.empty()) return 1;
    ByteReader head(difference);
    const uint64_t size = head.number();
    const uint64_t length = head.number();
    if (!head.good() || size > MOST_BYTES) return 0;
    const auto runs = inflated(head.rest(), length);
    if (!runs) return 0;
    bytes.resize(size);
    return apply_runs(ByteReader(*runs), base, bytes) ? 1 : 0;
}
