#pragma once
#include "platform/qt/qt_events.h"

#include <QSocketNotifier>

#include <memory>

/// An interrupt, termination or hang-up signal cancels an open dialog and closes the window as its
/// user would, so that settings and disks are kept.
class QtSignals {
public:
    explicit QtSignals(QtEvents& events);
    ~QtSignals();
    QtSignals(const QtSignals&) = delete;
    QtSignals& operator=(const QtSignals&) = delete;

    /// Whether a signal has come: messages need not be shown any more.
    bool ending() const { return come_; }

private:
    bool come_ = false;
    std::unique_ptr<QSocketNotifier> notifier_;
};
