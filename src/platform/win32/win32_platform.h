#pragma once
/// The desktop of Windows, by its own interfaces.

#include "platform/platform.h"

#include <memory>

class Win32Platform final : public Platform {
public:
    Win32Platform();
    ~Win32Platform() override;

    Audio& audio() override;
    Clipboard& clipboard() override;
    Clock& clock() override;
    Dialogs& dialogs() override;
    Events& events() override;
    Films* films() override;
    Forms& forms() override;
    Joysticks& joysticks() override;
    HostKeyboard& keyboard() override;
    Pane& pane(PaneId id) override;
    Paths& paths() override;
    PictureTube& picture_tube() override;
    Settings& settings() override;
    StatusBar& status_bar() override;
    Surface& surface() override;
    Window& window() override;

private:
    struct Services;
    std::unique_ptr<Services> services_;
};
