#include "platform/qt/qt_keyboard.h"

#include "platform/events.h"
#include "platform/qt/qt_wayland.h"
#include "platform/qt/wayland_keymap.h"
#include "platform/qt/xkb_server.h"

#include <QGuiApplication>
#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace {

struct NamedKey {
    int qt_key;
    uint8_t key;
};

constexpr NamedKey NAMED_KEYS[] = {{Qt::Key_Backspace, KEY_BACKSPACE},
                                   {Qt::Key_Tab, KEY_TAB},
                                   {Qt::Key_Backtab, KEY_TAB},
                                   {Qt::Key_Return, KEY_RETURN},
                                   {Qt::Key_Enter, KEY_RETURN},
                                   {Qt::Key_Shift, KEY_SHIFT},
                                   {Qt::Key_Control, KEY_CONTROL},
                                   {Qt::Key_Alt, KEY_ALT},
                                   {Qt::Key_AltGr, KEY_ALT_GR},
                                   {Qt::Key_Pause, KEY_PAUSE},
                                   {Qt::Key_Escape, KEY_ESCAPE},
                                   {Qt::Key_PageUp, KEY_PAGE_UP},
                                   {Qt::Key_PageDown, KEY_PAGE_DOWN},
                                   {Qt::Key_End, KEY_END},
                                   {Qt::Key_Home, KEY_HOME},
                                   {Qt::Key_Left, KEY_LEFT},
                                   {Qt::Key_Up, KEY_UP},
                                   {Qt::Key_Right, KEY_RIGHT},
                                   {Qt::Key_Down, KEY_DOWN},
                                   {Qt::Key_Insert, KEY_INSERT},
                                   {Qt::Key_Delete, KEY_DELETE},
                                   {Qt::Key_Menu, KEY_MENU}};

constexpr bool is_printable(int code) { return code >= 0x20 && code <= 0x7E; }
constexpr bool is_capital(int code) { return code >= 'A' && code <= 'Z'; }

/// For the platforms that deliver no scan codes.
uint8_t key_by_meaning(const QKeyEvent& event, const XkbLayout& layout) {
    const int code = event.key();
    if (event.modifiers().testFlag(Qt::KeypadModifier) && code >= Qt::Key_0 && code <= Qt::Key_9)
        return uint8_t(KEY_NUMPAD0 + (code - Qt::Key_0));
    if (is_capital(code)) return uint8_t(code);
    if (is_printable(code)) {
        const auto key = layout.key_for(char(code));
        return key ? key->key : uint8_t(KEY_NONE);
    }
    if (code >= Qt::Key_F1 && code <= Qt::Key_F12) return uint8_t(KEY_F1 + (code - Qt::Key_F1));
    for (const NamedKey& named : NAMED_KEYS)
        if (named.qt_key == code) return named.key;
    return KEY_NONE;
}

} // namespace

uint64_t key_source(const QKeyEvent& event) {
    constexpr uint64_t BY_MEANING = uint64_t(1) << 32;
    const uint32_t scan = event.nativeScanCode();
    return scan != 0 ? scan : BY_MEANING | uint32_t(event.key());
}

QtKeyboard::QtKeyboard() {
    if (wl_display* display = qt_wayland_display()) source_ = WaylandKeymap::connect(display);
    if (QGuiApplication::platformName() == "xcb") {
        source_ = XkbServer::connect();
        if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
            XkbServer::repeat_presses_only(x11->connection());
    }
    layout_ = source_ ? source_->layout() : XkbLayout::from_names(nullptr, nullptr);
}

bool QtKeyboard::control_is_held() {
    return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier) ||
           is_down(KEY_CONTROL);
}

std::optional<KeyForCharacter> QtKeyboard::key_for(char character) {
    return layout_.key_for(character);
}

bool QtKeyboard::refresh() {
    update_layout();
    return std::exchange(changed_, false);
}

void QtKeyboard::update_layout() {
    if (!source_ || !source_->poll()) return;
    const XkbLayout layout = source_->layout();
    // Another keyboard of the same layout gives notice too.
    if (layout == layout_) return;
    layout_ = layout;
    changed_ = true;
}

uint8_t QtKeyboard::virtual_key(const QKeyEvent& event) const {
    const uint8_t key = key_of(event);
    return key == KEY_ALT_GR ? uint8_t(KEY_ALT) : key;
}

uint8_t QtKeyboard::key_of(const QKeyEvent& event) const {
    const uint32_t scan = event.nativeScanCode();
    return scan != 0 ? layout_.virtual_key(scan) : key_by_meaning(event, layout_);
}

void QtKeyboard::key_event(const QKeyEvent& event, bool down) {
    // On X, Qt's own mark is missing on most repeats.
    if (event.isAutoRepeat() || (down && pressed_.is_held(key_source(event)))) return;
    if (down)
        press(event);
    else
        release(event);
}

void QtKeyboard::press(const QKeyEvent& event) {
    update_layout();
    pressed_.press(key_source(event), virtual_key(event), key_of(event) == KEY_ALT_GR);
}

/// A key goes up as the HostKey that it went down as, even if the layout has changed since.
void QtKeyboard::release(const QKeyEvent& event) {
    const bool known = pressed_.release(key_source(event));
    // Without scan codes, "!" goes up as "1" when Shift went up before it.
    if (!known && event.nativeScanCode() == 0) pressed_.release_key(virtual_key(event));
}
