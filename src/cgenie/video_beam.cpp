#include "cgenie/video_beam.h"

#include "cgenie/crtc.h"
#include "cgenie/video.h"
#include "cgenie/video_cell.h"
#include "z80/z80.h"
#include "z80/z80_watch.h"

#include <algorithm>
#include <cstring>

namespace {
// Bits of the blanking and border flags.
constexpr uint8_t VERTICAL = 1;
constexpr uint8_t HORIZONTAL = 2;

constexpr uint32_t LONGEST_LINE = 256;      ///< clocks; the column has eight bits
constexpr uint32_t RETRACE_CLOCK = 16;      ///< of the horizontal sync counter
constexpr uint32_t VERTICAL_SYNC_MASK = 15; ///< width 0 means 16 lines
constexpr int SHORTEST_FRAME = 245;         ///< lines; a sync before them presents nothing
constexpr int LAST_LINE = 379;              ///< a frame without a sync ends after it
constexpr double CENTRING_WEIGHT = 0.2;
constexpr uint32_t CHARACTER_LINES = 8; ///< of the character tables
constexpr uint32_t NO_CURSOR = VIDEO_RAM_MASK + 1;

constexpr beam_counters& state = beam_state;

constexpr state_field beam_fields[] = {
    {"time", sizeof(beam_counters::time)},
    {"lp_accu", sizeof(beam_counters::lp_accu)},
    {"beam", sizeof(beam_counters::beam)},
    {"vert_adj_average_lines", sizeof(beam_counters::vert_adj_average_lines)},
    {"video_update_line", sizeof(beam_counters::video_update_line)},
    {"matrix_address", sizeof(beam_counters::matrix_address)},
    {"matrix_latch", sizeof(beam_counters::matrix_latch)},
    {"horizontal_sync_counter", sizeof(beam_counters::horizontal_sync_counter)},
    {"vertical_sync_counter", sizeof(beam_counters::vertical_sync_counter)},
    {"odd_cycle", sizeof(beam_counters::odd_cycle)},
    {"column", sizeof(beam_counters::column)},
    {"row", sizeof(beam_counters::row)},
    {"scan_line", sizeof(beam_counters::scan_line)},
    {"adjust_counter", sizeof(beam_counters::adjust_counter)},
    {"blanking", sizeof(beam_counters::blanking)},
    {"border", sizeof(beam_counters::border)},
    {"follows", sizeof(beam_counters::follows)},
    {"unused", sizeof(beam_counters::unused)},
};

constexpr int MOST_LINES_ABOVE = (SCREEN_HEIGHT + 1) / 2;
constexpr uint8_t BOTH = VERTICAL | HORIZONTAL;

const char* fault(const beam_counters& b) {
    return first_fault(
        {{"time", is_cycle_count(b.time)},
         {"lp_accu", b.lp_accu >= SCREEN_HEIGHT - LAST_LINE - 1 && b.lp_accu <= SCREEN_HEIGHT + 1},
         {"beam", b.beam < FRAME_STORAGE && b.beam % CELL_WIDTH == 0},
         {"vert_adj_average_lines",
          b.vert_adj_average_lines >= 0 && b.vert_adj_average_lines <= MOST_LINES_ABOVE},
         {"video_update_line", b.video_update_line >= -1 && b.video_update_line <= LAST_LINE},
         {"matrix_address", b.matrix_address <= VIDEO_RAM_MASK},
         {"matrix_latch", b.matrix_latch <= VIDEO_RAM_MASK},
         {"horizontal_sync_counter", b.horizontal_sync_counter < RETRACE_CLOCK},
         {"vertical_sync_counter", b.vertical_sync_counter <= VERTICAL_SYNC_MASK},
         {"odd_cycle", b.odd_cycle <= 1},
         {"row", b.row <= 0x7F},
         {"scan_line", b.scan_line <= 0x1F},
         {"adjust_counter", b.adjust_counter <= 0x1F},
         {"blanking", b.blanking <= BOTH},
         {"border", b.border <= BOTH},
         {"follows", b.follows == 0}}); // only while the processor runs
}

constexpr uint32_t SHOWN_END = SCREEN_WIDTH * SCREEN_HEIGHT;

uint8_t* pixels_at_beam() { return frame_buffer + state.beam; }
void start_line(int line) { state.beam = uint32_t(line) * SCREEN_WIDTH; }

void fill_lines(int first, int end) {
    if (first >= end) return;
    std::memset(frame_buffer + first * SCREEN_WIDTH, BLACK_INDEX,
                size_t(end - first) * SCREEN_WIDTH);
}

void end_frame() {
    crtc_vblank();
    const int missing = SCREEN_HEIGHT - state.video_update_line;
    const int above = state.lp_accu > 1.0 ? int(state.lp_accu) / 2 : 0;
    state.vert_adj_average_lines = above;
    state.lp_accu += (missing - state.lp_accu) * CENTRING_WEIGHT;
    if (above > 0) {
        fill_lines(0, above);
        fill_lines(state.video_update_line + above, SCREEN_HEIGHT);
    }
    start_line(above);
    video_update_frame();
    state.video_update_line = -1;
}

void start_picture() {
    state.adjust_counter = 0;
    state.border &= uint8_t(~VERTICAL);
    state.matrix_latch = state.matrix_address = crtc.start_address;
}

void step_scan_line() {
    if (state.scan_line != crtc.maximum_scan_line) {
        state.scan_line = (state.scan_line + 1) & 0x1F;
        return;
    }
    state.scan_line = 0;
    state.row = (state.row + 1) & 0x7F;
    if (state.row == crtc.vertical_displayed) state.border |= VERTICAL;
    if (state.row == 0) start_picture();
}

void step_vertical_sync() {
    if (state.row == crtc.vertical_sync_position) {
        state.blanking |= VERTICAL;
        if (state.vertical_sync_counter == 0) state.vertical_sync_counter = 1;
    }
    if (state.vertical_sync_counter == 0) return;
    state.vertical_sync_counter = (state.vertical_sync_counter + 1) & VERTICAL_SYNC_MASK;
    if (state.vertical_sync_counter != crtc.sync_widths >> 4) return;
    state.blanking &= uint8_t(~VERTICAL);
    state.vertical_sync_counter = 0;
    if (state.video_update_line + 1 >= SHORTEST_FRAME) end_frame();
}

void end_scan_line() {
    step_scan_line();
    state.column = 0;
    state.border &= uint8_t(~HORIZONTAL);
    if (state.row < crtc.vertical_total) {
        state.matrix_address = state.matrix_latch;
    } else if (state.adjust_counter == crtc.vertical_total_adjust) {
        state.row = state.scan_line = 0;
        start_picture();
    } else {
        state.adjust_counter = (state.adjust_counter + 1) & 0x1F;
    }
    step_vertical_sync();
}

void retrace() {
    if (++state.video_update_line > LAST_LINE) return end_frame();
    start_line(state.video_update_line + state.vert_adj_average_lines);
}

void step_horizontal_sync() {
    if (state.column == crtc.horizontal_sync_position) {
        state.blanking |= HORIZONTAL;
        if (state.horizontal_sync_counter == 0) state.horizontal_sync_counter = 1;
        return;
    }
    if (state.horizontal_sync_counter == 0) return;
    ++state.horizontal_sync_counter;
    if (state.horizontal_sync_counter == (crtc.sync_widths & 0x0F)) {
        state.blanking &= uint8_t(~HORIZONTAL);
    } else if (state.horizontal_sync_counter == RETRACE_CLOCK) {
        state.horizontal_sync_counter = 0;
        retrace();
    }
}

/// Offset of the cell under the cursor, when it shows on this scan line.
uint32_t cursor_offset() {
    const bool shown = crtc.cursor_visible && state.scan_line >= crtc.cursor_start_line &&
                       state.scan_line <= crtc.cursor_end_line;
    return shown ? crtc.cursor_address - VIDEO_RAM_START : NO_CURSOR;
}

void draw_graphics_cells(uint32_t address, uint32_t clocks) {
    const GraphicsColours colours = graphics_colours();
    uint8_t* pixels = pixels_at_beam();
    for (; clocks > 0; --clocks, ++address, pixels += CELL_WIDTH) {
        draw_graphics(pixels, video_ram(address), colours);
    }
}

/// `pattern` (code) is the pattern of a character on this scan line.
template <typename Pattern>
inline void draw_text_cells(uint32_t address, uint32_t clocks, Pattern pattern) {
    const uint64_t background = in_every_pixel(video_graphic_background_selected);
    uint8_t* pixels = pixels_at_beam();
    for (uint32_t n = 0; n < clocks; ++n, pixels += CELL_WIDTH) {
        draw_pattern(pixels, pattern(video_ram(address + n)), colour_ram(address + n), background);
    }
    const uint32_t cursor = cursor_offset();
    const uint32_t n = (cursor - address) & VIDEO_RAM_MASK;
    if (cursor > VIDEO_RAM_MASK || n >= clocks) return;
    draw_pattern(pixels_at_beam() + n * CELL_WIDTH, pattern(video_ram(cursor)) ^ 0xFF,
                 colour_ram(cursor), background);
}

void draw_text_cells(uint32_t address, uint32_t clocks) {
    const auto& patterns = selected_patterns();
    const uint32_t y = state.scan_line;
    if (y >= CHARACTER_LINES) {
        draw_text_cells(address, clocks,
                        [&](uint32_t code) { return pattern_line(patterns, code, y); });
        return;
    }
    // All four tables end after 256 characters.
    const uint8_t* const lines[] = {patterns[0] + y, patterns[1] + y, patterns[2] + y,
                                    patterns[3] + y};
    draw_text_cells(address, clocks, [&](uint32_t code) { return lines[code >> 6][code * 8]; });
}

/// Fills cells with a word. The runs are only a few cells long, where this loop is faster than a
/// block fill.
void fill_cells(uint8_t* pixels, uint64_t word, size_t cells) {
    for (; cells > 0; --cells, pixels += CELL_WIDTH) std::memcpy(pixels, &word, sizeof word);
}

/// Puts out `clocks` cells at the beam, the first from `address`, with the flags as they are. The
/// caller sees to it that they fit into the storage.
inline void output(uint32_t address, uint32_t clocks) {
    if (state.blanking) {
        // Blanked, the beam stops where the shown area ends.
        if (state.beam >= SHOWN_END) return;
        const uint32_t shown = std::min(clocks, (SHOWN_END - state.beam) / CELL_WIDTH);
        fill_cells(pixels_at_beam(), in_every_pixel(BLACK_INDEX), shown);
        state.beam += shown * CELL_WIDTH;
        return;
    }
    if (state.border) {
        fill_cells(pixels_at_beam(), in_every_pixel(video_graphic_background_selected), clocks);
    } else if (video_mode) {
        draw_graphics_cells(address, clocks);
    } else {
        draw_text_cells(address, clocks);
    }
    state.beam += clocks * CELL_WIDTH;
}

/// Everything that a character clock does before its output.
void step_counters() {
    if (state.column == crtc.horizontal_total) {
        end_scan_line();
    } else {
        state.matrix_address = (state.matrix_address + 1) & VIDEO_RAM_MASK;
        ++state.column;
    }
    if (state.column == crtc.horizontal_displayed) {
        // The next row starts where the last line of this one ended.
        if (state.scan_line == crtc.maximum_scan_line) state.matrix_latch = state.matrix_address;
        state.border |= HORIZONTAL;
    }
    step_horizontal_sync();
}

uint32_t clocks_to_sync_step() {
    const uint32_t counter = state.horizontal_sync_counter;
    if (counter == 0) return LONGEST_LINE;
    const uint32_t width = crtc.sync_widths & 0x0F;
    return (counter < width ? width : RETRACE_CLOCK) - counter - 1;
}

/// How many of the next clocks only count and put out a cell. The clock after them is an event: it
/// may end the line, enter the border, step the sync or reach the end of the storage. Distances are
/// modulo 256 like the column; when a register lies beyond the column's range, the clock counted as
/// an event is an ordinary one.
inline uint32_t clocks_without_event() {
    const uint8_t to_end = uint8_t(crtc.horizontal_total - state.column);
    const uint8_t to_border = uint8_t(crtc.horizontal_displayed - state.column - 1);
    const uint8_t to_sync = uint8_t(crtc.horizontal_sync_position - state.column - 1);
    const uint32_t to_storage_end = uint32_t(FRAME_STORAGE - state.beam) / CELL_WIDTH - 1;
    const uint32_t to_register = std::min<uint32_t>(std::min(to_end, to_border), to_sync);
    return std::min(std::min(to_register, to_storage_end), clocks_to_sync_step());
}

/// Counts `clocks` without an event.
void count(uint32_t clocks) {
    state.matrix_address = (state.matrix_address + clocks) & VIDEO_RAM_MASK;
    state.column = uint8_t(state.column + clocks);
    if (state.horizontal_sync_counter != 0) state.horizontal_sync_counter += clocks;
}

/// One clock with an event and the run of at most `clocks` - 1 after it, put out together. Returns
/// the clocks used.
uint32_t run_event(uint32_t clocks) {
    step_counters();
    const uint32_t address = state.matrix_address;
    const uint32_t run = std::min(clocks - 1, clocks_without_event());
    count(run);
    output(address, run + 1);
    if (state.beam == FRAME_STORAGE) end_frame();
    return run + 1;
}

void run_clocks(uint32_t clocks) {
    const uint32_t quiet = std::min(clocks, clocks_without_event());
    output(state.matrix_address + 1, quiet);
    count(quiet);
    clocks -= quiet;
    while (clocks > 0) clocks -= run_event(clocks);
}

/// Runs the beam up to the processor cycle `time`.
void catch_up(int64_t time) {
    if (time == state.time) return;
    const auto half_clocks = uint32_t(time - state.time) + state.odd_cycle;
    state.time = time;
    state.odd_cycle = half_clocks % 2;
    if (crtc.horizontal_total != 0) run_clocks(half_clocks / 2); // programmed
}

/// May the byte at `address` be shown between the last catch-up and now? Each clock shows the cell
/// after the one before, or goes back to the first cell of the row or of the picture. So no cell
/// shown lies further behind one of these three than there were clocks.
bool lag_shows(uint32_t address) {
    if (address >= CHARACTER_RAM_START) return true;
    const uint32_t mask = address >= COLOUR_RAM_START ? COLOUR_RAM_MASK : VIDEO_RAM_MASK;
    const int64_t clocks = (z80_state.t_count - state.time) / 2 + 1;
    const auto reached_from = [=](uint32_t first) { return ((address - first) & mask) <= clocks; };
    return reached_from(state.matrix_address) || reached_from(state.matrix_latch) ||
           reached_from(crtc.start_address);
}

void start_following() {
    state.time = z80_state.t_count;
    state.follows = 1;
}

void stop_following() {
    catch_up(z80_state.t_count);
    state.follows = 0;
}

/// Processor and beam, instruction by instruction, until the cycles are used or `stop` answers
/// true.
template <typename Stop>
int32_t run_until(int32_t cycles, Stop stop) {
    start_following();
    do {
        cycles += (z80_watch.run ? z80_watch.run : z80_run)(0);
    } while (cycles > 0 && !z80_state.waits && !stop());
    stop_following();
    return cycles;
}
} // namespace

beam_counters beam_state = {};
const state_record beam_record = {"beam_state", &beam_state, sizeof beam_state, beam_fields,
                                  fault_of<beam_counters, fault>};

int32_t video_run_cycles(int32_t cycles) {
    const bool watched = z80_watch.run != nullptr;
    if (z80_state.breakpoint_enabled && !watched) return run_until(cycles, cpu_breakpoint_arrives);
    start_following();
    cycles = watched ? z80_watch.run(cycles) : z80_run_noting_starts(cycles);
    stop_following();
    return cycles;
}

int32_t video_step(int32_t cycles) {
    return run_until(cycles, [] { return true; });
}

void video_do_cycles(uint32_t clocks) {
    if (crtc.horizontal_total == 0) return; // not programmed yet
    run_clocks(clocks);
}

// Kept out of line, like the ports of the bus: the run loop would inline it.
[[gnu::noinline]] void video_beam_catch_up() { catch_up(z80_state.instruction_start); }

[[gnu::noinline]] void video_beam_catch_up_with(uint32_t address) {
    if (lag_shows(address)) video_beam_catch_up();
}

void video_beam_reset_centring() {
    state.vert_adj_average_lines = 0;
    state.lp_accu = 0;
}
