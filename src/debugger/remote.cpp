#include "debugger/remote.h"

#include "debugger/commands.h"
#include "debugger/peek.h"
#include "debugger/remote_description.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr uint32_t ADDRESSES = 0x10000;
constexpr uint32_t THREAD = 1;
/// While so much waits to be sent, the client is not listened to.
constexpr size_t MOST_OUTPUT = 0x80000;
constexpr size_t MOST_INPUT = 2 * LONGEST_REMOTE_PACKET;
constexpr size_t MOST_POINTS = 1000;
constexpr size_t TEXT_IN_PACKET = LONGEST_REMOTE_PACKET / 4; ///< each byte is two digits

constexpr const char* WRONG = "E01";
constexpr const char* NO_SUCH_DOCUMENT = "E00";
constexpr const char* DONE = "OK";
constexpr const char* UNKNOWN = "";

std::string hex_of_number(uint32_t number) {
    char digits[12];
    std::snprintf(digits, sizeof digits, "%x", unsigned(number));
    return digits;
}

std::string word_digits(uint16_t value) {
    return hex_of(std::string{char(value & 0xFF), char(value >> 8)});
}

std::string register_digits(size_t number) {
    const std::string digits = word_digits(remote_register(number));
    return digits.substr(0, remote_register_size(number) * 2);
}

/// Low byte first; a register of one byte has one.
std::optional<uint16_t> register_value(size_t number, std::string_view digits) {
    const auto bytes = bytes_of_hex(digits);
    if (!bytes || bytes->size() != remote_register_size(number)) return {};
    const uint16_t high = bytes->size() == 2 ? uint8_t((*bytes)[1]) : 0;
    return uint16_t(uint8_t((*bytes)[0]) | high << 8);
}

struct Range {
    uint32_t first = 0, length = 0;
};

/// "address,length" from the front of the text.
std::optional<Range> take_range(std::string_view& text) {
    const auto first = take_hex(text);
    if (!first || *first >= ADDRESSES || !take_text(text, ",")) return {};
    const auto length = take_hex(text);
    if (!length) return {};
    return Range{*first, *length};
}

bool is_writable(const Range& range) {
    for (uint32_t n = 0; n < range.length; ++n) {
        if (!remote_memory_is_writable(range.first + n)) return false;
    }
    return true;
}

/// The bytes have to be as many as were announced, and all of them have to be in RAM.
std::string store(const Range& range, std::string_view bytes) {
    if (bytes.size() != range.length || range.length > ADDRESSES - range.first) return WRONG;
    if (!is_writable(range) || debugger_progress()) return WRONG;
    if (!bytes.empty()) debugger_poke(uint16_t(range.first), {bytes.begin(), bytes.end()});
    return DONE;
}

/// Where the debugger goes through the past, it stands only in between.
bool stands_still() { return debugger_stands() && !debugger_progress(); }

BreakpointKind kind_of(char kind) {
    switch (kind) {
    case '2': return BreakpointKind::memory_write;
    case '3': return BreakpointKind::memory_read;
    case '4': return BreakpointKind::memory_access;
    default: return BreakpointKind::execute;
    }
}

} // namespace

/// The first whose name the packet begins with.
const RemoteSession::Command RemoteSession::commands[] = {
    {"?", &RemoteSession::say_stop},
    {"g", &RemoteSession::read_registers},
    {"G", &RemoteSession::write_registers},
    {"p", &RemoteSession::read_register},
    {"P", &RemoteSession::write_register},
    {"m", &RemoteSession::read_memory},
    {"M", &RemoteSession::write_memory},
    {"X", &RemoteSession::write_binary},
    {"c", &RemoteSession::go},
    {"C", &RemoteSession::go_with_signal},
    {"s", &RemoteSession::step},
    {"S", &RemoteSession::step_with_signal},
    {"bc", &RemoteSession::go_back},
    {"bs", &RemoteSession::step_back},
    {"vCont?", &RemoteSession::actions_known},
    {"vCont;", &RemoteSession::act},
    {"Z", &RemoteSession::insert},
    {"z", &RemoteSession::remove},
    {"D", &RemoteSession::detach},
    {"k", &RemoteSession::kill},
    {"H", &RemoteSession::confirm},
    {"T", &RemoteSession::thread_lives},
    {"qC", &RemoteSession::this_thread},
    {"qfThreadInfo", &RemoteSession::threads},
    {"qsThreadInfo", &RemoteSession::no_more_threads},
    {"qAttached", &RemoteSession::attached},
    {"qSymbol:", &RemoteSession::confirm},
    {"qSupported", &RemoteSession::features},
    {"QStartNoAckMode", &RemoteSession::end_acknowledgement},
    {"qXfer:", &RemoteSession::transfer},
    {"qRcmd,", &RemoteSession::monitor},
};

