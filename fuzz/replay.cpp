/// Replays: the parts of a file, whose check sums are made right; and the events of a block, which
/// all happen to a machine that runs.

#include "core/frame_driver.h"
#include "core/machine_events.h"
#include "support/fake_host.h"
#include "support/machine.h"
#include "time/deflate.h"
#include "time/event_code.h"
#include "time/replay_file.h"
#include "z80/z80.h"

#include <algorithm>
#include <tuple>

namespace {

void read_file(Input input) {
    ByteWriter file;
    const auto head = input.text(input.byte());
    file.raw({reinterpret_cast<const uint8_t*>(head.data()), head.size()});
    while (!input.empty()) {
        ByteWriter chunk;
        chunk.byte(input.byte());
        const auto contents = input.take(input.word());
        chunk.word32(uint32_t(contents.size()));
        chunk.raw(contents);
        chunk.word32(crc32_of(chunk.bytes()));
        file.raw(chunk.bytes());
    }
    ReplayReader reader;
    if (!reader.open(file.bytes()).empty()) return;
    using enum replay_chunk::Kind;
    replay_chunk part = reader.next();
    while (part.kind != end && part.kind != cut && part.kind != damaged) part = reader.next();
}

void let_happen(const machine_event& event) {
    constexpr int64_t LONGEST_RUN = 2'000'000; ///< cycles
    if (event.kind == event_kind::frame_end) {
        if (z80_state.t_count < LONGEST_RUN && frame_budget() < LONGEST_RUN) machine_run();
    } else {
        machine_apply(event.kind, event.a, event.b, event.bytes);
    }
}

void replay_events(Input input) {
    std::vector<machine_event> events;
    if (!events_from_bytes(input.rest(), events).empty()) return;
    std::vector<machine_event> again;
    require(events_from_bytes(events_to_bytes(events), again).empty(), "what was read is written");
    const auto same = [](const machine_event& a, const machine_event& b) {
        return std::tie(a.kind, a.a, a.b, a.cycle) == std::tie(b.kind, b.a, b.b, b.cycle) &&
               a.bytes == b.bytes;
    };
    require(std::ranges::equal(events, again, same), "each as it was");
    fresh_machine();
    program_standard_picture();
    for (const machine_event& event : events) let_happen(event);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fake_host = {};
    Input input(data, size);
    input.byte() % 2 ? read_file(input) : replay_events(input);
    return 0;
}
