#include "platform/qt/qt_form_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>

void QtFormWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    on_close_button();
}

void QtKeyCatcher::start() { qApp->installEventFilter(this); }

void QtKeyCatcher::stop() { qApp->removeEventFilter(this); }

bool QtKeyCatcher::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride: event->accept(); return true;
    case QEvent::KeyPress:
        if (static_cast<QKeyEvent*>(event)->isAutoRepeat()) return true;
        end(keyboard_.virtual_key(*static_cast<QKeyEvent*>(event)));
        return true;
    case QEvent::MouseButtonPress: end(KEY_NONE); return false;
    case QEvent::WindowDeactivate:
        if (watched == &window_) end(KEY_NONE);
        return false;
    default: return false;
    }
}
