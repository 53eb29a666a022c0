#pragma once
#include "platform/geometry.h"
#include "platform/qt/qt_events.h"
#include "platform/qt/qt_film_bar.h"
#include "platform/qt/qt_keyboard_window.h"
#include "platform/qt/qt_overlay.h"
#include "platform/qt/qt_pane.h"
#include "platform/qt/qt_tube.h"
#include "platform/window.h"

#include <QWidget>

#include <array>
#include <functional>
#include <string>
#include <utility>

/// The client area. Shows the foremost of the panes that fill it, and film bar and
/// overlay over it.
class QtCanvas final : public QWidget {
public:
    explicit QtCanvas(QtEvents& events);

    /// Of those that fill the client area.
    QtPane& pane(PaneId id) { return panes_[size_t(id)]; }
    QtFilmBar& film_bar() { return film_bar_; }
    QtOverlay& overlay() { return overlay_; }
    QtTube& tube() { return tube_; }
    QtKeyboardPane& keyboard() { return keyboard_; }
    PaneId front_id() const;
    QtPane& front() { return pane(front_id()); }
    const CellFont& font() const { return font_; }
    /// The panes' size.
    Size room() const { return room_(); }
    void set_room(std::function<Size()> room) { room_ = std::move(room); }

    /// The text behind the picture, for screen readers.
    struct Readable {
        QString text;
        int cursor = ReadableText::NO_CURSOR;
    };
    void set_readable(std::function<ReadableText()> text) { readable_ = std::move(text); }
    Readable readable() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void tell_readers();

    QtEvents& events_;
    CellFont font_;
    QtTube tube_;
    std::array<QtPane, 2> panes_{QtPane(*this), QtPane(*this)};
    std::function<Size()> room_;
    QtFilmBar film_bar_{*this, events_};
    QtOverlay overlay_{*this, events_};
    QtKeyboardPane keyboard_{*this, events_};
    std::function<ReadableText()> readable_; ///< null: there is none
    Readable told_;                          ///< to screen readers
};
