#include "time/history_states.h"

#include "cgenie/video.h"
#include "core/frame_driver.h"
#include "time/deflate.h"
#include "time/state_difference.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr int64_t KEY_SECONDS = 60; ///< of the machine, from one key to the next
/// A difference that is longer than this part of its key makes the next state a key, but not sooner
/// than after so many seconds.
constexpr size_t LARGE_PART = 2;
constexpr int64_t SHORTEST_KEY_SECONDS = 5;
constexpr size_t PIECE = 256; ///< of a medium, when two are compared roughly

int64_t cycles_of(int64_t seconds) { return seconds * int64_t(z80_state.clock_hz); }

PackedBytes packed(std::vector<uint8_t> bytes) {
    bytes.shrink_to_fit();
    return std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
}

uint64_t size_of(const PackedBytes& bytes) {
    return bytes ? bytes->size() + sizeof(std::vector<uint8_t>) : 0;
}

/// The line engine draws its picture from the rest of the state when it is shown. What was drawn
/// last is not kept.
void leave_out_picture(machine_state& state) {
    if (g_bCycleBasedEngine) return;
    const size_t place = machine_record_place(frame_buffer_record.name).offset;
    std::memset(&state.records[place], 0, frame_buffer_record.size);
}

/// Another disk, and not the same one with some sectors written.
bool is_another(std::span<const uint8_t> a, std::span<const uint8_t> b) {
    const size_t pieces = std::min(a.size(), b.size()) / PIECE;
    size_t different = 0;
    for (size_t n = 0; n < pieces; ++n) {
        different += std::memcmp(&a[n * PIECE], &b[n * PIECE], PIECE) != 0 ? 1 : 0;
    }
    return different * 2 > pieces || std::max(a.size(), b.size()) > pieces * PIECE * 2 + PIECE;
}

HistoryMedium kept_medium(const HistoryMedium& before, const shared_bytes& contents) {
    if (contents.empty()) return {};
    if (before.spent > contents.size() || is_another(before.base.view(), contents.view())) {
        return {.base = contents};
    }
    HistoryMedium medium = {.base = before.base};
    std::vector<uint8_t> difference = difference_of(before.base.view(), contents.view());
    medium.spent = before.spent + difference.size();
    if (!difference.empty()) medium.difference = packed(std::move(difference));
    return medium;
}

/// What a state takes that the one before it does not have as well.
uint64_t own_bytes(const HistoryState& state, const HistoryState* before) {
    uint64_t bytes = sizeof state + size_of(state.difference);
    if (!before || before->key != state.key) bytes += size_of(state.key);
    if (before && before->media == state.media) return bytes;
    bytes += sizeof(HistoryMedia);
    for (size_t n = 0; n < MACHINE_MEDIA; ++n) {
        const HistoryMedium& medium = (*state.media)[n];
        const HistoryMedium* const other = before ? &(*before->media)[n] : nullptr;
        if (!other || other->difference != medium.difference) bytes += size_of(medium.difference);
        const bool shared = other && other->base.view().data() == medium.base.view().data();
        if (!shared) bytes += medium.base.size();
    }
    return bytes;
}

} // namespace

const HistoryState* HistoryStates::at(int64_t frame) const {
    const auto next = std::ranges::upper_bound(states_, frame, {}, &HistoryState::frame);
    return next == states_.begin() ? nullptr : &*(next - 1);
}

bool HistoryStates::needs_key(const HistoryState& place) const {
    const int64_t since = place.cycle - key_cycle_;
    if (anew_ || since < 0 || since >= cycles_of(KEY_SECONDS)) return true;
    const bool large = size_of(last().difference) * LARGE_PART > size_of(last().key);
    return large && since >= cycles_of(SHORTEST_KEY_SECONDS);
}

void HistoryStates::keep_media() {
    HistoryMedia media = media_ ? *media_ : HistoryMedia();
    bool same = !anew_;
    for (size_t n = 0; n < MACHINE_MEDIA; ++n) {
        if (!anew_ && now_.media[n] == contents_[n]) continue;
        same = false;
        media[n] = kept_medium(media[n], now_.media[n]);
    }
    contents_ = std::move(now_.media); // so that the machine shares a medium with one copy at most
    if (!same) media_ = std::make_shared<const HistoryMedia>(std::move(media));
}

void HistoryStates::add(HistoryState place) {
    machine_save(now_);
    leave_out_picture(now_);
    place.cycle = z80_state.t_count;
    place.beam = g_bCycleBasedEngine;
    keep_media();
    place.media = media_;
    if (needs_key(place)) {
        place.key = packed(deflated(now_.records, DEFLATE_FAST));
        key_ = {place.key, now_.records};
        key_cycle_ = place.cycle;
    } else {
        place.key = key_.packed;
        place.difference = packed(difference_of(key_.records, now_.records));
    }
    anew_ = false;
    bytes_ += own_bytes(place, states_.empty() ? nullptr : &last());
    states_.push_back(std::move(place));
}

int HistoryStates::unpack(const HistoryState& state, machine_state& to) {
    if (looked_at_.packed != state.key) {
        auto records = inflated(*state.key, machine_state_size());
        if (!records) return 0;
        looked_at_ = {state.key, std::move(*records)};
    }
    to.records = looked_at_.records;
    if (state.difference && !difference_apply(looked_at_.records, *state.difference, to.records)) {
        return 0;
    }
    for (size_t n = 0; n < MACHINE_MEDIA; ++n) {
        const HistoryMedium& medium = (*state.media)[n];
        to.media[n] = medium.base;
        if (!medium.difference) continue;
        std::vector<uint8_t> contents;
        if (!difference_apply(medium.base.view(), *medium.difference, contents)) return 0;
        to.media[n] = shared_bytes(std::move(contents));
    }
    return 1;
}

void HistoryStates::cut(int64_t frame) {
    while (!states_.empty() && last().frame > frame) states_.pop_back();
    anew_ = true;
    count_bytes();
}

void HistoryStates::count_bytes() {
    bytes_ = 0;
    const HistoryState* before = nullptr;
    for (const HistoryState& state : states_) {
        bytes_ += own_bytes(state, before);
        before = &state;
    }
}

/// Drops states before frame `end` that have less than `longest` cycles between their neighbours,
/// the oldest first, until `bytes` are left.
void HistoryStates::thin_gaps(int64_t longest, uint64_t bytes, int64_t end) {
    uint64_t left = bytes_;
    size_t kept = 0;
    for (size_t n = 0; n < states_.size(); ++n) {
        const HistoryState& state = states_[n];
        const bool inside = n > 0 && n + 1 < states_.size() && state.frame < end && left > bytes;
        const bool narrow = inside && states_[n + 1].cycle - states_[kept - 1].cycle < longest &&
                            states_[n + 1].cycle >= states_[kept - 1].cycle;
        if (narrow && !state.alone && (state.difference || longest >= cycles_of(2 * KEY_SECONDS))) {
            left -= std::min(left, sizeof state + size_of(state.difference));
            continue;
        }
        if (kept != n) states_[kept] = std::move(states_[n]);
        ++kept;
    }
    states_.resize(kept);
    count_bytes();
}

void HistoryStates::thin(uint64_t bytes, int64_t young) {
    constexpr int64_t LONGEST_GAP = 60 * 60; ///< seconds
    for (const int64_t end : {young, INT64_MAX}) {
        for (int64_t gap = 4; gap <= LONGEST_GAP && bytes_ > bytes; gap *= 2) {
            thin_gaps(cycles_of(gap), bytes, end);
        }
    }
}
