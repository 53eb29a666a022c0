#include "files/background.h"

#include <future>
#include <thread>
#include <utility>

struct Background::State {
    std::promise<void> done;
    std::shared_future<void> end = done.get_future().share();
};

Background::Background(std::function<void()> work) : state_(std::make_shared<State>()) {
    std::thread([state = state_, work = std::move(work)] {
        work();
        state->done.set_value();
    }).detach();
}

bool Background::is_done(std::chrono::milliseconds patience) const {
    return !state_ || state_->end.wait_for(patience) == std::future_status::ready;
}

void Background::wait() const {
    if (state_) state_->end.wait();
}
