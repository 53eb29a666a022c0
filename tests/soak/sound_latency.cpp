/// How long it takes from the write of a sound register to the moment that SDL's device takes the
/// sample: the shell without a display, at real speed, with SDL's sound.
///
/// usage: sound_latency MINUTES [LATENCY]    LATENCY is the setting "SoundLatency"
///
/// SDL_AUDIODRIVER chooses another device than one with an exact clock. What is told to the user
/// goes to standard error.

#include "soak/sound_device.h"

#include "cgenie/memory/memory.h"
#include "core/pacing/pacing.h"
#include "files/file_handle.h"
#include "host/menu.h"
#include "host/shell.h"
#include "platform/headless/headless.h"
#include "platform/sdl/sdl_audio.h"
#include "sound/ym2149.h"
#include "support/paced_frames.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr uint16_t ORIGIN = 0x5800;
constexpr double START_UP = 10;   ///< seconds until the sound has settled
constexpr double FARTHEST = 0.25; ///< seconds: then comes the next write

double start = 0;
std::vector<double> written; ///< moments

/// The headless host with SDL's sound.
class Host final : public Platform {
public:
    Audio& audio() override { return audio_; }
    Clipboard& clipboard() override { return rest_.clipboard(); }
    Clock& clock() override { return rest_.clock(); }
    Dialogs& dialogs() override { return rest_.dialogs(); }
    Events& events() override { return rest_.events(); }
    Forms& forms() override { return rest_.forms(); }
    Joysticks& joysticks() override { return rest_.joysticks(); }
    HostKeyboard& keyboard() override { return rest_.keyboard(); }
    Pane& pane(PaneId id) override { return rest_.pane(id); }
    Paths& paths() override { return rest_.paths(); }
    PictureTube& picture_tube() override { return rest_.picture_tube(); }
    Settings& settings() override { return rest_.settings(); }
    StatusBar& status_bar() override { return rest_.status_bar(); }
    Surface& surface() override { return rest_.surface(); }
    Window& window() override { return rest_.window(); }

private:
    static HeadlessOptions real_time() {
        HeadlessOptions options;
        options.real_time = true;
        return options;
    }
    HeadlessPlatform rest_{real_time()};
    SdlAudio audio_;
};

int start_program() {
    const FileHandle file = open_file(STEPS, "rb");
    if (!file || std::fread(memory + ORIGIN, 1, 0x400, file.get()) == 0) return 0;
    z80_state.pc = ORIGIN;
    ym2149_set_port_write_callback(1, [](uint8_t) { written.push_back(sound_device_now()); });
    return 1;
}

/// Milliseconds of each write that was heard, in their order.
std::vector<double> latencies() {
    std::vector<double> found;
    const std::vector<double>& heard = heard_sound().jumps;
    for (const double moment : written) {
        const auto jump = std::ranges::lower_bound(heard, moment);
        if (moment - start < START_UP || jump == heard.end()) continue;
        if (*jump - moment < FARTHEST) found.push_back((*jump - moment) * 1000);
    }
    std::ranges::sort(found);
    return found;
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2) return std::fputs("usage: sound_latency MINUTES [LATENCY]\n", stderr), 1;
    if (!std::getenv("SDL_AUDIODRIVER")) {
        setenv("SDL_AUDIODRIVER", "disk", 1);
        setenv("SDL_DISKAUDIOFILE", "by-the-clock", 1);
        setenv("SDL_DISKAUDIODELAY", "0", 1);
    }
    Host host;
    install_platform(host);
    if (count > 2) host.settings().set_number("SoundLatency", uint32_t(std::atoi(arguments[2])));
    host.window().create("sound latency");
    create_menu();
    emu_init({});
    if (!start_program()) return std::fputs(STEPS " cannot be read\n", stderr), 1;
    start = sound_device_now();
    reset_timer();
    const double end = start + START_UP + std::atof(arguments[1]) * 60;
    while (sound_device_now() < end) run_paced_frame();
    emu_close();

    const std::vector<double> found = latencies();
    if (found.empty()) return std::fputs("nothing was heard\n", stderr), 1;
    const auto part = [&](double p) { return found[size_t(p * double(found.size() - 1))]; };
    std::printf(
        "from register write to device, ms: median %.1f, nine of ten %.1f to %.1f, all %.1f "
        "to %.1f (%zu writes)\n",
        part(0.5), part(0.05), part(0.95), part(0), part(1), found.size());
    for (const auto& [moment, ms] : heard_sound().gaps) {
        std::printf("  a gap of %.1f ms at %.2f s\n", ms, moment - start - START_UP);
    }
    return 0;
}
