#include "platform/win32/win32_platform.h"

#include "platform/win32/win32_audio.h"
#include "platform/win32/win32_clipboard.h"
#include "platform/win32/win32_clock.h"
#include "platform/win32/win32_dialogs.h"
#include "platform/win32/win32_events.h"
#include "platform/win32/win32_films.h"
#include "platform/win32/win32_forms.h"
#include "platform/win32/win32_joysticks.h"
#include "platform/win32/win32_keyboard.h"
#include "platform/win32/win32_panes.h"
#include "platform/win32/win32_paths.h"
#include "platform/win32/win32_picture_tube.h"
#include "platform/win32/win32_settings.h"
#include "platform/win32/win32_status_bar.h"
#include "platform/win32/win32_surface.h"
#include "platform/win32/win32_window.h"

#include <commctrl.h>
#include <objbase.h>

namespace {

/// The file dialogs and the shell's services need a thread with an apartment of its own.
struct Apartment {
    Apartment() : result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~Apartment() {
        if (SUCCEEDED(result)) CoUninitialize();
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    const HRESULT result;
};

Win32Context make_context() {
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_WIN95_CLASSES | ICC_LINK_CLASS};
    InitCommonControlsEx(&controls);
    Win32Context context;
    context.instance = GetModuleHandleW(nullptr);
    context.ratio = double(GetDpiForSystem()) / USER_DEFAULT_SCREEN_DPI;
    return context;
}

} // namespace

struct Win32Platform::Services {
    Apartment apartment;
    Win32Context context = make_context();
    Win32Events events{context};
    Win32Keyboard keyboard{context};
    Win32Panes panes{context};
    Win32StatusBar status_bar{context};
    Win32Window window{context, panes, status_bar, keyboard};
    Win32Surface surface{context, panes};
    Win32Dialogs dialogs{context};
    Win32Forms forms{context, keyboard};
    Win32Audio audio{context};
    Win32Films films{context};
    Win32Clipboard clipboard{context};
    Win32Clock clock{context};
    Win32Joysticks joysticks{context};
    Win32PictureTube picture_tube;
    Win32Paths paths;
    Win32Settings settings;
};

Win32Platform::Win32Platform() : services_(std::make_unique<Services>()) {}

Win32Platform::~Win32Platform() = default;

Audio& Win32Platform::audio() { return services_->audio; }
Clipboard& Win32Platform::clipboard() { return services_->clipboard; }
Clock& Win32Platform::clock() { return services_->clock; }
Dialogs& Win32Platform::dialogs() { return services_->dialogs; }
Events& Win32Platform::events() { return services_->events; }
Films* Win32Platform::films() { return &services_->films; }
Forms& Win32Platform::forms() { return services_->forms; }
Joysticks& Win32Platform::joysticks() { return services_->joysticks; }
HostKeyboard& Win32Platform::keyboard() { return services_->keyboard; }
Pane& Win32Platform::pane(PaneId id) { return services_->panes.pane(id); }
Paths& Win32Platform::paths() { return services_->paths; }
PictureTube& Win32Platform::picture_tube() { return services_->picture_tube; }
Settings& Win32Platform::settings() { return services_->settings; }
StatusBar& Win32Platform::status_bar() { return services_->status_bar; }
Surface& Win32Platform::surface() { return services_->surface; }
Window& Win32Platform::window() { return services_->window; }
