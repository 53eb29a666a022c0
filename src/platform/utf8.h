#pragma once
/// Characters of texts in UTF-8.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Of the bytes of a character, the first.
constexpr bool begins_character(char byte) { return (uint8_t(byte) & 0xC0) != 0x80; }

/// Where in the text that many characters end; its size for a shorter one.
constexpr size_t end_of_characters(std::string_view text, int count) {
    size_t end = 0;
    while (end < text.size() && (!begins_character(text[end]) || count-- > 0)) ++end;
    return end;
}

/// The bytes of a code point.
inline std::string utf8_of(uint32_t character) {
    if (character < 0x80) return {char(character)};
    const auto tail = [=](int shift) { return char(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x800) return {char(0xC0 | character >> 6), tail(0)};
    if (character < 0x10000) return {char(0xE0 | character >> 12), tail(6), tail(0)};
    return {char(0xF0 | character >> 18), tail(12), tail(6), tail(0)};
}
