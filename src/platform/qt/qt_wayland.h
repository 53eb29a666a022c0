#pragma once

struct wl_display;

/// The program's connection to its Wayland compositor; null on other platforms. The program's
/// QGuiApplication must exist.
wl_display* qt_wayland_display();
