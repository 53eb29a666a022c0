#include "platform/win32/win32_joysticks.h"

#include <algorithm>
#include <set>
#include <utility>

#include <mmsystem.h>

namespace {

/// The machine looks many times per frame; the devices are asked once.
constexpr std::chrono::milliseconds UPDATE_INTERVAL{4};
/// Windows takes its time to answer for those that are not there.
constexpr std::chrono::seconds SEARCH_INTERVAL{2};
constexpr UINT MESSAGE_INTERVAL = 20; ///< ms between messages about movements
constexpr uint16_t AXIS_LOW = 0, AXIS_HIGH = 65535;
constexpr BYTE TRIGGER_PRESSED = 127; ///< of 255
constexpr int PLAIN_BUTTONS = PAD_INPUTS - PAD_A;
constexpr DWORD EIGHTH_TURN = 4500; ///< hundredths of a degree, clockwise from the top

constexpr std::pair<PadInput, WORD> CONTROLLER_BUTTONS[] = {
    {PAD_A, XINPUT_GAMEPAD_A},
    {PAD_B, XINPUT_GAMEPAD_B},
    {PAD_LEFT_SHOULDER, XINPUT_GAMEPAD_LEFT_SHOULDER},
    {PAD_X, XINPUT_GAMEPAD_X},
    {PAD_Y, XINPUT_GAMEPAD_Y},
    {PAD_RIGHT_SHOULDER, XINPUT_GAMEPAD_RIGHT_SHOULDER},
    {PAD_BACK, XINPUT_GAMEPAD_BACK},
    {PAD_START, XINPUT_GAMEPAD_START},
    {PAD_LEFT_STICK, XINPUT_GAMEPAD_LEFT_THUMB},
    {PAD_RIGHT_STICK, XINPUT_GAMEPAD_RIGHT_THUMB},
};

/// A direction of a D-pad or hat is the end of the axis.
void push(uint16_t& axis, bool low, bool high) {
    if (low) axis = AXIS_LOW;
    if (high) axis = AXIS_HIGH;
}

uint16_t scaled(DWORD position, UINT lowest, UINT highest) {
    if (highest <= lowest) return JoystickState().x;
    const uint64_t above = std::clamp<DWORD>(position, lowest, highest) - lowest;
    return uint16_t(above * AXIS_HIGH / (highest - lowest));
}

std::optional<JOYCAPSW> capabilities(UINT id) {
    JOYCAPSW caps{};
    if (joyGetDevCapsW(id, &caps, sizeof caps) != JOYERR_NOERROR) return {};
    return caps;
}

std::optional<JoystickState> ask_joystick(UINT id) {
    JOYINFOEX info{};
    info.dwSize = sizeof info;
    info.dwFlags = JOY_RETURNX | JOY_RETURNY | JOY_RETURNBUTTONS | JOY_RETURNPOV;
    if (joyGetPosEx(id, &info) != JOYERR_NOERROR) return {};
    const std::optional<JOYCAPSW> caps = capabilities(id);
    if (!caps) return {};
    JoystickState state;
    state.x = scaled(info.dwXpos, caps->wXmin, caps->wXmax);
    state.y = scaled(info.dwYpos, caps->wYmin, caps->wYmax);
    const DWORD hat = info.dwPOV;
    if ((caps->wCaps & JOYCAPS_HASPOV) && hat < 8 * EIGHTH_TURN) {
        push(state.x, hat >= 5 * EIGHTH_TURN && hat <= 7 * EIGHTH_TURN,
             hat >= EIGHTH_TURN && hat <= 3 * EIGHTH_TURN);
        push(state.y, hat >= 7 * EIGHTH_TURN || hat <= EIGHTH_TURN,
             hat >= 3 * EIGHTH_TURN && hat <= 5 * EIGHTH_TURN);
    }
    for (int button = 0; button < PLAIN_BUTTONS; ++button) {
        state.set(PadInput(PAD_A + button), (info.dwButtons >> button & 1) != 0);
    }
    return state;
}

using Products = std::set<std::pair<DWORD, DWORD>>; ///< maker and product

/// What XInput serves: the paths of such devices have a mark. Nothing else tells which of the
/// service's joysticks they are.
Products controllers_products() {
    constexpr const wchar_t* MARK = L"IG_";
    UINT count = 0;
    GetRawInputDeviceList(nullptr, &count, sizeof(RAWINPUTDEVICELIST));
    std::vector<RAWINPUTDEVICELIST> devices(count);
    const UINT listed = GetRawInputDeviceList(devices.data(), &count, sizeof(RAWINPUTDEVICELIST));
    devices.resize(listed == UINT(-1) ? 0 : listed);
    Products products;
    for (const RAWINPUTDEVICELIST& device : devices) {
        std::array<wchar_t, 512> path{};
        UINT length = path.size() - 1;
        const UINT got =
            GetRawInputDeviceInfoW(device.hDevice, RIDI_DEVICENAME, path.data(), &length);
        RID_DEVICE_INFO info{};
        info.cbSize = sizeof info;
        UINT bytes = sizeof info;
        if (device.dwType == RIM_TYPEHID && got != UINT(-1) &&
            std::wstring_view(path.data()).find(MARK) != std::wstring_view::npos &&
            GetRawInputDeviceInfoW(device.hDevice, RIDI_DEVICEINFO, &info, &bytes) != UINT(-1)) {
            products.emplace(info.hid.dwVendorId, info.hid.dwProductId);
        }
    }
    return products;
}

} // namespace

