#include "platform/sdl/sdl_joystick.h"

#include <SDL.h>

#include <algorithm>
#include <utility>

namespace {

constexpr Uint32 SUBSYSTEMS = SDL_INIT_JOYSTICK | SDL_INIT_GAMECONTROLLER;
/// The machine looks many times per frame; the devices are asked once.
constexpr std::chrono::milliseconds UPDATE_INTERVAL{4};
constexpr uint16_t AXIS_LOW = 0, AXIS_HIGH = 65535;
constexpr Sint16 TRIGGER_PRESSED = 20000; ///< of 32767
constexpr int PLAIN_BUTTONS = PAD_INPUTS - PAD_A;

constexpr std::pair<PadInput, SDL_GameControllerButton> CONTROLLER_BUTTONS[] = {
    {PAD_A, SDL_CONTROLLER_BUTTON_A},
    {PAD_B, SDL_CONTROLLER_BUTTON_B},
    {PAD_LEFT_SHOULDER, SDL_CONTROLLER_BUTTON_LEFTSHOULDER},
    {PAD_X, SDL_CONTROLLER_BUTTON_X},
    {PAD_Y, SDL_CONTROLLER_BUTTON_Y},
    {PAD_RIGHT_SHOULDER, SDL_CONTROLLER_BUTTON_RIGHTSHOULDER},
    {PAD_BACK, SDL_CONTROLLER_BUTTON_BACK},
    {PAD_START, SDL_CONTROLLER_BUTTON_START},
    {PAD_LEFT_STICK, SDL_CONTROLLER_BUTTON_LEFTSTICK},
    {PAD_RIGHT_STICK, SDL_CONTROLLER_BUTTON_RIGHTSTICK},
};
constexpr std::pair<PadInput, SDL_GameControllerAxis> TRIGGERS[] = {
    {PAD_LEFT_TRIGGER, SDL_CONTROLLER_AXIS_TRIGGERLEFT},
    {PAD_RIGHT_TRIGGER, SDL_CONTROLLER_AXIS_TRIGGERRIGHT},
};

struct JoystickCloser {
    void operator()(SDL_Joystick* joystick) const { SDL_JoystickClose(joystick); }
};
struct ControllerCloser {
    void operator()(SDL_GameController* controller) const { SDL_GameControllerClose(controller); }
};

/// -32768..32767 to 0..65535.
uint16_t position(Sint16 axis) { return uint16_t(axis + 32768); }

/// A direction of a D-pad or hat is the end of the axis.
void push(uint16_t& axis, bool low, bool high) {
    if (low) axis = AXIS_LOW;
    if (high) axis = AXIS_HIGH;
}

JoystickState controller_state(SDL_GameController* pad) {
    const auto down = [pad](SDL_GameControllerButton button) {
        return SDL_GameControllerGetButton(pad, button) != 0;
    };
    JoystickState state;
    state.x = position(SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_LEFTX));
    state.y = position(SDL_GameControllerGetAxis(pad, SDL_CONTROLLER_AXIS_LEFTY));
    push(state.x, down(SDL_CONTROLLER_BUTTON_DPAD_LEFT), down(SDL_CONTROLLER_BUTTON_DPAD_RIGHT));
    push(state.y, down(SDL_CONTROLLER_BUTTON_DPAD_UP), down(SDL_CONTROLLER_BUTTON_DPAD_DOWN));
    for (const auto& [input, button] : CONTROLLER_BUTTONS) state.set(input, down(button));
    for (const auto& [input, axis] : TRIGGERS) {
        state.set(input, SDL_GameControllerGetAxis(pad, axis) > TRIGGER_PRESSED);
    }
    return state;
}

/// Parts that the device does not have read as 0: the middle, or not pressed.
JoystickState plain_state(SDL_Joystick* joystick) {
    const Uint8 hat = SDL_JoystickGetHat(joystick, 0);
    JoystickState state;
    state.x = position(SDL_JoystickGetAxis(joystick, 0));
    state.y = position(SDL_JoystickGetAxis(joystick, 1));
    push(state.x, hat & SDL_HAT_LEFT, hat & SDL_HAT_RIGHT);
    push(state.y, hat & SDL_HAT_UP, hat & SDL_HAT_DOWN);
    for (int button = 0; button < PLAIN_BUTTONS; ++button) {
        state.set(PadInput(PAD_A + button), SDL_JoystickGetButton(joystick, button) != 0);
    }
    return state;
}

} // namespace

