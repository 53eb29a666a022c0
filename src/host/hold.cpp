#include "host/hold.h"

#include <cstddef>
#include <deque>
#include <iterator>
#include <utility>

namespace {

int holds = 0;
std::deque<std::function<void()>> acts; ///< the next one in front
size_t place = 0;                       ///< of the next act that an act asks for
bool acting = false;

} // namespace

void hold_shell() { ++holds; }

void release_shell() {
    --holds;
    while (holds == 0 && !acts.empty() && !acting) {
        const auto act = std::move(acts.front());
        acts.pop_front();
        place = 0;
        acting = true;
        act();
        acting = false;
    }
}

bool shell_is_held() { return holds > 0; }

void when_free(std::function<void()> act) {
    if (holds == 0 && (acting || acts.empty())) return act();
    acts.insert(std::next(acts.begin(), acting ? std::ptrdiff_t(place++) : std::ssize(acts)),
                std::move(act));
}
