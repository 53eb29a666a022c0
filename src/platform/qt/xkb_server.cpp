#include "platform/qt/xkb_server.h"

#include <xkbcommon/xkbcommon-x11.h>

#include <cstdlib>
// The header has a member named like a keyword.
#ifdef __clang__
#pragma clang diagnostic ignored "-Wkeyword-macro"
#endif
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace {

using EventPointer = std::unique_ptr<xcb_generic_event_t, void (*)(void*)>;

constexpr uint16_t MAP_PARTS = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                               XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_VIRTUAL_MODS |
                               XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

} // namespace

std::unique_ptr<XkbServer> XkbServer::connect() {
    auto server = std::make_unique<XkbServer>();
    return server->open() ? std::move(server) : nullptr;
}

bool XkbServer::open() {
    connection_.reset(xcb_connect(nullptr, nullptr));
    xcb_connection_t* connection = connection_.get();
    if (xcb_connection_has_error(connection) != 0) return false;
    if (xkb_x11_setup_xkb_extension(
            connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &first_event_, nullptr) == 0)
        return false;
    context_.reset(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    device_ = xkb_x11_get_core_keyboard_device_id(connection);
    if (!context_ || device_ < 0) return false;
    select_notices();
    read_keymap();
    return keymap_ != nullptr;
}

void XkbServer::repeat_presses_only(xcb_connection_t* connection) {
    constexpr uint32_t FLAG = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const auto request =
        xcb_xkb_per_client_flags(connection, XCB_XKB_ID_USE_CORE_KBD, FLAG, FLAG, 0, 0, 0);
    xcb_discard_reply(connection, request.sequence);
    xcb_flush(connection);
}

void XkbServer::select_notices() {
    constexpr uint16_t NOTICES = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY |
                                 XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    xcb_xkb_select_events_details_t details{};
    details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.newKeyboardDetails = details.affectNewKeyboard;
    details.affectState = XCB_XKB_STATE_PART_GROUP_LOCK;
    details.stateDetails = details.affectState;
    xcb_xkb_select_events_aux(connection_.get(), xcb_xkb_device_spec_t(device_), NOTICES, 0, 0,
                              MAP_PARTS, MAP_PARTS, &details);
    xcb_flush(connection_.get());
}

void XkbServer::read_keymap() {
    XkbKeymapPointer keymap(xkb_x11_keymap_new_from_device(context_.get(), connection_.get(),
                                                           device_, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap) return;
    const XkbStatePointer state(
        xkb_x11_state_new_from_device(keymap.get(), connection_.get(), device_));
    if (!state) return;
    keymap_ = std::move(keymap);
    // A layout that is in force only while a key is held does not count.
    group_ = xkb_state_serialize_layout(state.get(), XKB_STATE_LAYOUT_LOCKED);
}

bool XkbServer::poll() {
    bool map_notice = false;
    bool group_notice = false;
    while (const EventPointer event{xcb_poll_for_event(connection_.get()), std::free}) {
        if ((event->response_type & 0x7F) != first_event_) continue;
        // All events of the extension share a code; their own kind is in the second byte.
        if (event->pad0 != XCB_XKB_STATE_NOTIFY) {
            map_notice = true;
            continue;
        }
        const auto* state = reinterpret_cast<const xcb_xkb_state_notify_event_t*>(event.get());
        group_ = state->lockedGroup;
        group_notice = true;
    }
    if (map_notice) read_keymap();
    return map_notice || group_notice;
}

XkbLayout XkbServer::layout() const { return XkbLayout::from_keymap(keymap_.get(), group_); }
