/// BASIC as text and as tokenized files: what comes out of one way goes the other way and back to
/// the same bytes.

#include "media/basic/basic_tokens.h"

#include "support/input.h"

namespace {

void there_and_back(const BasicBytes& file) {
    BasicProblem problem;
    const auto text = basic_decode(file, problem);
    require(text.has_value(), "what was encoded can be decoded");
    const auto again = basic_encode(*text, problem);
    require(again && *again == file, "a decoded program gives the same bytes");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    BasicProblem problem;
    const std::string text(data, data + size);
    if (const auto file = basic_encode(text, problem)) there_and_back(*file);
    basic_tokenize(text);
    if (const auto listing = basic_decode(BasicBytes(data, data + size), problem)) {
        // Lines of the same number, and empty ones, do not last; the rest does.
        if (const auto file = basic_encode(*listing, problem)) there_and_back(*file);
    }
    return 0;
}