/// A device, in one of the two forms: as a controller when SDL knows its layout, else as a plain
/// joystick.
struct SdlJoysticks::Stick {
    SDL_JoystickID id = -1;
    std::unique_ptr<SDL_Joystick, JoystickCloser> joystick;
    std::unique_ptr<SDL_GameController, ControllerCloser> controller;
    JoystickState state; ///< at the last update

    SDL_Joystick* device() const {
        return controller ? SDL_GameControllerGetJoystick(controller.get()) : joystick.get();
    }
    JoystickState read() const {
        return controller ? controller_state(controller.get()) : plain_state(joystick.get());
    }
};

SdlJoysticks::SdlJoysticks() = default;

SdlJoysticks::~SdlJoysticks() {
    for (auto& stick : sticks_) stick.reset();
    if (started_) SDL_QuitSubSystem(SUBSYSTEMS);
}

bool SdlJoysticks::start() {
    if (std::exchange(start_tried_, true)) return started_;
    // The window is not SDL's, so SDL would take the program for one in the background.
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    started_ = SDL_InitSubSystem(SUBSYSTEMS) == 0;
    if (!started_) return false;
    // Nobody reads SDL's queue; states are asked for.
    SDL_JoystickEventState(SDL_IGNORE);
    SDL_GameControllerEventState(SDL_IGNORE);
    return true;
}

void SdlJoysticks::update() {
    const auto now = std::chrono::steady_clock::now();
    if (now < next_update_ || !start()) return;
    next_update_ = now + UPDATE_INTERVAL;
    SDL_JoystickUpdate();
    release_lost();
    open_new();
    for (const auto& stick : sticks_) {
        if (stick) stick->state = stick->read();
    }
}

void SdlJoysticks::release_lost() {
    for (auto& stick : sticks_) {
        if (stick && !SDL_JoystickGetAttached(stick->device())) stick.reset();
    }
}

void SdlJoysticks::open_new() {
    for (int index = 0; index < SDL_NumJoysticks(); ++index) open_device(index);
}

void SdlJoysticks::open_device(int index) {
    const SDL_JoystickID id = SDL_JoystickGetDeviceInstanceID(index);
    const auto known = [id](const auto& stick) { return stick && stick->id == id; };
    if (std::any_of(sticks_.begin(), sticks_.end(), known)) return;
    if (std::find(refused_.begin(), refused_.end(), id) != refused_.end()) return;
    const auto place = std::find(sticks_.begin(), sticks_.end(), nullptr);
    if (place == sticks_.end()) return;

    auto stick = std::make_unique<Stick>();
    stick->id = id;
    if (SDL_IsGameController(index)) stick->controller.reset(SDL_GameControllerOpen(index));
    if (!stick->controller) stick->joystick.reset(SDL_JoystickOpen(index));
    if (stick->device()) {
        *place = std::move(stick);
    } else {
        refused_.push_back(id);
    }
}

SdlJoysticks::Stick* SdlJoysticks::find(int number) {
    update();
    return number >= 0 && number < PLACES ? sticks_[number].get() : nullptr;
}

int SdlJoysticks::count() {
    update();
    for (int places = PLACES; places > 0; --places) {
        if (sticks_[places - 1]) return places;
    }
    return 0;
}

bool SdlJoysticks::plugged(int number) { return find(number) != nullptr; }

std::string SdlJoysticks::name(int number) {
    const Stick* stick = find(number);
    const char* text = stick ? SDL_JoystickName(stick->device()) : nullptr;
    return text ? text : "";
}

PadKind SdlJoysticks::kind(int number) {
    const Stick* stick = find(number);
    if (!stick) return PadKind::lettered;
    if (!stick->controller) return PadKind::numbered;
    switch (SDL_GameControllerGetType(stick->controller.get())) {
    case SDL_CONTROLLER_TYPE_PS3:
    case SDL_CONTROLLER_TYPE_PS4:
    case SDL_CONTROLLER_TYPE_PS5: return PadKind::playstation;
    default: return PadKind::lettered;
    }
}

bool SdlJoysticks::capture(int number) { return plugged(number); }

std::optional<JoystickState> SdlJoysticks::read(int number) {
    const Stick* stick = find(number);
    if (!stick) return std::nullopt;
    return stick->state;
}
