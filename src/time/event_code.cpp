#include "time/event_code.h"

#include "cgenie/input.h"
#include "time/byte_stream.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <initializer_list>
#include <utility>

namespace {

// A code is a kind and these.
constexpr uint8_t SAME_CYCLE = 0x80; ///< as the event before
constexpr uint8_t AS_USUAL = 0x40;   ///< nothing more to say
constexpr uint8_t KIND = 0x3F;
constexpr auto LAST_KIND = uint8_t(event_kind::last);
static_assert(LAST_KIND <= KIND);

constexpr int64_t LONGEST_JITTER = 64; ///< cycles by which the lengths of frames differ

bool has_pc(event_kind kind) { return is_act(kind) || kind == event_kind::moment; }

/// Frames end at regular times, and usually a fragment with them.
bool is_periodic(event_kind kind) {
    return kind == event_kind::frame_end || kind == event_kind::fragments;
}

// ---- records in the order of bytes of any host --------------------------------------------------

struct Words {
    uint8_t bytes; ///< of each
    uint8_t count;
};

/// The words of the record that the events of the kind carry, in order; none when it is bytes.
std::initializer_list<Words> words_of(event_kind kind) {
    static constexpr std::initializer_list<Words> input = {{1, 32}, {2, 2}, {1, 2},
                                                           {2, 2},  {1, 2}, {2, 1}};
    static constexpr std::initializer_list<Words> choice = {{4, 8}, {1, 32}, {4, 1}};
    static constexpr std::initializer_list<Words> tape = {{8, 2}, {4, 4}};
    switch (kind) {
    case event_kind::input: return input;
    case event_kind::choose: return choice;
    case event_kind::tape_play_wav: return tape;
    default: return {};
    }
}

/// Between this host's order of bytes and little-endian.
shared_bytes reordered(event_kind kind, const shared_bytes& bytes) {
    if constexpr (std::endian::native == std::endian::little) return bytes;
    shared_bytes other = bytes;
    std::span<uint8_t> rest = other.change();
    for (const Words& words : words_of(kind)) {
        for (int n = 0; n < words.count && words.bytes <= rest.size(); ++n) {
            std::ranges::reverse(rest.first(words.bytes));
            rest = rest.subspan(words.bytes);
        }
    }
    return other;
}

// ---- what both directions know of the events before ---------------------------------------------

using InputBytes = std::array<uint8_t, sizeof(machine_input)>;

struct Context {
    int64_t cycle = 0;        ///< of the event before
    int64_t frame_ended = 0;  ///< cycle of the last end
    int64_t frame_length = 0; ///< as it was when it last changed by more than jitter
    std::array<int32_t, KIND + 1> answers = {};
    InputBytes input = {};
    bool pc_is_known = false; ///< of the event before
    uint16_t pc = 0;

    /// The time that an event of the kind is likely to come at.
    int64_t expected(event_kind kind) const {
        return is_periodic(kind) ? frame_ended + frame_length : cycle;
    }
    void pass(event_kind kind, int64_t when) {
        cycle = when;
        if (kind != event_kind::frame_end) return;
        const int64_t length = when - frame_ended;
        if (std::abs(length - frame_length) >= LONGEST_JITTER) frame_length = length;
        frame_ended = when;
    }
    explicit Context(int64_t first) : cycle(first), frame_ended(first) { answers.fill(1); }
};

// ---- to bytes -----------------------------------------------------------------------------------

class Packer {
public:
    explicit Packer(int64_t first) : context_(first) {}

    void put(const machine_event& event, const machine_event* next) {
        auto code = uint8_t(event.kind);
        if (event.cycle == context_.cycle) {
            code |= SAME_CYCLE;
        } else {
            times_.signed_number(event.cycle - context_.expected(event.kind));
        }
        const size_t before = rest_.size();
        describe(event, next);
        if (rest_.size() == before) code |= AS_USUAL;
        codes_.byte(code);
        context_.pass(event.kind, event.cycle);
    }
    std::vector<uint8_t> take(int64_t first) {
        ByteWriter all;
        all.signed_number(first);
        all.counted(codes_.bytes());
        all.counted(times_.bytes());
        all.raw(rest_.bytes());
        return all.take();
    }

private:
    /// Writes nothing when the event is as usual.
    void describe(const machine_event& event, const machine_event* next) {
        switch (event.kind) {
        case event_kind::frame_end: return describe_end(event, next);
        case event_kind::input: return describe_input(event);
        case event_kind::fragments:
        case event_kind::written:
        case event_kind::save_reply: return describe_answer(event);
        default: return describe_fully(event, next);
        }
    }
    void forget_pc() { context_.pc_is_known = false; }

