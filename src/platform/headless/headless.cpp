#include "platform/headless/headless.h"

#include <chrono>
#include <csignal>
#include <thread>

namespace {

constexpr int64_t NS_PER_SECOND = 1'000'000'000;
constexpr int64_t NS_PER_MS = 1'000'000;
constexpr int STATUS_PARTS = 4;
constexpr int SIGNAL_STATUS = 128; ///< plus the signal: exit status of a program it has ended

volatile std::sig_atomic_t stop_signal = 0;

class HeadlessClock final : public Clock {
public:
    HeadlessClock(bool real_time, int64_t look_ns, uint32_t refresh)
        : real_time_(real_time), look_ns_(look_ns), refresh_(refresh) {}

    int64_t counter() override {
        if (real_time_) {
            return std::chrono::duration_cast<std::chrono::nanoseconds>(
                       std::chrono::steady_clock::now().time_since_epoch())
                .count();
        }
        return now_ += look_ns_;
    }
    int64_t frequency() override { return NS_PER_SECOND; }
    void sleep_ms(uint32_t milliseconds) override {
        slept_ms += milliseconds;
        if (real_time_) {
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        } else {
            now_ += milliseconds * NS_PER_MS;
        }
    }
    uint32_t refresh_rate() override { return refresh_; }
    void advance(int64_t nanoseconds) { now_ += nanoseconds; }

    int64_t slept_ms = 0;

private:
    bool real_time_;
    int64_t look_ns_;
    uint32_t refresh_;
    int64_t now_ = 0;
};

class HeadlessEvents final : public Events {
public:
    Event poll() override {
        if (stop_signal) return {Event::Kind::quit, SIGNAL_STATUS + stop_signal, {}};
        if (waiting.empty()) return {};
        Event event = std::move(waiting.front());
        waiting.pop_front();
        return event;
    }
    /// Nothing ever comes from outside: an empty queue that is waited for is the end of the run.
    Event wait() override {
        Event event = poll();
        return event.kind == Event::Kind::none ? Event{Event::Kind::quit, 0, {}} : event;
    }
    void post_quit(int exit_code) override {
        quit_posted = true;
        waiting.push_back({Event::Kind::quit, exit_code, {}});
    }

    std::deque<Event> waiting;
    bool quit_posted = false;
};

class HeadlessKeyboard final : public HostKeyboard {
public:
    bool is_down(uint8_t key) override { return down.contains(key); }
    std::set<uint8_t> down;
};

class HeadlessPaths final : public Paths {
public:
    explicit HeadlessPaths(const HeadlessOptions& options) : options_(options) {}
    std::string program_directory() override { return options_.program_directory; }
    std::string data_directory() override { return options_.data_directory; }
    std::string config_directory() override { return options_.config_directory; }

private:
    const HeadlessOptions& options_;
};

class HeadlessSettings final : public Settings {
public:
    std::optional<uint32_t> number(const std::string& name) override {
        return value_of<uint32_t>(name);
    }
    std::optional<std::string> text(const std::string& name) override {
        return value_of<std::string>(name);
    }
    bool set_number(const std::string& name, uint32_t value) override {
        values_[name] = value;
        return true;
    }
    bool set_text(const std::string& name, const std::string& value) override {
        values_[name] = value;
        return true;
    }

private:
    template <typename Type>
    std::optional<Type> value_of(const std::string& name) const {
        const auto found = values_.find(name);
        if (found == values_.end()) return {};
        const Type* value = std::get_if<Type>(&found->second);
        return value ? std::optional<Type>(*value) : std::nullopt;
    }

    std::map<std::string, std::variant<uint32_t, std::string>> values_;
};

class HeadlessWindow final : public Window {
public:
    void set_title(const std::string& text) override { title = text; }
    void present(const BitmapView& /*picture*/) override { ++frames; }
    void set_status_text(int part, const std::string& text) override {
        if (part >= 0 && part < STATUS_PARTS) status[part] = text;
    }
    void set_lamp(int drive) override { lamp = drive; }

    std::string title;
    std::string status[STATUS_PARTS];
    int lamp = -1;
    int frames = 0;
};

} // namespace

struct HeadlessPlatform::State {
    explicit State(HeadlessOptions given)
        : options(std::move(given)),
          clock(options.real_time, options.look_ns, options.refresh_rate), paths(options) {}

    HeadlessOptions options;
    HeadlessClock clock;
    HeadlessEvents events;
    HeadlessKeyboard keyboard;
    HeadlessPaths paths;
    HeadlessSettings settings;
    HeadlessWindow window;
};

HeadlessPlatform::HeadlessPlatform(HeadlessOptions options)
    : state_(std::make_unique<State>(std::move(options))) {}
HeadlessPlatform::~HeadlessPlatform() = default;

Clock& HeadlessPlatform::clock() { return state_->clock; }
Events& HeadlessPlatform::events() { return state_->events; }
HostKeyboard& HeadlessPlatform::keyboard() { return state_->keyboard; }
Paths& HeadlessPlatform::paths() { return state_->paths; }
Settings& HeadlessPlatform::settings() { return state_->settings; }
Window& HeadlessPlatform::window() { return state_->window; }

void HeadlessPlatform::advance_ns(int64_t nanoseconds) { state_->clock.advance(nanoseconds); }
int64_t HeadlessPlatform::slept_ms() const { return state_->clock.slept_ms; }
void HeadlessPlatform::set_key(uint8_t key, bool down) {
    if (down) {
        state_->keyboard.down.insert(key);
    } else {
        state_->keyboard.down.erase(key);
    }
}
void HeadlessPlatform::release_all_keys() { state_->keyboard.down.clear(); }
void HeadlessPlatform::push_event(Event event) {
    state_->events.waiting.push_back(std::move(event));
}
bool HeadlessPlatform::quit_posted() const { return state_->events.quit_posted; }
const std::string& HeadlessPlatform::title() const { return state_->window.title; }
const std::string& HeadlessPlatform::status_text(int part) const {
    return state_->window.status[part];
}
int HeadlessPlatform::lamp() const { return state_->window.lamp; }
int HeadlessPlatform::frames_presented() const { return state_->window.frames; }

void HeadlessPlatform::stop_on_signals() {
    const auto stop = [](int signal) { stop_signal = signal; };
    std::signal(SIGINT, stop);
    std::signal(SIGTERM, stop);
}
