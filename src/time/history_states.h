#pragma once
/// The states of a history: now and then a key, deflated, and between them what differs from the
/// key. Media are kept as differences, too, and shared by the states that have the same.

#include "core/machine_state.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

using PackedBytes = std::shared_ptr<const std::vector<uint8_t>>;

/// A medium: what it was once, and what is different since.
struct HistoryMedium {
    shared_bytes base;
    PackedBytes difference = {}; ///< null when there is none
    uint64_t spent = 0;          ///< bytes of all differences to this base
};
using HistoryMedia = std::array<HistoryMedium, MACHINE_MEDIA>;

struct HistoryState {
    int64_t frame = 0;   ///< at the end of which it was
    int64_t cycle = 0;   ///< t_count
    int64_t picture = 0; ///< the frame of the picture that was shown then; below 0 unknown
    bool alone = false;  ///< never dropped: events do not lead here, or the host followed here
    bool beam = false;   ///< by the beam engine
    PackedBytes key = {};
    PackedBytes difference = {}; ///< of the records; null for the key itself
    std::shared_ptr<const HistoryMedia> media = {};
    shared_bytes companion = {}; ///< what the host knows, see history.h
};

class HistoryStates {
public:
    bool empty() const { return states_.empty(); }
    const HistoryState& last() const { return states_.back(); }
    const std::vector<HistoryState>& all() const { return states_; }
    /// The last state at this frame or before; null when there is none.
    const HistoryState* at(int64_t frame) const;

    /// Keeps the live machine, at the frame and with the picture and companion of `place`.
    void add(HistoryState place);
    /// Changes that of the last state.
    void change_companion(const shared_bytes& companion) { states_.back().companion = companion; }
    /// Makes the state again. 0 when it is damaged.
    int unpack(const HistoryState& state, machine_state& to);
    /// Forgets the states after this frame.
    void cut(int64_t frame);
    /// Drops states until no more than `bytes` are left, where it can: first those before frame
    /// `young`, the oldest the most.
    void thin(uint64_t bytes, int64_t young);
    uint64_t bytes() const { return bytes_; }

private:
    using Records = std::vector<uint8_t>;
    /// The records of a key, unpacked.
    struct OpenKey {
        PackedBytes packed;
        Records records;
    };

    bool needs_key(const HistoryState& place) const;
    void keep_media();
    void thin_gaps(int64_t longest, uint64_t bytes, int64_t end);
    void count_bytes();

    std::vector<HistoryState> states_;
    uint64_t bytes_ = 0;
    // Of the state that was added last:
    machine_state now_;
    std::array<shared_bytes, MACHINE_MEDIA> contents_;
    std::shared_ptr<const HistoryMedia> media_;
    OpenKey key_;
    int64_t key_cycle_ = 0;
    bool anew_ = true;  ///< none of this holds for the next one
    OpenKey looked_at_; ///< of the state that was unpacked last
};
