#pragma once
/// A host without a display: no window, the same shell. Time is virtual unless real pacing is asked
/// for: it passes only when the program waits or looks at the clock, so that a run is exactly
/// repeatable. Keys, joysticks, answers to dialogs and messages are what its driver sets; each
/// service is a record that the driver may look into.

#include "platform/headless/headless_audio.h"
#include "platform/headless/headless_dialogs.h"
#include "platform/headless/headless_forms.h"
#include "platform/headless/headless_joystick.h"
#include "platform/headless/headless_keyboard.h"
#include "platform/headless/headless_settings.h"
#include "platform/headless/headless_window.h"
#include "platform/platform.h"

#include <memory>
#include <string>

struct HeadlessOptions {
    bool real_time = false; ///< pace against the real clock
    /// Virtual nanoseconds that every look at the clock takes. An unknown display counts as one of
    /// 100 Hz, so with 10 ms an unpaced run presents every frame.
    int64_t look_ns = 10'000'000;
    uint32_t refresh_rate = 0; ///< Hz; 0 = unknown
    std::string data_directory;
    std::string config_directory;
    std::string program_directory;
    Size screen{1280, 1024};
    std::string settings_path;  ///< empty: settings are kept in memory only
    bool keep_pictures = false; ///< what is drawn into a pane can be read back
};

class HeadlessPlatform final : public Platform {
public:
    explicit HeadlessPlatform(HeadlessOptions options);
    ~HeadlessPlatform() override;

    HeadlessAudio& audio() override;
    HeadlessClipboard& clipboard() override;
    Clock& clock() override;
    HeadlessDialogs& dialogs() override;
    Downloads* downloads() override { return download_service; }
    Events& events() override;
    Films* films() override { return film_library; }
    HeadlessForms& forms() override;
    HeadlessJoysticks& joysticks() override;
    HeadlessKeyboard& keyboard() override;
    HeadlessPane& pane(PaneId id) override;
    Paths& paths() override;
    HeadlessPictureTube& picture_tube() override;
    Settings& settings() override;
    HeadlessStatusBar& status_bar() override;
    HeadlessSurface& surface() override;
    HeadlessWindow& window() override;

    // For whoever drives the run.
    void advance_ns(int64_t nanoseconds); ///< of virtual time
    int64_t slept_ms() const;             ///< in all
    void set_key(uint8_t key, bool down);
    void release_all_keys();
    void push_event(Event event);
    EventSink& sink(); ///< once the program has given one
    /// Dialogs return at once, and each answer comes with the next look for messages.
    void answer_later(bool on);
    bool quit_posted() const;
    HeadlessSettings& settings_in_memory(); ///< unused while there is a settings file
    const std::string& title() const;
    /// Empty where the part does not exist.
    std::string status_text(int part) const;
    int frames_presented() const; ///< in the window and on the whole screen

    Films* film_library = nullptr;         ///< what the host has for films
    Downloads* download_service = nullptr; ///< and to hand files out

    /// An interrupt, termination or hang-up signal ends the message loop instead of the process.
    static void stop_on_signals();

private:
    struct State;
    std::unique_ptr<State> state_;
};
