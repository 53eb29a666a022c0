#pragma once
/// The desktop: a window with menu and status bar, dialogs and keyboard, by Qt Widgets.

#include "platform/platform.h"

#include <memory>

class QtPlatform final : public Platform {
public:
    /// Both must outlive the platform; Qt takes its own options out of them. Where the display
    /// cannot be opened, the program ends here with exit status 1 and a line that says why.
    QtPlatform(int& argc, char** argv);
    ~QtPlatform() override;

    Audio& audio() override;
    Clipboard& clipboard() override;
    Clock& clock() override;
    Dialogs& dialogs() override;
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
