#pragma once
/// Packets of GDB's remote serial protocol: "$", data, "#", two hexadecimal digits of the sum of
/// the data's bytes. In the data "}" goes before a byte that would be mistaken for something else,
/// which stands there with bit 5 turned over. Between packets come "+" and "-" for the last one of
/// the other side, and 03, which is the user's Ctrl-C.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Bytes of data in one packet from a client, which it is told. What goes to a client may be
/// longer, when it has asked for that.
constexpr size_t LONGEST_REMOTE_PACKET = 0x4000;

struct RemoteMessage {
    enum class Kind : uint8_t {
        packet,
        damaged,  ///< its sum is another one
        too_long, ///< its data is lost
        received, ///< "+"
        resend,   ///< "-"
        interrupt ///< 03
    };
    Kind kind = Kind::packet;
    std::string data = {}; ///< of a packet; of a damaged one what has come
};

/// Takes the bytes of a client as they come, in pieces of any size. What stands outside a packet
/// and means nothing is passed over.
class RemotePacketReader {
public:
    void append(std::string_view bytes) { waiting_.append(bytes); }
    /// The next message that is complete.
    std::optional<RemoteMessage> next();
    /// Bytes that wait for `next`, beside those of a packet that has begun.
    size_t waiting() const { return waiting_.size() - read_; }

private:
    enum class State : uint8_t { outside, data, escaped, first_digit, second_digit };
    std::optional<RemoteMessage> take(uint8_t byte);
    void begin();
    void take_data(uint8_t byte);
    RemoteMessage finish();

    std::string waiting_;
    size_t read_ = 0; ///< of them
    State state_ = State::outside;
    std::string data_;
    bool too_long_ = false;
    uint8_t sum_ = 0;
    char digits_[2] = {};
};

/// The data as a whole packet.
std::string remote_packet(std::string_view data);

// ---- numbers and bytes in the data -------------------------------------------------------------

/// Takes a hexadecimal number of at most eight digits from the front of `text`; nothing when there
/// is none.
std::optional<uint32_t> take_hex(std::string_view& text);
/// Takes `what` from the front of `text`; false when something else stands there.
bool take_text(std::string_view& text, std::string_view what);
/// Two digits for each byte.
std::string hex_of(std::string_view bytes);
/// The other way; nothing when the text is no such digits.
std::optional<std::string> bytes_of_hex(std::string_view digits);
