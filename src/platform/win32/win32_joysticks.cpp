#include "platform/win32/win32_joysticks.h"

#include <algorithm>

#include <mmsystem.h>

namespace {

/// The machine looks many times per frame; the device is asked once.
constexpr std::chrono::milliseconds UPDATE_INTERVAL{4};
/// Windows takes its time to answer for one that is not there.
constexpr std::chrono::seconds SEARCH_INTERVAL{2};
constexpr UINT MESSAGE_INTERVAL = 20; ///< ms between messages about movements
constexpr uint16_t AXIS_LOW = 0, AXIS_HIGH = 65535;
constexpr int PLAIN_BUTTONS = PAD_INPUTS - PAD_A;
constexpr DWORD EIGHTH_TURN = 4500; ///< hundredths of a degree, clockwise from the top

uint16_t scaled(DWORD position, UINT lowest, UINT highest) {
    if (highest <= lowest) return JoystickState().x;
    const uint64_t above = std::clamp<DWORD>(position, lowest, highest) - lowest;
    return uint16_t(above * AXIS_HIGH / (highest - lowest));
}

/// A direction of the hat is the end of the axis.
void push(JoystickState& state, DWORD hat) {
    if (hat >= 8 * EIGHTH_TURN) return; // in the middle
    if (hat >= 7 * EIGHTH_TURN || hat <= EIGHTH_TURN) state.y = AXIS_LOW;
    if (hat >= EIGHTH_TURN && hat <= 3 * EIGHTH_TURN) state.x = AXIS_HIGH;
    if (hat >= 3 * EIGHTH_TURN && hat <= 5 * EIGHTH_TURN) state.y = AXIS_HIGH;
    if (hat >= 5 * EIGHTH_TURN && hat <= 7 * EIGHTH_TURN) state.x = AXIS_LOW;
}

std::optional<JOYCAPSW> capabilities(int number) {
    JOYCAPSW caps{};
    if (joyGetDevCapsW(UINT_PTR(number), &caps, sizeof caps) != JOYERR_NOERROR) return {};
    return caps;
}

std::optional<JoystickState> ask_device(int number) {
    JOYINFOEX info{};
    info.dwSize = sizeof info;
    info.dwFlags = JOY_RETURNX | JOY_RETURNY | JOY_RETURNBUTTONS | JOY_RETURNPOV;
    if (joyGetPosEx(UINT(number), &info) != JOYERR_NOERROR) return {};
    const std::optional<JOYCAPSW> caps = capabilities(number);
    if (!caps) return {};
    JoystickState state;
    state.x = scaled(info.dwXpos, caps->wXmin, caps->wXmax);
    state.y = scaled(info.dwYpos, caps->wYmin, caps->wYmax);
    if (caps->wCaps & JOYCAPS_HASPOV) push(state, info.dwPOV);
    for (int button = 0; button < PLAIN_BUTTONS; ++button) {
        state.set(PadInput(PAD_A + button), (info.dwButtons >> button & 1) != 0);
    }
    return state;
}

} // namespace

Win32Joysticks::~Win32Joysticks() {
    for (size_t n = 0; n < sticks_.size(); ++n) {
        if (sticks_[n].captured) joyReleaseCapture(UINT(n));
    }
}

Win32Joysticks::Stick* Win32Joysticks::find(int number) {
    if (number < 0 || size_t(number) >= sticks_.size()) return nullptr;
    Stick& stick = sticks_[size_t(number)];
    if (std::chrono::steady_clock::now() >= stick.next_question) {
        const std::optional<JoystickState> state = ask_device(number);
        stick.there = state.has_value();
        stick.state = state.value_or(JoystickState());
        stick.next_question = std::chrono::steady_clock::now();
        if (stick.there) {
            stick.next_question += UPDATE_INTERVAL;
        } else {
            stick.next_question += SEARCH_INTERVAL;
        }
    }
    return stick.there ? &stick : nullptr;
}

int Win32Joysticks::count() { return int(joyGetNumDevs()); }

bool Win32Joysticks::plugged(int number) { return find(number) != nullptr; }

std::string Win32Joysticks::name(int number) {
    const std::optional<JOYCAPSW> caps = capabilities(number);
    return caps && plugged(number) ? narrow(caps->szPname) : std::string();
}

PadKind Win32Joysticks::kind(int number) {
    return plugged(number) ? PadKind::numbered : PadKind::lettered;
}

bool Win32Joysticks::capture(int number) {
    Stick* const stick = find(number);
    if (!stick) return false;
    stick->captured =
        joySetCapture(context_.window, UINT(number), MESSAGE_INTERVAL, FALSE) == JOYERR_NOERROR;
    return stick->captured;
}

std::optional<JoystickState> Win32Joysticks::read(int number) {
    const Stick* const stick = find(number);
    return stick ? std::optional(stick->state) : std::nullopt;
}
