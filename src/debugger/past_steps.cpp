#include "debugger/past_steps.h"

#include <algorithm>

namespace {

constexpr size_t PARKED_EVERY = 1000; ///< instructions

} // namespace

void PastSteps::forget() {
    places_.clear();
    parked_.clear();
}

void PastSteps::keep() {
    if (places_.size() % PARKED_EVERY == 0) history_park(parked_.emplace_back());
    places_.push_back(history_moment_now());
}

bool PastSteps::list(int64_t frame, const history_moment& to) {
    forget();
    history_end end = history_run_steps(0, false);
    while (end == history_end::stands && history_position() == frame) {
        keep();
        if (history_moment_now() == to) break;
        end = history_run_steps(1, false);
    }
    if (end == history_end::record) keep();
    return end != history_end::failed && !places_.empty();
}

std::optional<size_t> PastSteps::find(const history_moment& moment) const {
    const auto found = std::ranges::find(places_, moment);
    if (found == places_.end()) return {};
    return size_t(found - places_.begin());
}

bool PastSteps::go_to(size_t n) const {
    history_take_up(parked_[n / PARKED_EVERY]);
    const history_moment& to = place(n);
    history_run_to(to);
    return history_moment_now() == to;
}
