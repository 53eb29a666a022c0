#pragma once
/// The keyboard map of a Wayland compositor, told to an object of its own beside the toolkit's.
/// Both are on one connection, because the layout in force is told only to the client that has the
/// focus.

#include "platform/qt/layout_source.h"

#include <wayland-client.h>

class WaylandKeymap final : public LayoutSource {
public:
    /// Asks the compositor at the other end of the connection, which outlives the object and is
    /// read by its owner. Nothing where that fails.
    static std::unique_ptr<WaylandKeymap> connect(wl_display* display);

    bool poll() override;
    /// Without a map, as long as no keyboard is plugged in, the one that the environment names.
    XkbLayout layout() const override;

private:
    /// Frees what libwayland hands out.
    struct Release {
        void operator()(wl_event_queue* queue) const { wl_event_queue_destroy(queue); }
        void operator()(wl_registry* registry) const { wl_registry_destroy(registry); }
        void operator()(wl_seat* seat) const { wl_seat_destroy(seat); }
        void operator()(wl_keyboard* keyboard) const { wl_keyboard_release(keyboard); }
    };
    template <class Object>
    using Pointer = std::unique_ptr<Object, Release>;
    struct Listeners;

    bool open(wl_display* display);
    void take_seat(uint32_t name, uint32_t version);
    void take_keyboard(bool present);
    void take_keymap(const std::string& text);
    void take_group(uint32_t group);

    wl_display* display_ = nullptr;
    XkbContextPointer context_;
    XkbKeymapPointer keymap_; ///< null: not told
    xkb_layout_index_t group_ = 0;
    bool notice_ = false;
    Pointer<wl_event_queue> queue_; // outlives the objects whose events it holds
    Pointer<wl_registry> registry_;
    Pointer<wl_seat> seat_;
    Pointer<wl_keyboard> keyboard_;
};
