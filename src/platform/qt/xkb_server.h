#pragma once
/// The keyboard map that an X server has in force, over a connection of its own.

#include "platform/qt/layout_source.h"

#include <xcb/xcb.h>

class XkbServer final : public LayoutSource {
public:
    /// Connects to the display of the environment; nothing where that fails.
    static std::unique_ptr<XkbServer> connect();

    /// Makes the server send a held key to that connection as presses only, without the releases
    /// in between that a tapped key has too.
    static void repeat_presses_only(xcb_connection_t* connection);

    bool poll() override;
    XkbLayout layout() const override;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    bool open();
    void select_notices();
    void read_keymap();

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    XkbContextPointer context_;
    XkbKeymapPointer keymap_;
    xkb_layout_index_t group_ = 0;
    int32_t device_ = -1;
    uint8_t first_event_ = 0;
};
