#include "platform/qt/qt_canvas.h"

#include "platform/qt/qt_accessible.h"

#include <QAccessible>
#include <QPaintEvent>

#include <utility>

QtCanvas::QtCanvas(QtEvents& events) : events_(events) {
    pane(PaneId::picture).show(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
}

PaneId QtCanvas::front_id() const {
    size_t id = panes_.size() - 1;
    while (id > 0 && !panes_[id].is_shown()) --id;
    return PaneId(id);
}

QtCanvas::Readable QtCanvas::readable() const {
    if (!readable_) return {};
    const ReadableText now = readable_();
    return {QString::fromLatin1(now.text), now.cursor};
}

/// Tells screen readers what has changed since the last time.
void QtCanvas::tell_readers() {
    if (!QAccessible::isActive()) return;
    const Readable before = std::exchange(told_, readable());
    if (told_.text != before.text) {
        const auto& [place, removed, inserted] = text_change(before.text, told_.text);
        QAccessibleTextUpdateEvent event(this, int(place), removed, inserted);
        event.setCursorPosition(told_.cursor);
        QAccessible::updateAccessibility(&event);
    }
    if (told_.cursor != before.cursor) {
        QAccessibleTextCursorEvent event(this, told_.cursor);
        QAccessible::updateAccessibility(&event);
    }
}

void QtCanvas::paintEvent(QPaintEvent* event) {
    tell_readers();
    front().paint(event->rect());
}

void QtCanvas::resizeEvent(QResizeEvent*) {
    film_bar_.lay_out();
    overlay_.lay_out();
    keyboard_.lay_out();
    events_.paint(front_id());
    events_.post_once(Event::Kind::paint);
}
