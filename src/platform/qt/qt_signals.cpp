#include "platform/qt/qt_signals.h"

#include <QApplication>
#include <QWidget>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};

// A handler may do little more than write: a byte through this pipe wakes the event loop.
int pipe_ends[2] = {-1, -1};

extern "C" void note_signal(int) {
    const char note = 1;
    [[maybe_unused]] const ssize_t written = write(pipe_ends[1], &note, 1);
}

/// Closes open dialogs, without which the program cannot end. A question that is closed in this way
/// has no answer.
void cancel_dialogs() {
    QWidget* open = QApplication::activeModalWidget();
    while (open) {
        open->close();
        QWidget* const next = QApplication::activeModalWidget();
        if (next == open) return;
        open = next;
    }
}

} // namespace

QtSignals::QtSignals(QtEvents& events) {
    if (pipe2(pipe_ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
    notifier_ = std::make_unique<QSocketNotifier>(pipe_ends[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this, &events] {
        char note = 0;
        while (read(pipe_ends[0], &note, 1) > 0) {
        }
        come_ = true;
        events.post_once(Event::Kind::close);
        cancel_dialogs();
    });
    for (const int number : SIGNALS) std::signal(number, note_signal);
}

QtSignals::~QtSignals() {
    if (!notifier_) return;
    for (const int number : SIGNALS) std::signal(number, SIG_DFL);
    notifier_.reset();
    for (int& end : pipe_ends) close(std::exchange(end, -1));
}
