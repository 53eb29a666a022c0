#pragma once
/// Single instructions backwards: the places between the instructions of one frame, and machines
/// parked among them, so that the next step back is a short way.

#include "time/history_moments.h"

#include <cstdint>
#include <optional>
#include <vector>

class PastSteps {
public:
    /// Makes the list of the frame behind the end of `frame`, at which the machine is, up to the
    /// moment. False when that cannot be done.
    bool list(int64_t frame, const history_moment& to);
    void forget();

    /// The place of the moment in the list, or nothing.
    std::optional<size_t> find(const history_moment& moment) const;
    size_t count() const { return places_.size(); }
    const history_moment& place(size_t n) const { return places_[n]; }
    /// The machine becomes what it was at the place. False when that cannot be done.
    bool go_to(size_t n) const;

private:
    void keep();

    std::vector<history_moment> places_;
    std::vector<history_place> parked_; ///< every so many places
};
