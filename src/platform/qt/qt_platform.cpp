#include "platform/qt/qt_platform.h"

#include "platform/qt/qt_accessible.h"
#include "platform/qt/qt_clipboard.h"
#include "platform/qt/qt_clock.h"
#include "platform/qt/qt_dialogs.h"
#include "platform/qt/qt_forms.h"
#include "platform/qt/qt_paths.h"
#include "platform/qt/qt_signals.h"
#include "platform/qt/qt_status_bar.h"
#include "platform/qt/qt_surface.h"
#include "platform/sdl/sdl_audio.h"
#include "platform/sdl/sdl_joystick.h"
#include "platform/settings_file.h"

#include <QApplication>
#include <QDebug>
#include <QElapsedTimer>
#include <QIcon>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

namespace {

/// Takes "--platform=NAME" out of the line, since Qt does not know this form of its option.
void take_platform_name(int& argc, char** argv) {
    const auto is_platform = [](const char* word) {
        const QByteArrayView text(word);
        if (!text.startsWith("-platform=") && !text.startsWith("--platform=")) return false;
        qputenv("QT_QPA_PLATFORM", text.sliced(text.indexOf('=') + 1).toByteArray());
        return true;
    };
    argc = int(std::remove_if(argv + 1, argv + argc, is_platform) - argv);
}

/// Qt's set-up that has to precede the application object.
int& prepare_qt(int& argc, char** argv) {
    take_platform_name(argc, argv);
    // X comes first in a Wayland session as well: only there can a window keep its place.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "xcb;wayland");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    QGuiApplication::setDesktopFileName("tarvelin");
    return argc;
}

/// What Qt says while it opens the display is held back until it is known whether that has worked.
struct OpeningMessages {
    std::vector<std::pair<QtMsgType, QString>> all;
    QString reason; ///< the first one about the display
};
OpeningMessages opening;

/// Ends the program with a line that says why. Qt would abort it after its last message.
[[noreturn]] void end_without_display() {
    const QString reason = opening.reason.isEmpty() ? QString() : " (" + opening.reason + ")";
    std::fprintf(stderr, "tarvelin: the display cannot be opened%s; --headless runs without one\n",
                 reason.toUtf8().constData());
    std::_Exit(EXIT_FAILURE);
}

void hold_message(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const bool of_display = QLatin1String(context.category).startsWith(QLatin1String("qt.qpa"));
    if (of_display && opening.reason.isEmpty()) opening.reason = text.simplified();
    if (type == QtFatalMsg) end_without_display();
    opening.all.emplace_back(type, text);
}

struct Application : QApplication {
    Application(int& argc, char** argv)
        : Application(argc, argv, qInstallMessageHandler(hold_message)) {}

private:
    Application(int& argc, char** argv, QtMessageHandler before) : QApplication(argc, argv) {
        qInstallMessageHandler(before);
        for (const auto& [type, text] : std::exchange(opening, {}).all) {
            if (type != QtDebugMsg) qWarning().noquote() << text;
        }
        qt_install_accessibility(); // a screen reader may ask about the very first widget
    }
};

QIcon program_icon() {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        icon.addFile(QStringLiteral(":/tarvelin-%1.png").arg(size), {size, size});
    }
    return icon;
}

} // namespace

struct QtPlatform::Services {
    Services(int& argc, char** argv) : application(prepare_qt(argc, argv), argv) {
        QApplication::setApplicationName("tarvelin");
        QApplication::setWindowIcon(program_icon());
        // The program asks questions after the window has gone.
        QApplication::setQuitOnLastWindowClosed(false);
        QCoreApplication::setQuitLockEnabled(false);
        QObject::connect(&application, &QGuiApplication::applicationStateChanged,
                         [this](Qt::ApplicationState state) {
                             const bool active = state == Qt::ApplicationActive;
                             active_.invalidate();
                             if (active) active_.start();
                             events.post(Event::Kind::activate, active);
                         });
        QObject::connect(&application, &QGuiApplication::commitDataRequest,
                         [this] { events.session_ends(); });
        window.canvas().set_room([this] {
            const Size client = window.client_size();
            return Size{client.width, std::max(client.height - status_bar.height() -
                                                   window.canvas().keyboard().docked_height(),
                                               0)};
        });
        events.set_pump_hook([this] {
            if (!keyboard.refresh()) return;
            events.post(Event::Kind::layout_changed,
                        active_.isValid() && active_.hasExpired(LAYOUT_SETTLES));
        });
    }

    Application application;
    QtEvents events;
    QtSignals signals_{events};
    QtKeyboard keyboard;
    QtInput input{events, keyboard};
    QtWindow window{events, input};
    QtSurface surface{window};
    QtStatusBar status_bar{window.canvas(), events};
    QtDialogs dialogs{window, signals_};
    QtForms forms{window, keyboard};
    SdlAudio audio;
    QtClipboard clipboard;
    QtClock clock{window};
    SdlJoysticks joysticks;
    QtPaths paths;
    SettingsFile settings{paths.config_directory() + "/settings.toml"};

private:
    /// A desktop may keep a layout for each window, and tells it right after the focus.
    static constexpr int LAYOUT_SETTLES = 500; ///< ms
    QElapsedTimer active_;                     ///< since the program got the focus
};

QtPlatform::QtPlatform(int& argc, char** argv)
    : services_(std::make_unique<Services>(argc, argv)) {}

QtPlatform::~QtPlatform() = default;

Audio& QtPlatform::audio() { return services_->audio; }
Clipboard& QtPlatform::clipboard() { return services_->clipboard; }
Clock& QtPlatform::clock() { return services_->clock; }
Dialogs& QtPlatform::dialogs() { return services_->dialogs; }
Events& QtPlatform::events() { return services_->events; }
Forms& QtPlatform::forms() { return services_->forms; }
Joysticks& QtPlatform::joysticks() { return services_->joysticks; }
HostKeyboard& QtPlatform::keyboard() { return services_->keyboard; }
Pane& QtPlatform::pane(PaneId id) {
    QtCanvas& canvas = services_->window.canvas();
    if (id == PaneId::film_bar) return canvas.film_bar();
    if (id == PaneId::overlay) return canvas.overlay();
    if (id == PaneId::debugger) return services_->window.debugger();
    if (id == PaneId::keyboard) return canvas.keyboard();
    return canvas.pane(id);
}
Paths& QtPlatform::paths() { return services_->paths; }
PictureTube& QtPlatform::picture_tube() { return services_->window.canvas().tube(); }
Settings& QtPlatform::settings() { return services_->settings; }
StatusBar& QtPlatform::status_bar() { return services_->status_bar; }
Surface& QtPlatform::surface() { return services_->surface; }
Window& QtPlatform::window() { return services_->window; }