Win32Joysticks::Win32Joysticks(Win32Context& context)
    : context_(context), xinput_(L"xinput1_4.dll") {
    xinput_.find("XInputGetState", get_state_);
}

Win32Joysticks::~Win32Joysticks() {
    for (const UINT id : captured_) joyReleaseCapture(id);
}

std::optional<JoystickState> Win32Joysticks::ask_controller(UINT id) const {
    XINPUT_STATE answer{};
    if (!get_state_ || get_state_(id, &answer) != ERROR_SUCCESS) return {};
    const XINPUT_GAMEPAD& pad = answer.Gamepad;
    const auto down = [&pad](WORD button) { return (pad.wButtons & button) != 0; };
    JoystickState state;
    state.x = uint16_t(pad.sThumbLX + 32768);
    state.y = uint16_t(32767 - pad.sThumbLY);
    push(state.x, down(XINPUT_GAMEPAD_DPAD_LEFT), down(XINPUT_GAMEPAD_DPAD_RIGHT));
    push(state.y, down(XINPUT_GAMEPAD_DPAD_UP), down(XINPUT_GAMEPAD_DPAD_DOWN));
    for (const auto& [input, button] : CONTROLLER_BUTTONS) state.set(input, down(button));
    state.set(PAD_LEFT_TRIGGER, pad.bLeftTrigger > TRIGGER_PRESSED);
    state.set(PAD_RIGHT_TRIGGER, pad.bRightTrigger > TRIGGER_PRESSED);
    return state;
}

std::optional<JoystickState> Win32Joysticks::ask(const Stick& stick) const {
    if (stick.source == Source::none) return {};
    return stick.source == Source::controller ? ask_controller(stick.id) : ask_joystick(stick.id);
}

/// A device that has a place keeps it.
void Win32Joysticks::place(Source source, UINT id, const std::optional<JoystickState>& state) {
    const auto is_it = [=](const Stick& stick) { return stick.source == source && stick.id == id; };
    if (!state || std::ranges::any_of(sticks_, is_it)) return;
    auto free = std::ranges::find(sticks_, Source::none, &Stick::source);
    // A joystick has the service's number where nothing else has that place.
    const bool own = source == Source::joystick && id < sticks_.size();
    if (own && sticks_[id].source == Source::none) free = sticks_.begin() + id;
    if (free != sticks_.end()) *free = {source, id, *state};
}

/// Gives free places to devices that have none.
void Win32Joysticks::search() {
    bool controllers = false;
    for (UINT id = 0; id < XUSER_MAX_COUNT; ++id) {
        const std::optional<JoystickState> state = ask_controller(id);
        controllers = controllers || state;
        place(Source::controller, id, state);
    }
    const auto products = controllers ? controllers_products() : Products();
    for (UINT id = 0; id < joyGetNumDevs(); ++id) {
        const std::optional<JOYCAPSW> caps = capabilities(id);
        if (!caps || products.contains({caps->wMid, caps->wPid})) continue;
        place(Source::joystick, id, ask_joystick(id));
    }
}

void Win32Joysticks::update() {
    const auto now = std::chrono::steady_clock::now();
    if (now < next_update_) return;
    next_update_ = now + UPDATE_INTERVAL;
    bool room = false;
    for (Stick& stick : sticks_) {
        const std::optional<JoystickState> state = ask(stick);
        stick.state = state.value_or(JoystickState());
        if (!state) stick.source = Source::none;
        room = room || !state;
    }
    if (!room || now < next_search_) return;
    search();
    next_search_ = now + SEARCH_INTERVAL;
}

Win32Joysticks::Stick* Win32Joysticks::find(int number) {
    update();
    if (number < 0 || size_t(number) >= sticks_.size()) return nullptr;
    Stick& stick = sticks_[size_t(number)];
    return stick.source == Source::none ? nullptr : &stick;
}

int Win32Joysticks::count() {
    int places = int(joyGetNumDevs());
    for (int n = 0; n < int(sticks_.size()); ++n) {
        if (plugged(n)) places = std::max(places, n + 1);
    }
    return places;
}

bool Win32Joysticks::plugged(int number) { return find(number) != nullptr; }

std::string Win32Joysticks::name(int number) {
    const Stick* const stick = find(number);
    if (!stick) return {};
    if (stick->source == Source::controller) return "XInput controller";
    const std::optional<JOYCAPSW> caps = capabilities(stick->id);
    return caps ? narrow(caps->szPname) : std::string();
}

PadKind Win32Joysticks::kind(int number) {
    const Stick* const stick = find(number);
    return stick && stick->source == Source::joystick ? PadKind::numbered : PadKind::lettered;
}

bool Win32Joysticks::capture(int number) {
    const Stick* const stick = find(number);
    if (!stick) return false;
    if (stick->source == Source::controller) return true;
    const bool captured =
        joySetCapture(context_.window, stick->id, MESSAGE_INTERVAL, FALSE) == JOYERR_NOERROR;
    if (captured) captured_.push_back(stick->id);
    return captured;
}

std::optional<JoystickState> Win32Joysticks::read(int number) {
    const Stick* const stick = find(number);
    return stick ? std::optional(stick->state) : std::nullopt;
}