RemoteSession::RemoteSession()
    : front_(debugger_add_front([this](const DebugStop* stop) { told(stop); })) {
    if (!debugger_stands()) debugger_stop();
}

RemoteSession::~RemoteSession() {
    breakpoints_remove_all(front_);
    debugger_remove_front(front_);
}

bool remote_let_go() {
    if (debugger_progress()) {
        debugger_cancel();
    } else if (!debugger_stands()) {
        return true;
    } else if (debugger_is_in_past()) {
        debugger_to_present();
    } else {
        debugger_go();
        return true;
    }
    return false;
}

// ---- bytes -------------------------------------------------------------------------------------

size_t RemoteSession::room() const {
    if (over_ || output_.size() >= MOST_OUTPUT || reader_.waiting() >= MOST_INPUT) return 0;
    return MOST_INPUT - reader_.waiting();
}

void RemoteSession::take(std::string_view bytes) {
    if (bytes.empty()) return;
    if (!std::exchange(begun_, true)) {
        constexpr std::string_view FIRST = "$+-\3";
        over_ = FIRST.find(bytes.front()) == std::string_view::npos;
    }
    if (!over_) reader_.append(bytes);
}

void RemoteSession::turn() {
    if (std::exchange(stop_sent_, false)) return;
    while (!over_ && !stop_sent_ && output_.size() < MOST_OUTPUT) {
        const auto message = reader_.next();
        if (!message) return;
        handle(*message);
    }
}

void RemoteSession::machine_ends() {
    if (wait_ == Wait::stop) send("W00");
}

void RemoteSession::handle(const RemoteMessage& message) {
    using Kind = RemoteMessage::Kind;
    // A connection that is not acknowledged is one that damages nothing.
    const bool damaged = message.kind == Kind::damaged && acknowledges_;
    switch (message.kind) {
    case Kind::received: return;
    case Kind::resend: output_ += last_packet_; return;
    case Kind::interrupt: return interrupt();
    default: break;
    }
    if (acknowledges_) output_ += damaged ? '-' : '+';
    if (damaged) return;
    if (message.kind == Kind::too_long) return send(WRONG);
    if (const auto said = answer(message.data)) send(*said);
}

RemoteSession::Answer RemoteSession::answer(std::string_view packet) {
    for (const Command& command : commands) {
        std::string_view rest = packet;
        if (take_text(rest, command.name)) return (this->*command.obey)(rest);
    }
    return UNKNOWN;
}

void RemoteSession::send(std::string_view data) {
    last_packet_ = remote_packet(data);
    output_ += last_packet_;
}

/// As text for the user to see, in as many packets as it takes.
void RemoteSession::send_text(std::string_view text) {
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, TEXT_IN_PACKET);
        send("O" + hex_of(piece));
        text.remove_prefix(piece.size());
    }
}

// ---- stops -------------------------------------------------------------------------------------

void RemoteSession::told(const DebugStop* stop) {
    if (!stop) return;
    stop_ = reason_of(*stop);
    const Wait waited = std::exchange(wait_, Wait::nothing);
    if (waited == Wait::nothing) return;
    stop_sent_ = true;
    if (waited == Wait::monitor) {
        send_text(monitor_text_ + debugger_stop_text() + "\n");
        return send(DONE);
    }
    if (stop->reason == StopReason::failed || stop->reason == StopReason::another) {
        send_text(stop->text + "\n");
    }
    send(stop_reply());
}

