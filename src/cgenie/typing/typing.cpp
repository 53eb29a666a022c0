#include "cgenie/typing/typing.h"

#include <utility>

namespace {

constexpr uint8_t CARRIAGE_RETURN = 13, LINE_FEED = 10, TAB = 9;
constexpr size_t TAB_STOP = 8; ///< characters

constexpr state_field typing_fields[] = {{"position", sizeof(typing_state::position)}};

constexpr uint64_t LONGEST_TEXT = UINT32_MAX;
const char* fault(const typing_state& state) {
    return first_fault({{"position", state.position <= LONGEST_TEXT}});
}

} // namespace

typing_state typing;
constexpr state_record typing_record = {"typing", &typing, sizeof typing, typing_fields,
                                        fault_of<typing_state, fault>};
shared_bytes typing_text;

void keyboard_open_from_bytes(shared_bytes text) {
    typing_text = std::move(text);
    typing = {};
}

int keyboard_open_from_buffer(const std::string& text) {
    const std::string typed = text.substr(0, text.find('\0'));
    keyboard_open_from_bytes(shared_bytes({typed.begin(), typed.end()}));
    return 1;
}

uint8_t keyboard_type_bas_file(int* done) {
    *done = typing.position >= typing_text.size();
    if (*done) return 0;
    const uint8_t character = typing_text.view()[typing.position++];
    if (character == CARRIAGE_RETURN) ++typing.position;
    return convert_typed_character(character);
}

void keyboard_type_reset() { keyboard_open_from_bytes({}); }

uint8_t convert_typed_character(uint8_t character) {
    switch (character) {
    case '^': return '[';
    case '`': return '\'';
    default: return character;
    }
}

long_line first_long_line(std::span<const uint8_t> text) {
    long_line line{1, 0};
    for (size_t at = 0; at < text.size(); ++at) {
        const uint8_t character = text[at];
        if (character == CARRIAGE_RETURN || character == LINE_FEED) {
            if (line.length > LONGEST_TYPED_LINE) return line;
            if (character == CARRIAGE_RETURN) ++at;
            line = {line.number + 1, 0};
        } else if (character == TAB) {
            line.length = (line.length / TAB_STOP + 1) * TAB_STOP;
        } else if (character >= ' ') {
            ++line.length;
        }
    }
    return line.length > LONGEST_TYPED_LINE ? line : long_line();
}
