#include "platform/win32/win32_keyboard.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int EXTENDED = 0x100; ///< in a source
constexpr int LEFT_SHIFT = 0x2A;
constexpr int RIGHT_SHIFT = 0x36;

int source_of(LPARAM detail) {
    return LOBYTE(HIWORD(detail)) | (HIWORD(detail) & KF_EXTENDED ? EXTENDED : 0);
}

bool is_held(int virtual_key) { return GetKeyState(virtual_key) < 0; }

uint8_t modifiers_now() {
    return uint8_t((is_held(VK_SHIFT) ? MODIFIER_SHIFT : 0) |
                   (is_held(VK_CONTROL) ? MODIFIER_CONTROL : 0) |
                   (is_held(VK_MENU) ? MODIFIER_ALT : 0));
}

} // namespace

bool Win32Keyboard::control_is_held() { return GetAsyncKeyState(VK_CONTROL) < 0; }

void Win32Keyboard::claim(std::span<const KeyChord> chords) {
    claimed_.assign(chords.begin(), chords.end());
}

bool Win32Keyboard::is_claimed(uint8_t key, uint8_t modifiers) const {
    return std::ranges::any_of(claimed_, [=](const KeyChord& chord) {
        return chord.key == key && chord.modifiers == modifiers;
    });
}

bool Win32Keyboard::handle(PaneId pane, UINT message, WPARAM wparam, LPARAM detail) {
    if (message >= WM_KEYFIRST && message <= WM_KEYLAST) pane_ = pane;
    switch (message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN: return key_down(wparam, detail);
    case WM_KEYUP:
    case WM_SYSKEYUP: key_up(source_of(detail), host_key(wparam, detail)); return false;
    case WM_CHAR:
        if (!claims_text_) character(wchar_t(wparam));
        return true;
    case WM_SYSCHAR:
    case WM_DEADCHAR:
    case WM_SYSDEADCHAR: return claims_text_;
    default: return false;
    }
}

bool Win32Keyboard::key_down(WPARAM virtual_key, LPARAM detail) {
    const uint8_t key = host_key(virtual_key, detail);
    const uint8_t modifiers = modifiers_now();
    const int source = source_of(detail);
    const bool repeat = HIWORD(detail) & KF_REPEAT;
    if (!repeat) held_[source] = key;
    // A command's key is not the machine's, not even when its Alt goes up first.
    const bool of_machine = pane_ != PaneId::debugger;
    claims_text_ = of_machine && is_claimed(key, modifiers);
    if (!repeat && !claims_text_ && of_machine)
        pressed_.press(uint64_t(source), key,
                       key == KEY_ALT && (source & EXTENDED) && layout_.has_alt_gr());
    send(Event::Kind::key_down, key, modifiers, repeat);
    // Windows has to see every key with Alt: Alt alone, up and down, leads to the menu.
    return claims_text_ && !(modifiers & MODIFIER_ALT);
}

void Win32Keyboard::key_up(int source, uint8_t key) {
    const auto held = held_.extract(source);
    pressed_.release(uint64_t(source));
    const uint8_t went_down_as = held ? held.mapped() : key;
    send(Event::Kind::key_up, went_down_as, modifiers_now(), false);
    if (went_down_as == KEY_SHIFT) release_shifts();
}

/// Windows tells only the last of two Shift keys that go up.
void Win32Keyboard::release_shifts() {
    if (held_.contains(LEFT_SHIFT) && !is_held(VK_LSHIFT)) key_up(LEFT_SHIFT, KEY_SHIFT);
    if (held_.contains(RIGHT_SHIFT) && !is_held(VK_RSHIFT)) key_up(RIGHT_SHIFT, KEY_SHIFT);
}

void Win32Keyboard::let_go() {
    release_all();
    for (const auto& [source, key] : std::exchange(held_, {})) {
        send(Event::Kind::key_up, key, 0, false);
    }
}

void Win32Keyboard::character(wchar_t unit) {
    if (IS_HIGH_SURROGATE(unit)) {
        first_half_ = unit;
        return;
    }
    std::wstring text(1, unit);
    if (IS_LOW_SURROGATE(unit)) text.insert(0, 1, std::exchange(first_half_, L'\0'));
    if (unit < L' ' || unit == L'\x7F') return;
    Event message;
    message.kind = Event::Kind::text;
    message.text = narrow(text);
    message.pane = pane_;
    context_.post(message);
}

void Win32Keyboard::send(Event::Kind kind, uint8_t key, uint8_t modifiers, bool repeat) {
    if (key == KEY_NONE) return;
    Event message;
    message.kind = kind;
    message.value = key;
    message.modifiers = modifiers;
    message.repeat = repeat;
    message.pane = pane_;
    context_.post(message);
}