std::string RemoteSession::reason_of(const DebugStop& stop) const {
    switch (stop.reason) {
    case StopReason::interrupted:
    case StopReason::cancelled: return "T02";
    case StopReason::present: return steps_ ? "T05" : "T05replaylog:end:;";
    case StopReason::beginning: return "T05replaylog:begin:;";
    case StopReason::breakpoint: break;
    default: return "T05";
    }
    const auto point = std::ranges::find(points_, stop.breakpoint, &Point::number);
    if (point == points_.end()) return "T05"; // of another front's
    const std::string at = hex_of_number(stop.hit.address) + ";";
    switch (point->kind) {
    case '0': return knows_swbreak_ ? "T05swbreak:;" : "T05";
    case '1': return knows_hwbreak_ ? "T05hwbreak:;" : "T05";
    case '2': return "T05watch:" + at;
    case '3': return "T05rwatch:" + at;
    default: return "T05awatch:" + at;
    }
}

/// Front ends look for the reason first, and for PC by its number.
std::string RemoteSession::stop_reply() const {
    std::string reply = stop_;
    for (const RemoteRegister number : {REMOTE_SP, REMOTE_PC}) {
        reply += hex_of(std::string(1, char(number))) + ":" + register_digits(number) + ";";
    }
    return reply;
}

void RemoteSession::interrupt() {
    if (debugger_progress()) return debugger_cancel();
    if (!debugger_stands()) debugger_stop();
}

RemoteSession::Answer RemoteSession::say_stop(std::string_view /*nothing*/) {
    if (stands_still()) return stop_reply();
    wait_ = Wait::stop;
    interrupt();
    return {};
}

// ---- registers and memory ----------------------------------------------------------------------

RemoteSession::Answer RemoteSession::read_registers(std::string_view /*nothing*/) {
    std::string digits;
    for (size_t number = 0; number < REMOTE_REGISTERS; ++number) digits += register_digits(number);
    return digits;
}

/// All of them, or the first twelve alone. Only what is another value is set: IR is there twice.
RemoteSession::Answer RemoteSession::write_registers(std::string_view digits) {
    constexpr size_t PAIR_DIGITS = 4;
    constexpr size_t ALL_DIGITS = (REMOTE_PAIRS + 1) * PAIR_DIGITS + (REMOTE_IR - REMOTE_I) * 2;
    const bool all = digits.size() == ALL_DIGITS;
    if ((!all && digits.size() != REMOTE_PAIRS * PAIR_DIGITS) || !bytes_of_hex(digits))
        return WRONG;
    const size_t count = all ? REMOTE_REGISTERS : REMOTE_PAIRS;
    std::vector<std::pair<size_t, uint16_t>> changes;
    for (size_t number = 0; number < count; ++number) {
        const size_t size = remote_register_size(number) * 2;
        const auto value = register_value(number, digits.substr(0, size));
        digits.remove_prefix(size);
        if (value != remote_register(number)) changes.emplace_back(number, *value);
    }
    bool done = true;
    for (const auto& change : changes) {
        done = set_remote_register(change.first, change.second) && done;
    }
    return done ? DONE : WRONG;
}

RemoteSession::Answer RemoteSession::read_register(std::string_view rest) {
    const auto number = take_hex(rest);
    if (!number || *number >= REMOTE_REGISTERS) return WRONG;
    return register_digits(*number);
}

RemoteSession::Answer RemoteSession::write_register(std::string_view rest) {
    const auto number = take_hex(rest);
    if (!number || !take_text(rest, "=")) return WRONG;
    const auto value = register_value(*number, rest);
    return value && set_remote_register(*number, *value) ? DONE : WRONG;
}

/// Up to the end of the memory.
RemoteSession::Answer RemoteSession::read_memory(std::string_view rest) {
    const auto range = take_range(rest);
    if (!range) return WRONG;
    std::string bytes;
    const uint32_t end = range->first + std::min(range->length, ADDRESSES - range->first);
    for (uint32_t at = range->first; at < end; ++at)
        bytes.push_back(char(debug_peek(uint16_t(at))));
    return hex_of(bytes);
}

