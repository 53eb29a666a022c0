#include "debugger/remote_packets.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace {

constexpr char BEGIN = '$';
constexpr char END = '#';
constexpr char ESCAPE = '}';
constexpr char REPEAT = '*'; ///< of a byte that is sent once for many; it never is here
constexpr char ESCAPED_BIT = 0x20;
constexpr char INTERRUPT = 0x03;
constexpr int HEX = 16;
constexpr size_t MOST_DIGITS = 8;
constexpr char DIGITS[] = "0123456789abcdef";

std::optional<uint8_t> byte_of(std::string_view digits) {
    uint8_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, HEX);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

uint8_t sum_of(std::string_view bytes) {
    uint8_t sum = 0;
    for (const char byte : bytes) sum = uint8_t(sum + uint8_t(byte));
    return sum;
}

} // namespace

std::optional<RemoteMessage> RemotePacketReader::next() {
    while (read_ < waiting_.size()) {
        if (auto message = take(uint8_t(waiting_[read_++]))) return message;
    }
    waiting_.clear();
    read_ = 0;
    return {};
}

std::optional<RemoteMessage> RemotePacketReader::take(uint8_t byte) {
    using enum RemoteMessage::Kind;
    switch (state_) {
    case State::outside:
        if (byte == '+') return RemoteMessage{received};
        if (byte == '-') return RemoteMessage{resend};
        if (byte == INTERRUPT) return RemoteMessage{interrupt};
        break;
    case State::data:
    case State::escaped: take_data(byte); return {};
    case State::first_digit:
        digits_[0] = char(byte);
        state_ = State::second_digit;
        return {};
    case State::second_digit: digits_[1] = char(byte); return finish();
    }
    if (byte == BEGIN) begin();
    return {};
}

void RemotePacketReader::begin() {
    data_.clear();
    too_long_ = false;
    sum_ = 0;
    state_ = State::data;
}

void RemotePacketReader::take_data(uint8_t byte) {
    if (byte == BEGIN) return begin(); // the end of the last one was lost
    if (byte == END) {
        state_ = State::first_digit;
        return;
    }
    sum_ = uint8_t(sum_ + byte);
    if (state_ == State::data && byte == ESCAPE) {
        state_ = State::escaped;
        return;
    }
    if (state_ == State::escaped) byte ^= ESCAPED_BIT;
    state_ = State::data;
    too_long_ = too_long_ || data_.size() == LONGEST_REMOTE_PACKET;
    if (!too_long_) data_.push_back(char(byte));
}

RemoteMessage RemotePacketReader::finish() {
    using enum RemoteMessage::Kind;
    state_ = State::outside;
    if (too_long_) return {too_long};
    const bool right = byte_of({digits_, sizeof digits_}) == sum_;
    return {right ? packet : damaged, std::exchange(data_, {})};
}

std::string remote_packet(std::string_view data) {
    std::string packet(1, BEGIN);
    packet.reserve(data.size() + 4);
    for (const char byte : data) {
        const bool plain = byte != BEGIN && byte != END && byte != ESCAPE && byte != REPEAT;
        if (!plain) packet.push_back(ESCAPE);
        packet.push_back(plain ? byte : char(byte ^ ESCAPED_BIT));
    }
    const uint8_t sum = sum_of(std::string_view(packet).substr(1));
    packet.push_back(END);
    return packet + DIGITS[sum / HEX] + DIGITS[sum % HEX];
}

std::optional<uint32_t> take_hex(std::string_view& text) {
    uint32_t number = 0;
    const char* const begin = text.data();
    const auto [stop, error] =
        std::from_chars(begin, begin + std::min(text.size(), MOST_DIGITS), number, HEX);
    if (error != std::errc()) return {};
    text.remove_prefix(size_t(stop - begin));
    return number;
}

bool take_text(std::string_view& text, std::string_view what) {
    if (!text.starts_with(what)) return false;
    text.remove_prefix(what.size());
    return true;
}

std::string hex_of(std::string_view bytes) {
    std::string digits;
    digits.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        digits.push_back(DIGITS[uint8_t(byte) / HEX]);
        digits.push_back(DIGITS[uint8_t(byte) % HEX]);
    }
    return digits;
}

std::optional<std::string> bytes_of_hex(std::string_view digits) {
    if (digits.size() % 2) return {};
    std::string bytes;
    bytes.reserve(digits.size() / 2);
    for (; !digits.empty(); digits.remove_prefix(2)) {
        const auto byte = byte_of(digits.substr(0, 2));
        if (!byte) return {};
        bytes.push_back(char(*byte));
    }
    return bytes;
}
