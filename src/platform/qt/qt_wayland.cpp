#include "platform/qt/qt_wayland.h"

#include <QGuiApplication>

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)

wl_display* qt_wayland_display() {
#if QT_CONFIG(wayland)
    const auto* wayland = qGuiApp->nativeInterface<QNativeInterface::QWaylandApplication>();
    if (wayland) return wayland->display();
#endif
    return nullptr;
}

#else // the public interface is not there yet

#include <qpa/qplatformnativeinterface.h>

wl_display* qt_wayland_display() {
    if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) return nullptr;
    return static_cast<wl_display*>(
        QGuiApplication::platformNativeInterface()->nativeResourceForIntegration("wl_display"));
}

#endif
