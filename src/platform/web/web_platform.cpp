#include "platform/web/web_platform.h"

#include "platform/web/web_audio.h"
#include "platform/web/web_clipboard.h"
#include "platform/web/web_clock.h"
#include "platform/web/web_dialogs.h"
#include "platform/web/web_downloads.h"
#include "platform/web/web_events.h"
#include "platform/web/web_forms.h"
#include "platform/web/web_joysticks.h"
#include "platform/web/web_keyboard.h"
#include "platform/web/web_panes.h"
#include "platform/web/web_paths.h"
#include "platform/web/web_picture_tube.h"
#include "platform/web/web_settings.h"
#include "platform/web/web_status_bar.h"
#include "platform/web/web_surface.h"
#include "platform/web/web_window.h"

struct WebPlatform::Services {
    WebContext& context = web_context();
    WebPanes& panes = web_panes();
    WebEvents events{context};
    WebStatusBar status_bar{context};
    WebWindow window{context};
    WebSurface surface{panes.pane(PaneId::picture)};
    WebDialogs dialogs;
    WebDownloads downloads;
    WebForms forms;
    WebAudio audio;
    WebClipboard clipboard;
    WebClock clock;
    WebJoysticks joysticks;
    WebPaths paths;
    WebSettings settings;
};

WebPlatform::WebPlatform() : services_(std::make_unique<Services>()) {}

WebPlatform::~WebPlatform() = default;

Audio& WebPlatform::audio() { return services_->audio; }
Clipboard& WebPlatform::clipboard() { return services_->clipboard; }
Clock& WebPlatform::clock() { return services_->clock; }
Dialogs& WebPlatform::dialogs() { return services_->dialogs; }
Downloads* WebPlatform::downloads() { return &services_->downloads; }
Events& WebPlatform::events() { return services_->events; }
Forms& WebPlatform::forms() { return services_->forms; }
Joysticks& WebPlatform::joysticks() { return services_->joysticks; }
HostKeyboard& WebPlatform::keyboard() { return web_keyboard(); }
Pane& WebPlatform::pane(PaneId id) { return services_->panes.pane(id); }
Paths& WebPlatform::paths() { return services_->paths; }
PictureTube& WebPlatform::picture_tube() { return web_picture_tube(); }
Settings& WebPlatform::settings() { return services_->settings; }
StatusBar& WebPlatform::status_bar() { return services_->status_bar; }
Surface& WebPlatform::surface() { return services_->surface; }
Window& WebPlatform::window() { return services_->window; }