    /// PC may be left out where the next event has the same, and where no event is at this cycle.
    /// A trap can move it without a cycle: then both need their own.
    static bool next_has_another_pc(const machine_event& event, const machine_event* next) {
        return next && has_pc(next->kind) && next->cycle == event.cycle && next->pc != event.pc;
    }
    void describe_end(const machine_event& event, const machine_event* next) {
        context_.pc_is_known = true;
        context_.pc = event.pc;
        if (next_has_another_pc(event, next)) rest_.word16(event.pc);
    }
    void describe_input(const machine_event& event) {
        forget_pc();
        const shared_bytes portable = reordered(event.kind, event.bytes);
        InputBytes now = {};
        const auto bytes = portable.view();
        std::copy_n(bytes.begin(), std::min(bytes.size(), now.size()), now.begin());
        std::vector<std::pair<uint8_t, uint8_t>> changes;
        for (size_t n = 0; n < now.size(); ++n) {
            if (now[n] != context_.input[n]) changes.emplace_back(uint8_t(n), now[n]);
        }
        context_.input = now;
        if (changes.empty()) return;
        rest_.number(changes.size());
        for (const auto& [place, value] : changes) {
            rest_.byte(place);
            rest_.byte(value);
        }
    }
    void describe_answer(const machine_event& event) {
        forget_pc();
        int32_t& last = context_.answers[size_t(event.kind)];
        if (event.a == last) return;
        rest_.signed_number(event.a);
        last = event.a;
    }
    void describe_fully(const machine_event& event, const machine_event* next) {
        const bool same_pc = context_.pc_is_known && event.pc == context_.pc &&
                             event.cycle == context_.cycle && !next_has_another_pc(event, next);
        context_.pc_is_known = has_pc(event.kind);
        context_.pc = event.pc;
        if (same_pc && event.a == 0 && event.b == 0 && event.bytes.empty()) return;
        rest_.word16(event.pc);
        rest_.signed_number(event.a);
        rest_.signed_number(event.b);
        rest_.counted(reordered(event.kind, event.bytes).view());
    }

    Context context_;
    ByteWriter codes_, times_, rest_;
};

// ---- from bytes ---------------------------------------------------------------------------------

class Unpacker {
public:
    explicit Unpacker(ByteReader all)
        : first_(all.signed_number()), context_(first_), codes_(all.counted()),
          times_(all.counted()), rest_(all.rest()) {
        input_ = shared_bytes({context_.input.begin(), context_.input.end()});
        if (!all.good() || first_ < 0 || first_ > LAST_CYCLE) rest_.fail();
    }

    std::string take(std::vector<machine_event>& events) {
        if (codes_.size() > EVENTS_OF_BLOCK) return "too many events in a block";
        if (!rest_.good()) return "a block that ends too early";
        for (const uint8_t code : codes_) {
            if ((code & KIND) > LAST_KIND) return "an event of an unknown kind";
            machine_event event = next(code);
            if (!times_.good() || !rest_.good()) return "an event without its contents";
            if (!machine_event_is_possible(event)) return "an event that is not possible";
            events.push_back(std::move(event));
        }
        const bool used = rest_.good() && times_.empty() && rest_.empty();
        return used ? std::string() : "more than the events of a block";
    }

private:
    machine_event next(uint8_t code) {
        machine_event event;
        event.kind = event_kind(code & KIND);
        event.cycle = context_.cycle;
        if (!(code & SAME_CYCLE)) {
            // Damage may give any number; the sum wraps.
            event.cycle =
                int64_t(uint64_t(context_.expected(event.kind)) + uint64_t(times_.signed_number()));
            if (event.cycle < 0 || event.cycle > LAST_CYCLE) rest_.fail();
        }
        if (!rest_.good()) return event;
        fill(event, (code & AS_USUAL) != 0);
        context_.pass(event.kind, event.cycle);
        return event;
    }
    void fill(machine_event& event, bool as_usual) {
        event.pc = context_.pc;
        switch (event.kind) {
        case event_kind::frame_end:
            if (!as_usual) event.pc = rest_.word16();
            break;
        case event_kind::input:
            if (!as_usual) read_changes();
            event.bytes =
                reordered(event.kind, shared_bytes({context_.input.begin(), context_.input.end()}));
            break;
        case event_kind::fragments:
        case event_kind::written:
        case event_kind::save_reply: {
            int32_t& last = context_.answers[size_t(event.kind)];
            if (!as_usual) last = int32_t(rest_.signed_number());
            event.a = last;
            break;
        }
        default:
            if (!as_usual) read_fully(event);
        }
        context_.pc = event.pc;
    }
    void read_changes() {
        for (uint64_t count = rest_.number(); count > 0 && rest_.good(); --count) {
            const uint8_t place = rest_.byte();
            const uint8_t value = rest_.byte();
            if (place >= context_.input.size()) return rest_.fail();
            context_.input[place] = value;
        }
        input_ = reordered(event_kind::input,
                           shared_bytes({context_.input.begin(), context_.input.end()}));
    }
    void read_fully(machine_event& event) {
        event.pc = rest_.word16();
        event.a = int32_t(rest_.signed_number());
        event.b = int32_t(rest_.signed_number());
        const auto bytes = rest_.counted();
        if (bytes.empty()) return;
        event.bytes = reordered(event.kind, shared_bytes({bytes.begin(), bytes.end()}));
    }

    static constexpr int64_t LAST_CYCLE = int64_t(1) << 61;
    int64_t first_;
    Context context_;
    std::span<const uint8_t> codes_;
    ByteReader times_, rest_;
    shared_bytes input_; ///< the keys as they are; all events of the same keys share it
};

} // namespace

std::vector<uint8_t> events_to_bytes(std::span<const machine_event> events) {
    const int64_t first = events.empty() ? 0 : events.front().cycle;
    Packer packer(first);
    for (size_t n = 0; n < events.size(); ++n) {
        packer.put(events[n], n + 1 < events.size() ? &events[n + 1] : nullptr);
    }
    return packer.take(first);
}

std::string events_from_bytes(std::span<const uint8_t> bytes, std::vector<machine_event>& events) {
    return Unpacker(ByteReader(bytes)).take(events);
}
