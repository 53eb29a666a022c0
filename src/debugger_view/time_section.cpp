#include "core/frame_driver.h"
#include "debugger/debugger.h"
#include "debugger_view/section.h"
#include "debugger_view/services.h"
#include "platform/keyboard.h"
#include "time/history.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace {

constexpr std::array<int64_t, 6> MARK_SECONDS = {60, 300, 600, 1800, 3600, 6 * 3600};
constexpr int LEAST_MARK_DISTANCE = 4; ///< cells

/// The track is one cell in from each end, where clicks lead to the very first and last frame.
class TimeSection final : public DebugSection {
public:
    const char* title() const override { return "Time"; }
    const char* keys() const override {
        return "Left Right a frame  Page Up Page Down a second  Home the beginning  End the "
               "present";
    }

    void draw(CellPainter& out, const SectionLook& look) override {
        if (!history_is_kept()) {
            out.text(0, 0, "No history is kept: Options, Keep history.", look.theme.quiet);
            return;
        }
        const std::string text = this->text();
        width = std::max(out.columns() - int(text.size()) - 1, 1);
        const bool is_past = debugger_is_in_past();
        const int here = place_of(history_position());
        for (int column = 0; column < width; ++column) {
            CellStyle style = column <= here ? look.theme.front : look.theme.title;
            if (column == here) style = is_past ? look.theme.past : look.theme.counter;
            out.text(column, 0, " ", style);
        }
        draw_marks(out, look, here);
        out.text(width + 1, 0, text, is_past ? look.theme.text : look.theme.quiet);
    }

    bool key(const Event& event) override {
        const int64_t second = frames_per_second();
        switch (event.value) {
        case KEY_LEFT: return move(-1);
        case KEY_RIGHT: return move(1);
        case KEY_PAGE_UP: return move(-second);
        case KEY_PAGE_DOWN: return move(second);
        case KEY_HOME: return show(history_first());
        case KEY_END: debugger_to_present(); return true;
        default: return false;
        }
    }

    void click(int column, int /*row*/, bool /*twice*/) override {
        if (column >= width || !history_is_kept()) return;
        if (column == width - 1) return debugger_to_present();
        const int64_t all = history_last() - history_first();
        show(history_first() + all * column / std::max(width - 1, 1));
    }
    void scroll(int rows) override { move(rows); }
    std::string spoken() const override { return history_is_kept() ? text() : "no history"; }

private:
    static int64_t last_frame() { return std::max(history_last(), history_position()); }

    int place_of(int64_t frame) const {
        const int64_t all = std::max<int64_t>(last_frame() - history_first(), 1);
        return int((frame - history_first()) * (width - 1) / all);
    }

    static std::string seconds_text(int64_t frames) {
        const int64_t hundredths = frames * 100 / std::max<int64_t>(frames_per_second(), 1);
        const auto two = [](int64_t n) { return (n < 10 ? "0" : "") + std::to_string(n); };
        return std::to_string(hundredths / 6000) + ":" + two(hundredths / 100 % 60) + "." +
               two(hundredths % 100);
    }

    static std::string text() {
        const int64_t behind = last_frame() - history_position();
        return (debugger_is_in_past() ? "-" + seconds_text(behind) + " of " : "present, ") +
               seconds_text(last_frame() - history_first()) + ", frame " +
               std::to_string(history_position());
    }

    /// One for each minute before the present, or for more where they would be too close.
    void draw_marks(CellPainter& out, const SectionLook& look, int here) const {
        const int64_t all = std::max<int64_t>(last_frame() - history_first(), 1);
        for (const int64_t seconds : MARK_SECONDS) {
            const int64_t step = seconds * frames_per_second();
            if (step * width / all < LEAST_MARK_DISTANCE) continue;
            for (int64_t at = last_frame() - step; at > history_first(); at -= step) {
                const int column = place_of(at);
                if (column == here) continue;
                out.text(column, 0, "|", column < here ? look.theme.front : look.theme.title);
            }
            return;
        }
    }

    static bool move(int64_t frames) { return show(history_position() + frames); }
    static bool show(int64_t frame) {
        if (!history_is_kept()) return false;
        if (frame >= history_last()) {
            debugger_to_present();
        } else {
            debugger_to_frame(std::max(frame, history_first()));
        }
        return true;
    }

    int width = 1;
};

} // namespace

NewSection new_time_section() { return std::make_unique<TimeSection>(); }
