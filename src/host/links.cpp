#include "host/links.h"

#include "cgenie/memory/memory.h"
#include "cgenie/typing/typing.h"
#include "core/frame_driver.h"
#include "core/machine_events.h"
#include "core/pacing/pacing.h"
#include "host/autostart.h"
#include "host/replays.h"
#include "host/shell_state.h"
#include "media/basic/basic_tokens.h"
#include "platform/platform.h"
#include "time/deflate.h"
#include "time/history.h"
#include "wall/machine_host.h"
#include "wall/report.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr size_t MOST_BYTES = 1 << 20;
constexpr int MOST_TYPING = 500; ///< frames
constexpr std::string_view PROGRAM = "basic=";
constexpr std::string_view REPLAY = "replay=";
constexpr const char* PROGRAM_FILE = "Shared program.bas";
constexpr const char* REPLAY_FILE = "Shared replay.tvr";

// ---- base64url ---------------------------------------------------------------------------------

constexpr std::string_view DIGITS =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
constexpr unsigned DIGIT_BITS = 6;

std::string to_base64(std::span<const uint8_t> bytes) {
    std::string text;
    unsigned bits = 0, count = 0;
    for (const uint8_t byte : bytes) {
        bits = bits << 8 | byte;
        for (count += 8; count >= DIGIT_BITS; count -= DIGIT_BITS) {
            text += DIGITS[bits >> (count - DIGIT_BITS) & 63];
        }
    }
    if (count) text += DIGITS[bits << (DIGIT_BITS - count) & 63];
    return text;
}

/// Nothing when there is any other character; what fills up the last one is not looked at.
std::optional<Bytes> from_base64(std::string_view text) {
    Bytes bytes;
    unsigned bits = 0, count = 0;
    for (const char digit : text) {
        const size_t value = DIGITS.find(digit);
        if (value == DIGITS.npos) return std::nullopt;
        bits = bits << DIGIT_BITS | unsigned(value);
        count += DIGIT_BITS;
        if (count < 8) continue;
        count -= 8;
        bytes.push_back(uint8_t(bits >> count));
    }
    return bytes;
}

// ---- reading -----------------------------------------------------------------------------------

Link refusal(const std::string& reason) {
    return {.name = {}, .bytes = {}, .problem = "The link cannot be opened: " + reason};
}

/// Tokenized: loaded at once, where the text would have to be typed.
Link program_link(const Bytes& listing) {
    BasicProblem problem;
    auto program = basic_encode({listing.begin(), listing.end()}, problem);
    if (program) return {.name = PROGRAM_FILE, .bytes = std::move(*program), .problem = {}};
    const std::string place = problem.line ? "line " + std::to_string(problem.line) + ": " : "";
    return refusal(place + problem.text);
}

void start(const Link& link) {
    if (!link.problem.empty()) return report({.text = link.problem});
    if (link.name.empty()) return;
    autostart_bytes(link.name, link.bytes);
    if (replay_plays()) return;
    // What is typed to load and run a program need not be watched.
    for (int n = 0; n < MOST_TYPING && typing.position < typing_text.size(); ++n) do_some_frames(1);
}

// ---- what is shared ----------------------------------------------------------------------------

void hand_over(const std::string& link, const std::string& what) {
    if (link.size() > LONGEST_LINK) {
        return report({.text = what + " is too long for a link",
                       .reason = "It would have " + std::to_string(link.size()) + " characters.",
                       .severity = Severity::warning});
    }
    if (!platform().clipboard().set_text(shell_state.start.page_address + link)) {
        return report({.text = "The link could not be put into the clipboard"});
    }
    StatusBarText("%s is in the clipboard as a link of %u characters.", what.c_str(),
                  unsigned(link.size()));
}

/// The program as it would be in a file.
BasicBytes program_in_memory() {
    constexpr size_t START = 0x40A4,
                     END = 0x40F9; ///< cells with its first address and the next one
    const auto word = [](size_t at) { return memory[at] | size_t(memory[at + 1]) << 8; };
    const size_t end = std::max(word(START), word(END));
    BasicBytes file(1 + end - word(START), 0xFF);
    std::copy(memory + word(START), memory + end, file.begin() + 1);
    return file;
}

} // namespace

std::string link_for_listing(std::string_view listing) {
    const std::span bytes(reinterpret_cast<const uint8_t*>(listing.data()), listing.size());
    return "#" + std::string(PROGRAM) + to_base64(deflated_raw(bytes));
}

std::string link_for_replay(std::span<const uint8_t> replay) {
    return "#" + std::string(REPLAY) + to_base64(deflated_raw(replay));
}

Link read_link(std::string_view fragment) {
    if (fragment.starts_with('#')) fragment.remove_prefix(1);
    const bool is_program = fragment.starts_with(PROGRAM);
    if (!is_program && !fragment.starts_with(REPLAY)) return {};
    fragment.remove_prefix((is_program ? PROGRAM : REPLAY).size());
    const auto deflated = from_base64(fragment);
    if (!deflated) return refusal("it has characters that do not belong there");
    auto bytes = inflated_raw(*deflated, MOST_BYTES);
    if (!bytes) return refusal("it is not whole");
    if (is_program) return program_link(*bytes);
    return {.name = REPLAY_FILE, .bytes = std::move(*bytes), .problem = {}};
}

void start_link(std::string_view fragment) { start(read_link(fragment)); }

void follow_link(std::string_view fragment) {
    const Link link = read_link(fragment);
    if (!link.name.empty()) {
        end_replay();
        machine_apply(event_kind::restart);
    }
    start(link);
}

void share_program() {
    BasicProblem problem;
    const auto listing = basic_decode(program_in_memory(), problem);
    if (!listing || listing->empty()) {
        return report({.text = "There is no BASIC program in the machine",
                       .reason = listing ? "" : problem.text,
                       .severity = Severity::note});
    }
    hand_over(link_for_listing(*listing), "The program");
}

void share_replay() {
    constexpr int64_t LONGEST = 60, SHORTEST = 1; ///< seconds
    std::string link;
    const int64_t end = history_position();
    for (int64_t seconds = LONGEST; seconds >= SHORTEST; seconds /= 2) {
        const int64_t frames = seconds * frames_per_second();
        const int64_t begin = history_unbroken(std::max<int64_t>(end - frames, 0), end);
        Bytes replay;
        const std::string problem = replay_of_history(begin, end, replay);
        if (!problem.empty()) {
            return report({.text = "There is no replay to share", .reason = problem});
        }
        link = link_for_replay(replay);
        if (link.size() > LONGEST_LINK) continue;
        const int64_t length = (end - begin + frames_per_second() / 2) / frames_per_second();
        return hand_over(link, "The replay of " + std::to_string(length) + " seconds");
    }
    hand_over(link, "Even a replay of a second");
}
