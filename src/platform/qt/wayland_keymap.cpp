#include "platform/qt/wayland_keymap.h"

#include <unistd.h>

#include <string_view>
#include <utility>

namespace {

/// The first version in which a seat's keyboard can be given back.
constexpr uint32_t SEAT_VERSION = 3;
/// The answers that follow from each other: the seats, what the first one has, its keyboard's map.
constexpr int ROUND_TRIPS = 3;

struct DeleteWrapper {
    void operator()(void* wrapper) const { wl_proxy_wrapper_destroy(wrapper); }
};

/// The text of a keymap file and the zero behind it; empty when it cannot be read.
std::string read_keymap(int file, uint32_t size) {
    std::string text(size, '\0');
    const ssize_t length = pread(file, text.data(), text.size(), 0);
    text.resize(length > 0 ? size_t(length) : 0);
    return text;
}

} // namespace

struct WaylandKeymap::Listeners {
    static WaylandKeymap& self(void* data) { return *static_cast<WaylandKeymap*>(data); }

    static void global(void* data, wl_registry*, uint32_t name, const char* interface,
                       uint32_t version) {
        if (std::string_view(interface) == wl_seat_interface.name)
            self(data).take_seat(name, version);
    }
    static void global_remove(void*, wl_registry*, uint32_t) {}
    static constexpr wl_registry_listener REGISTRY = {global, global_remove};

    static void capabilities(void* data, wl_seat*, uint32_t bits) {
        self(data).take_keyboard((bits & WL_SEAT_CAPABILITY_KEYBOARD) != 0);
    }
    static void name(void*, wl_seat*, const char*) {}
    static constexpr wl_seat_listener SEAT = {capabilities, name};

    static void keymap(void* data, wl_keyboard*, uint32_t format, int file, uint32_t size) {
        if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1)
            self(data).take_keymap(read_keymap(file, size));
        close(file);
    }
    static void enter(void*, wl_keyboard*, uint32_t, wl_surface*, wl_array*) {}
    static void leave(void*, wl_keyboard*, uint32_t, wl_surface*) {}
    static void key(void*, wl_keyboard*, uint32_t, uint32_t, uint32_t, uint32_t) {}
    static void modifiers(void* data, wl_keyboard*, uint32_t, uint32_t, uint32_t, uint32_t,
                          uint32_t group) {
        self(data).take_group(group);
    }
    static void repeat_info(void*, wl_keyboard*, int32_t, int32_t) {}
    static constexpr wl_keyboard_listener KEYBOARD = {keymap, enter,     leave,
                                                      key,    modifiers, repeat_info};
};

std::unique_ptr<WaylandKeymap> WaylandKeymap::connect(wl_display* display) {
    auto keymap = std::make_unique<WaylandKeymap>();
    return keymap->open(display) ? std::move(keymap) : nullptr;
}

bool WaylandKeymap::open(wl_display* display) {
    display_ = display;
    context_.reset(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    queue_.reset(wl_display_create_queue(display));
    // Objects made through the wrapper send their events to this queue from the first one on.
    const std::unique_ptr<wl_display, DeleteWrapper> wrapper(
        static_cast<wl_display*>(wl_proxy_create_wrapper(display)));
    if (!context_ || !queue_ || !wrapper) return false;
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper.get()), queue_.get());
    registry_.reset(wl_display_get_registry(wrapper.get()));
    if (!registry_) return false;
    wl_registry_add_listener(registry_.get(), &Listeners::REGISTRY, this);
    for (int i = 0; i < ROUND_TRIPS; ++i)
        if (wl_display_roundtrip_queue(display, queue_.get()) < 0) return false;
    notice_ = false;
    return true;
}

void WaylandKeymap::take_seat(uint32_t name, uint32_t version) {
    if (seat_ || version < SEAT_VERSION) return;
    seat_.reset(static_cast<wl_seat*>(
        wl_registry_bind(registry_.get(), name, &wl_seat_interface, SEAT_VERSION)));
    wl_seat_add_listener(seat_.get(), &Listeners::SEAT, this);
}

void WaylandKeymap::take_keyboard(bool present) {
    if (present == (keyboard_ != nullptr)) return;
    keyboard_.reset(present ? wl_seat_get_keyboard(seat_.get()) : nullptr);
    if (keyboard_) wl_keyboard_add_listener(keyboard_.get(), &Listeners::KEYBOARD, this);
    wl_display_flush(display_);
}

void WaylandKeymap::take_keymap(const std::string& text) {
    XkbKeymapPointer keymap(xkb_keymap_new_from_string(
        context_.get(), text.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap) return;
    keymap_ = std::move(keymap);
    notice_ = true;
}

void WaylandKeymap::take_group(uint32_t group) {
    if (std::exchange(group_, group) != group) notice_ = true;
}

bool WaylandKeymap::poll() {
    wl_display_dispatch_queue_pending(display_, queue_.get());
    return std::exchange(notice_, false);
}

XkbLayout WaylandKeymap::layout() const {
    return keymap_ ? XkbLayout::from_keymap(keymap_.get(), group_)
                   : XkbLayout::from_names(nullptr, nullptr);
}
