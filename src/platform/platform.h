#pragma once
/// The host behind a thin layer: each service is an interface of its own, and the platform is the
/// set of them. One implementation is installed at program start, before anything else runs.

#include "platform/audio.h"
#include "platform/clipboard.h"
#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/downloads.h"
#include "platform/events.h"
#include "platform/films.h"
#include "platform/forms.h"
#include "platform/joystick.h"
#include "platform/keyboard.h"
#include "platform/pane.h"
#include "platform/paths.h"
#include "platform/picture_tube.h"
#include "platform/settings.h"
#include "platform/status_bar.h"
#include "platform/surface.h"
#include "platform/window.h"

struct Platform {
    virtual ~Platform() = default;
    virtual Audio& audio() = 0;
    virtual Clipboard& clipboard() = 0;
    virtual Clock& clock() = 0;
    virtual Dialogs& dialogs() = 0;
    /// Null on a host whose files the user has anyway.
    virtual Downloads* downloads() { return nullptr; }
    virtual Events& events() = 0;
    /// Null on a host without a library for films.
    virtual Films* films() { return nullptr; }
    virtual Forms& forms() = 0;
    virtual Joysticks& joysticks() = 0;
    virtual HostKeyboard& keyboard() = 0;
    virtual Pane& pane(PaneId id) = 0;
    virtual Paths& paths() = 0;
    virtual PictureTube& picture_tube() = 0;
    virtual Settings& settings() = 0;
    virtual StatusBar& status_bar() = 0;
    virtual Surface& surface() = 0;
    virtual Window& window() = 0;
};

/// The installed platform; calling it before install_platform is a programming error.
Platform& platform();
/// Installs the platform. The object must outlive every use.
void install_platform(Platform& implementation);
