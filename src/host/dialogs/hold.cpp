#include "host/dialogs/hold.h"

#include <cstddef>
#include <deque>
#include <iterator>
#include <utility>

namespace {

int holds = 0;
std::deque<std::function<void()>> acts; ///< the next one in front
bool acting = false;                    ///< an act or an answer is under way
size_t place = 0;                       ///< in `acts` of the next act that the present one asks for

void perform(const std::function<void()>& act) {
    if (!std::exchange(acting, true)) place = 0;
    act();
}

} // namespace

void hold_shell() { ++holds; }

void release_shell() {
    --holds;
    while (holds == 0 && !acts.empty() && !acting) {
        const auto act = std::move(acts.front());
        acts.pop_front();
        perform(act);
        acting = false;
    }
}

bool shell_is_held() { return holds > 0; }

void when_free(std::function<void()> act) {
    if (holds == 0 && (acting || acts.empty())) return act();
    const size_t where = acting ? place++ : acts.size();
    acts.insert(std::next(acts.begin(), std::ptrdiff_t(where)), std::move(act));
}

void release_after(const std::function<void()>& answer) {
    const bool before = acting;
    perform(answer);
    acting = before;
    release_shell();
}
