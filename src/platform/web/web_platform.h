#pragma once
/// A browser's page.

#include "platform/platform.h"

#include <memory>

class WebPlatform final : public Platform {
public:
    WebPlatform();
    ~WebPlatform() override;

    Audio& audio() override;
    Clipboard& clipboard() override;
    Clock& clock() override;
    Dialogs& dialogs() override;
    Downloads* downloads() override;
    Events& events() override;
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