RemoteSession::Answer RemoteSession::write_memory(std::string_view rest) {
    const auto range = take_range(rest);
    if (!range || !take_text(rest, ":")) return WRONG;
    const auto bytes = bytes_of_hex(rest);
    return bytes ? store(*range, *bytes) : WRONG;
}

RemoteSession::Answer RemoteSession::write_binary(std::string_view rest) {
    const auto range = take_range(rest);
    return range && take_text(rest, ":") ? store(*range, rest) : WRONG;
}

// ---- going -------------------------------------------------------------------------------------

/// At the address, when there is one. The answer is the stop.
RemoteSession::Answer RemoteSession::go_on(std::string_view address, void (*how)()) {
    const bool stands = stands_still();
    if (!address.empty()) {
        const auto pc = take_hex(address);
        if (!pc || *pc >= ADDRESSES || !address.empty()) return WRONG;
        if (stands) set_remote_register(REMOTE_PC, uint16_t(*pc));
    }
    wait_ = Wait::stop;
    steps_ = how == debugger_step;
    if (stands) how(); // else somebody else has let it go
    return {};
}

RemoteSession::Answer RemoteSession::go(std::string_view rest) { return go_on(rest, debugger_go); }
RemoteSession::Answer RemoteSession::step(std::string_view rest) {
    return go_on(rest, debugger_step);
}

/// Signals mean nothing to this machine. ";address" may follow.
RemoteSession::Answer RemoteSession::go_with_signal(std::string_view rest) {
    if (!take_hex(rest)) return WRONG;
    take_text(rest, ";");
    return go(rest);
}
RemoteSession::Answer RemoteSession::step_with_signal(std::string_view rest) {
    if (!take_hex(rest)) return WRONG;
    take_text(rest, ";");
    return step(rest);
}

RemoteSession::Answer RemoteSession::go_back(std::string_view rest) {
    return rest.empty() ? go_on(rest, debugger_back_go) : UNKNOWN;
}
RemoteSession::Answer RemoteSession::step_back(std::string_view rest) {
    return rest.empty() ? go_on(rest, debugger_back_step) : UNKNOWN;
}

RemoteSession::Answer RemoteSession::actions_known(std::string_view /*nothing*/) {
    return "vCont;c;C;s;S;t";
}

/// There is one thread, so the first action is its.
RemoteSession::Answer RemoteSession::act(std::string_view rest) {
    switch (rest.empty() ? 0 : rest.front()) {
    case 'c':
    case 'C': return go({});
    case 's':
    case 'S': return step({});
    case 't': return say_stop({});
    default: return WRONG;
    }
}

// ---- breakpoints -------------------------------------------------------------------------------

/// "kind,address,length": of a breakpoint the length counts for nothing.
std::optional<RemoteSession::Point> RemoteSession::read_point(std::string_view text) {
    if (text.empty() || text.front() < '0' || text.front() > '4') return {};
    const char kind = text.front();
    text.remove_prefix(1);
    if (!take_text(text, ",")) return {};
    const auto range = take_range(text);
    if (!range || !text.empty()) return {};
    const bool is_range = kind > '1' && range->length > 0;
    const uint32_t count = is_range ? std::min(range->length, ADDRESSES - range->first) : 1;
    return Point{0, kind, uint16_t(range->first), uint16_t(range->first + count - 1)};
}

std::vector<RemoteSession::Point>::iterator RemoteSession::find_point(const Point& like) {
    return std::ranges::find_if(points_, [&like](const Point& point) {
        return point.kind == like.kind && point.first == like.first && point.last == like.last;
    });
}

