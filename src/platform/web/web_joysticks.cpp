#include "platform/web/web_joysticks.h"

#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

#include <algorithm>

namespace {

/// The machine looks many times per frame; the devices are asked once.
constexpr double UPDATE_INTERVAL = 4; ///< ms
constexpr int FIELD = 16;             ///< bits

} // namespace

int WebJoysticks::count() { return std::min(int(call_page("pads.count")), int(sticks_.size())); }

bool WebJoysticks::plugged(int number) { return call_page("pads.plugged", number) != 0; }

std::string WebJoysticks::name(int number) { return ask_page("pads.name", number).value_or(""); }

PadKind WebJoysticks::kind(int number) { return PadKind(int(call_page("pads.kind", number))); }

std::optional<JoystickState> WebJoysticks::read(int number) {
    if (number < 0 || size_t(number) >= sticks_.size()) return {};
    Stick& stick = sticks_[size_t(number)];
    const double now = emscripten_get_now();
    if (now < stick.next_update) return stick.state;
    stick.next_update = now + UPDATE_INTERVAL;
    const auto fields = int64_t(call_page("pads.read", number));
    stick.state.reset();
    if (fields >= 0) {
        stick.state = {uint16_t(fields), uint16_t(fields >> FIELD), uint16_t(fields >> 2 * FIELD)};
    }
    return stick.state;
}
