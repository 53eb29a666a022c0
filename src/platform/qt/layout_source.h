#pragma once
#include "platform/qt/xkb_layout.h"

/// The X server or Wayland compositor, which decides about the keyboard layout and tells its
/// clients.
class LayoutSource {
public:
    virtual ~LayoutSource() = default;

    /// Takes the notices that have come, without waiting. True when there was one about the map or
    /// the layout in force, which then may be another one.
    virtual bool poll() = 0;
    /// The layout in force, as of the last poll.
    virtual XkbLayout layout() const = 0;
};