RemoteSession::Answer RemoteSession::insert(std::string_view rest) {
    auto point = read_point(rest);
    if (!point) return WRONG;
    if (find_point(*point) != points_.end()) return DONE;
    if (points_.size() >= MOST_POINTS) return WRONG;
    Breakpoint breakpoint;
    breakpoint.kind = kind_of(point->kind);
    breakpoint.first = point->first;
    breakpoint.last = point->last;
    breakpoint.front = front_;
    std::string problem;
    point->number = breakpoint_add(breakpoint, problem);
    if (!point->number) return WRONG;
    points_.push_back(*point);
    return DONE;
}

/// One that is not there is gone as well.
RemoteSession::Answer RemoteSession::remove(std::string_view rest) {
    const auto like = read_point(rest);
    if (!like) return WRONG;
    const auto point = find_point(*like);
    if (point == points_.end()) return DONE;
    breakpoint_remove(point->number);
    points_.erase(point);
    return DONE;
}

// ---- the connection and queries ----------------------------------------------------------------

RemoteSession::Answer RemoteSession::detach(std::string_view /*process*/) {
    over_ = true;
    return DONE;
}

RemoteSession::Answer RemoteSession::kill(std::string_view /*nothing*/) {
    over_ = killed_ = true;
    return {};
}

RemoteSession::Answer RemoteSession::confirm(std::string_view /*of no use*/) { return DONE; }

RemoteSession::Answer RemoteSession::thread_lives(std::string_view rest) {
    return take_hex(rest) == THREAD ? DONE : WRONG;
}

RemoteSession::Answer RemoteSession::this_thread(std::string_view /*nothing*/) { return "QC1"; }
RemoteSession::Answer RemoteSession::threads(std::string_view /*nothing*/) { return "m1"; }
RemoteSession::Answer RemoteSession::no_more_threads(std::string_view /*nothing*/) { return "l"; }

/// To a machine that was there before, so that a client that ends lets it run on.
RemoteSession::Answer RemoteSession::attached(std::string_view /*process*/) { return "1"; }

RemoteSession::Answer RemoteSession::features(std::string_view theirs) {
    knows_swbreak_ = theirs.find("swbreak+") != std::string_view::npos;
    knows_hwbreak_ = theirs.find("hwbreak+") != std::string_view::npos;
    return "PacketSize=" + hex_of_number(LONGEST_REMOTE_PACKET) +
           ";qXfer:features:read+;qXfer:memory-map:read+;QStartNoAckMode+;ReverseStep+;"
           "ReverseContinue+;swbreak+;hwbreak+;vContSupported+";
}

RemoteSession::Answer RemoteSession::end_acknowledgement(std::string_view /*nothing*/) {
    acknowledges_ = false; // from the answer on
    return DONE;
}

/// "object:read:annex:offset,length"
RemoteSession::Answer RemoteSession::transfer(std::string_view rest) {
    const size_t object_end = rest.find(':');
    const std::string_view object = rest.substr(0, object_end);
    if (object_end == std::string_view::npos) return UNKNOWN;
    rest.remove_prefix(object_end);
    if (!take_text(rest, ":read:")) return UNKNOWN;
    const size_t annex_end = rest.find(':');
    if (annex_end == std::string_view::npos) return NO_SUCH_DOCUMENT;
    const auto document = remote_document(object, rest.substr(0, annex_end));
    rest.remove_prefix(annex_end + 1);
    const auto range = take_range(rest);
    if (!document || !range) return NO_SUCH_DOCUMENT;
    const std::string_view whole = *document;
    const std::string_view left = whole.substr(std::min<size_t>(range->first, whole.size()));
    const std::string_view part = left.substr(0, range->length);
    return (part.size() < left.size() ? "m" : "l") + std::string(part);
}

/// The user's line. One that lets the machine go is answered when it stands again.
RemoteSession::Answer RemoteSession::monitor(std::string_view rest) {
    const auto line = bytes_of_hex(rest);
    if (!line) return WRONG;
    const CommandResult result = debugger_command(*line);
    std::string text = result.text.empty() ? "" : result.text + "\n";
    if (result.goes && !stands_still()) {
        monitor_text_ = std::move(text);
        wait_ = Wait::monitor;
        return {};
    }
    send_text(result.goes ? text + debugger_stop_text() + "\n" : text);
    return DONE;
}
