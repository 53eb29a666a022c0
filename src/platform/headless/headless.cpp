#include "platform/headless/headless.h"

#include "platform/headless/stop_signals.h"
#include "platform/settings_file.h"

#include <array>
#include <chrono>
#include <deque>
#include <thread>
#include <utility>

namespace {

constexpr int64_t NS_PER_SECOND = 1'000'000'000;
constexpr int64_t NS_PER_MS = 1'000'000;
constexpr int SIGNAL_STATUS = 128; ///< plus the signal: exit status of a program it has ended

class HeadlessClock final : public Clock {
public:
    HeadlessClock(bool real_time, int64_t look_ns, uint32_t refresh)
        : real_time_(real_time), look_ns_(look_ns), refresh_(refresh) {}

    int64_t counter() override {
        now_ += look_ns_;
        return now();
    }
    /// The time, without making any pass.
    int64_t now() const {
        if (!real_time_) return now_;
        return std::chrono::duration_cast<std::chrono::nanoseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }
    int64_t frequency() override { return NS_PER_SECOND; }
    /// With virtual time, a millisecond passes and the call returns: the caller looks at the clock
    /// and waits again.
    void sleep(int64_t microseconds) {
        if (real_time_) {
            std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
        } else {
            ++slept_ms;
            now_ += NS_PER_MS;
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

Event quit_event(int exit_code) {
    Event event;
    event.kind = Event::Kind::quit;
    event.value = exit_code;
    return event;
}

class HeadlessEvents final : public Events {
public:
    HeadlessEvents(HeadlessClock& clock, HeadlessAnswers& answers)
        : clock_(clock), answers_(answers) {}

    void set_sink(EventSink& given) override { sink = &given; }
    Event poll() override {
        answers_.deliver();
        // Given once; otherwise a loop that takes all waiting messages would never end.
        if (const int signal = take_stop_signal()) return quit_event(SIGNAL_STATUS + signal);
        if (waiting.empty()) return {};
        Event event = std::move(waiting.front());
        waiting.pop_front();
        return event;
    }
    /// No message ever comes from outside, so waiting with an empty queue ends the run.
    void wait(int64_t microseconds) override {
        if (microseconds != NO_LIMIT) return clock_.sleep(microseconds);
        if (waiting.empty() && answers_.waiting.empty()) waiting.push_back(quit_event(0));
    }
    void post_quit(int exit_code) override {
        quit_posted = true;
        waiting.push_back(quit_event(exit_code));
    }
    void post(const Event& event) override { waiting.push_back(event); }

    std::deque<Event> waiting;
    EventSink* sink = nullptr;
    bool quit_posted = false;

private:
    HeadlessClock& clock_;
    HeadlessAnswers& answers_;
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

} // namespace

struct HeadlessPlatform::State {
    explicit State(HeadlessOptions given)
        : options(std::move(given)),
          clock(options.real_time, options.look_ns, options.refresh_rate), paths(options),
          window(options.screen),
          panes{
              HeadlessPane(window, status_bar, options.keep_pictures),
              HeadlessPane(window, status_bar, options.keep_pictures),
              HeadlessPane(window, status_bar, options.keep_pictures, PaneId::film_bar),
              HeadlessPane(window, status_bar, options.keep_pictures, PaneId::overlay),
              HeadlessPane(window, status_bar, options.keep_pictures, PaneId::keyboard),
              HeadlessPane(window, status_bar, options.keep_pictures, PaneId::debugger),
          },
          settings_file(options.settings_path) {
        panes[size_t(PaneId::picture)].shown = true;
    }

    HeadlessOptions options;
    HeadlessClipboard clipboard;
    HeadlessClock clock;
    HeadlessAudio audio{[this] { return clock.now(); }};
    HeadlessAnswers answers;
    HeadlessDialogs dialogs{answers};
    HeadlessEvents events{clock, answers};
    HeadlessForms forms{answers};
    HeadlessJoysticks joysticks;
    HeadlessKeyboard keyboard;
    HeadlessPaths paths;
    HeadlessPictureTube picture_tube;
    HeadlessWindow window;
    HeadlessStatusBar status_bar;
    std::array<HeadlessPane, PANES> panes;
    HeadlessSurface surface;
    HeadlessSettings settings;
    SettingsFile settings_file;
};

HeadlessPlatform::HeadlessPlatform(HeadlessOptions options)
    : state_(std::make_unique<State>(std::move(options))) {}
HeadlessPlatform::~HeadlessPlatform() = default;

HeadlessAudio& HeadlessPlatform::audio() { return state_->audio; }
HeadlessClipboard& HeadlessPlatform::clipboard() { return state_->clipboard; }
Clock& HeadlessPlatform::clock() { return state_->clock; }
HeadlessDialogs& HeadlessPlatform::dialogs() { return state_->dialogs; }
Events& HeadlessPlatform::events() { return state_->events; }
HeadlessForms& HeadlessPlatform::forms() { return state_->forms; }
HeadlessJoysticks& HeadlessPlatform::joysticks() { return state_->joysticks; }
HeadlessKeyboard& HeadlessPlatform::keyboard() { return state_->keyboard; }
HeadlessPane& HeadlessPlatform::pane(PaneId id) { return state_->panes[size_t(id)]; }
Paths& HeadlessPlatform::paths() { return state_->paths; }
HeadlessPictureTube& HeadlessPlatform::picture_tube() { return state_->picture_tube; }
HeadlessStatusBar& HeadlessPlatform::status_bar() { return state_->status_bar; }
HeadlessSurface& HeadlessPlatform::surface() { return state_->surface; }
HeadlessWindow& HeadlessPlatform::window() { return state_->window; }
Settings& HeadlessPlatform::settings() {
    if (state_->options.settings_path.empty()) return state_->settings;
    return state_->settings_file;
}

void HeadlessPlatform::advance_ns(int64_t nanoseconds) { state_->clock.advance(nanoseconds); }
int64_t HeadlessPlatform::slept_ms() const { return state_->clock.slept_ms; }
void HeadlessPlatform::set_key(uint8_t key, bool down) { state_->keyboard.down[key] = down; }
void HeadlessPlatform::release_all_keys() { state_->keyboard.release_all(); }
void HeadlessPlatform::push_event(Event event) {
    state_->events.waiting.push_back(std::move(event));
}
EventSink& HeadlessPlatform::sink() { return *state_->events.sink; }
void HeadlessPlatform::answer_later(bool on) { state_->answers.later = on; }
bool HeadlessPlatform::quit_posted() const { return state_->events.quit_posted; }
HeadlessSettings& HeadlessPlatform::settings_in_memory() { return state_->settings; }
const std::string& HeadlessPlatform::title() const { return state_->window.caption; }
std::string HeadlessPlatform::status_text(int part) const {
    const std::vector<std::string>& texts = state_->status_bar.texts;
    return part >= 0 && size_t(part) < texts.size() ? texts[part] : std::string();
}
int HeadlessPlatform::frames_presented() const {
    const HeadlessPane& picture = state_->panes[size_t(PaneId::picture)];
    return picture.copies + picture.stretches + state_->surface.presents;
}

void HeadlessPlatform::stop_on_signals() { watch_stop_signals(); }
