#include "debugger/raster.h"

#include "cgenie/crtc.h"
#include "cgenie/video_beam.h"
#include "core/frame_driver.h"
#include "z80/z80.h"

#include <algorithm>

namespace {

constexpr int64_t CYCLES_PER_CLOCK = 2; ///< of the controller's characters
constexpr int64_t SYNC_TO_LINE = 15;    ///< clocks from the horizontal sync to the next line

/// The cycle at which the line engine's frame began, without what the last one overshot.
int64_t frame_begin() {
    if (!frame_state.begun) return z80_state.t_count + leftover;
    return z80_state.t_count + frame_state.left - frame_budget();
}

int64_t cycles_per_line() { return std::max<int64_t>(int64_t(z80_state.cycles_per_line), 1); }

/// The last time before `end` that the line engine's line began.
int64_t last_begin(int line, int64_t end) {
    const int64_t budget = std::max<int64_t>(frame_budget(), 1);
    const int64_t first = frame_begin() + line * cycles_per_line();
    const int64_t frames = (end - 1 - first) / budget - ((end - 1 - first) % budget < 0 ? 1 : 0);
    return first + frames * budget;
}

/// Clocks of the controller in a line.
int64_t clocks_of_line() { return int64_t(crtc.horizontal_total) + 1; }

/// Clocks up to the next line of the beam, or to where the picture may end, whichever is first.
int64_t clocks_to_next_line() {
    const int64_t to_end = clocks_of_line() - beam_state.column;
    if (beam_state.horizontal_sync_counter) {
        return std::min(to_end, SYNC_TO_LINE + 1 - int64_t(beam_state.horizontal_sync_counter));
    }
    const int64_t to_sync = int64_t(crtc.horizontal_sync_position) - beam_state.column;
    return to_sync > 0 ? std::min(to_end, to_sync + SYNC_TO_LINE) : to_end;
}

/// Far from the line, half of the way: meanwhile a program may make the lines shorter.
int64_t beam_line_comes(int line) {
    constexpr int NEAR = 2;
    constexpr int SHORTEST_PICTURE = 245; // lines
    const int beam_line = beam_state.video_update_line;
    const int ahead = (line > beam_line ? line : SHORTEST_PICTURE) - beam_line;
    const int64_t clocks = ahead > NEAR ? ahead / 2 * clocks_of_line() : clocks_to_next_line();
    return z80_state.t_count +
           std::max<int64_t>(clocks * CYCLES_PER_CLOCK - beam_state.odd_cycle, 1);
}

} // namespace

int raster_line() {
    if (g_bCycleBasedEngine) return std::max(beam_state.video_update_line, 0);
    return int((z80_state.t_count - frame_begin()) / cycles_per_line());
}

int64_t raster_line_comes(int line) {
    if (g_bCycleBasedEngine) return beam_line_comes(line);
    const int64_t now = z80_state.t_count;
    return last_begin(line, now + std::max<int64_t>(frame_budget(), 1) + 1);
}

bool raster_line_began(int line, int64_t since, int line_then) {
    if (g_bCycleBasedEngine) return raster_line() == line && line_then != line;
    return last_begin(line, z80_state.t_count + 1) > since;
}
