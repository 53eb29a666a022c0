#pragma once
#include "platform/qt/qt_keyboard.h"

#include <QDialog>

#include <cstdint>
#include <functional>

/// The window of a form. What closes it is decided by the form.
class QtFormWindow final : public QDialog {
public:
    using QDialog::QDialog;
    std::function<void()> on_escape, on_close_button;

    void reject() override { on_escape(); }

protected:
    void closeEvent(QCloseEvent* event) override;
};

/// Takes the next key of a window away from whatever has the focus in it.
class QtKeyCatcher final : public QObject {
public:
    QtKeyCatcher(QWidget& window, const QtKeyboard& keyboard)
        : window_(window), keyboard_(keyboard) {}
    void start();
    void stop();
    bool eventFilter(QObject* watched, QEvent* event) override;

    std::function<void(uint8_t key)> on_key;

private:
    void end(uint8_t key) {
        stop();
        on_key(key);
    }
    QWidget& window_;
    const QtKeyboard& keyboard_;
};
