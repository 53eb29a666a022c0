#include "cgenie/video.h"

#include "cgenie/crtc.h"
#include "cgenie/firmware_images.h"
#include "cgenie/memory/memory.h"
#include "cgenie/palette.h"
#include "cgenie/video_beam.h"
#include "cgenie/video_cell.h"
#include "wall/machine_host.h"

#include <algorithm>
#include <cstring>
#include <iterator>

uint8_t frame_buffer[FRAME_STORAGE];
video_circuit video_state = {};

namespace {
// Port FF.
constexpr uint8_t GRAPHICS_MODE = 0x20;
constexpr uint8_t CHARSET_SELECT = 0x18;
constexpr uint8_t BACKGROUND_ON = 0x04;
constexpr uint8_t BACKGROUND_COLOURS[4] = {10, 13, 6, 7}; ///< by bits 7 and 6

/// The shown lines and the one below them.
constexpr size_t FRAME_READ = size_t(SCREEN_WIDTH) * (SCREEN_HEIGHT + 1);

constexpr state_field frame_buffer_fields[] = {{"pixels", FRAME_READ}};
constexpr state_field video_fields[] = {
    {"mode", sizeof(video_circuit::mode)},
    {"charset_selected", sizeof(video_circuit::charset_selected)},
    {"graphic_background_selected", sizeof(video_circuit::graphic_background_selected)},
    {"hires_palette", sizeof(video_circuit::hires_palette)},
    {"unused", sizeof(video_circuit::unused)},
    {"charset", sizeof(video_circuit::charset)},
};

const char* fault(const video_circuit& video) {
    const auto is_colour = [](uint8_t index) { return index <= BLACK_INDEX; };
    return first_fault(
        {{"mode", (video.mode & ~GRAPHICS_MODE) == 0},
         {"charset_selected", (video.charset_selected & ~CHARSET_SELECT) == 0},
         {"graphic_background_selected", is_colour(video.graphic_background_selected)},
         {"hires_palette", std::ranges::all_of(video.hires_palette, is_colour)}});
}

constexpr uint32_t CUSTOM_CHARSET = 3;
constexpr uint32_t WIDEST_ROW = SCREEN_WIDTH / CELL_WIDTH + 1; ///< cells, two of them cut in half

/// The cells of a row that show in the frame. A row wider than the frame is centred as well: it
/// loses as many cells on the left as on the right, and half a cell on each side when its width is
/// odd.
struct VisibleCells {
    uint32_t first, end; ///< columns
    int skip;            ///< pixels of the first cell that do not show
    int left, width;     ///< in the frame
};

VisibleCells visible_cells() {
    const int columns = int(crtc.horizontal_displayed);
    const int left = (SCREEN_WIDTH - int(CELL_WIDTH) * columns) / 2;
    if (left >= 0) return {0, uint32_t(columns), 0, left, SCREEN_WIDTH - 2 * left};
    const uint32_t hidden = uint32_t(-left);
    return {hidden / CELL_WIDTH, uint32_t(columns) - hidden / CELL_WIDTH, int(hidden % CELL_WIDTH),
            0, SCREEN_WIDTH};
}

/// One character of a row, ready for all its lines.
struct TextCell {
    uint8_t patterns[32];
    uint8_t colour;
};

void fetch_row(const VisibleCells& cells, uint32_t row, TextCell* cell) {
    const auto& patterns = selected_patterns();
    const uint32_t first = row * crtc.horizontal_displayed;
    for (uint32_t column = cells.first; column < cells.end; ++column, ++cell) {
        const uint32_t position = first + column;
        const uint32_t code = video_ram(position + crtc.start_address);
        std::memcpy(cell->patterns, patterns[code >> 6] + code * 8, 8);
        for (uint32_t y = 8; y <= crtc.maximum_scan_line; ++y) {
            cell->patterns[y] = pattern_line(patterns, code, y);
        }
        // The colour RAM is indexed by the place on the screen; the start address does not count.
        cell->colour = colour_ram(position);
    }
}

/// Inverts the lines of the cell under the cursor, if it is in this row.
void invert_cursor(const VisibleCells& cells, uint32_t row, TextCell* cell) {
    if (!crtc.cursor_visible) return;
    const uint32_t column = video_get_cursor() - row * crtc.horizontal_displayed;
    if (column < cells.first || column >= cells.end) return;
    const uint32_t last = std::min(crtc.cursor_end_line, crtc.maximum_scan_line);
    for (uint32_t y = crtc.cursor_start_line; y <= last; ++y) {
        cell[column - cells.first].patterns[y] ^= 0xFF;
    }
}

void show_line(const VisibleCells& cells, const uint8_t* pixels, uint32_t line) {
    if (line >= SCREEN_HEIGHT) return;
    std::memcpy(frame_buffer + line * SCREEN_WIDTH + cells.left, pixels + cells.skip,
                size_t(cells.width));
}

void render_text(const VisibleCells& cells) {
    TextCell row_cells[WIDEST_ROW];
    uint8_t pixels[WIDEST_ROW * CELL_WIDTH];
    const uint64_t background = in_every_pixel(video_graphic_background_selected);
    const uint32_t row_lines = crtc.maximum_scan_line + 1;
    const uint32_t bottom = crtc.top_border + crtc.displayed_scan_lines;
    uint32_t line = crtc.top_border;
    for (uint32_t row = 0; line < bottom && line < SCREEN_HEIGHT; ++row) {
        fetch_row(cells, row, row_cells);
        invert_cursor(cells, row, row_cells);
        for (uint32_t y = 0; y < row_lines; ++y, ++line) {
            const TextCell* cell = row_cells;
            const uint8_t* end = pixels + (cells.end - cells.first) * CELL_WIDTH;
            for (uint8_t* target = pixels; target < end; target += CELL_WIDTH, ++cell) {
                draw_pattern(target, cell->patterns[y], cell->colour, background);
            }
            show_line(cells, pixels, line);
        }
    }
}

/// Every row of graphics bytes fills two lines of the frame, whatever the row's height.
void render_graphics(const VisibleCells& cells) {
    uint8_t pixels[WIDEST_ROW * CELL_WIDTH];
    const GraphicsColours colours = graphics_colours();
    const uint32_t row_lines = crtc.maximum_scan_line + 1;
    for (uint32_t row = 0; row * row_lines < crtc.displayed_scan_lines; ++row) {
        const uint32_t line = crtc.top_border + 2 * row;
        if (line >= SCREEN_HEIGHT) return;
        const uint32_t start = crtc.start_address + row * crtc.horizontal_displayed;
        uint8_t* target = pixels;
        for (uint32_t x = cells.first; x < cells.end; ++x, target += CELL_WIDTH) {
            draw_graphics(target, video_ram(start + x), colours);
        }
        show_line(cells, pixels, line);
        show_line(cells, pixels, line + 1);
    }
}

void copy_charset(FirmwareImage image) {
    const auto bytes = firmware_bytes(image);
    std::copy_n(bytes.begin(), std::min(bytes.size(), std::size(current_charset)), current_charset);
}
} // namespace

const state_record frame_buffer_record = {"frame_buffer", frame_buffer, FRAME_READ,
                                          frame_buffer_fields};
const state_record video_record = {"video_state", &video_state, sizeof video_state, video_fields,
                                   fault_of<video_circuit, fault>};

int video_screenx() { return SCREEN_WIDTH; }
int video_screeny() { return SCREEN_HEIGHT; }

void video_init(uint32_t palette) {
    calculate_palette(palette);
    video_reset();
}

void video_reset() {
    video_beam_reset_centring();
    std::fill(std::begin(frame_buffer), std::end(frame_buffer), uint8_t(BLACK_INDEX));
}

void video_set_charset(uint32_t index) {
    constexpr FirmwareImage images[] = {FirmwareImage::charset_original,
                                        FirmwareImage::charset_german,
                                        FirmwareImage::charset_emulator};
    std::fill(std::begin(current_charset), std::end(current_charset), uint8_t(0));
    if (index < std::size(images)) return copy_charset(images[index]);
    if (index != CUSTOM_CHARSET) return;
    const int found = machine_host.read_rom(ROM_CHARACTERS, current_charset, CHARSET_SIZE);
    if (found == ROM_NOT_NAMED) copy_charset(FirmwareImage::charset_original);
}

void video_charset_select(uint8_t value) { video_charset_selected = value & CHARSET_SELECT; }

void video_mode_select(uint8_t value) { video_mode = value & GRAPHICS_MODE; }

void video_graphic_background(uint8_t value) {
    video_graphic_background_selected =
        value & BACKGROUND_ON ? BACKGROUND_COLOURS[value >> 6] : uint8_t(BLACK_INDEX);
    hires_palette[0] = video_graphic_background_selected;
}

uint8_t video_character_pattern(uint8_t code, uint32_t y) {
    return pattern_line(selected_patterns(), code, y);
}

void video_render_frame() {
    std::memset(frame_buffer, video_graphic_background_selected, FRAME_READ);
    const VisibleCells cells = visible_cells();
    if (video_mode != 0) return render_graphics(cells);
    render_text(cells);
}

void video_render_1bit(uint8_t*, int, int) { video_render_frame(); }

void video_draw_interlaced(uint8_t*, int) {}

int video_get_windowx(int giant) { return giant ? 2 * SCREEN_WIDTH : SCREEN_WIDTH; }
int video_get_windowy(int giant) { return giant ? 2 * SCREEN_HEIGHT : SCREEN_HEIGHT; }
int video_get_rows() { return int(crtc.vertical_displayed); }
int video_get_columns() { return int(crtc.horizontal_displayed); }

const uint8_t* video_get_screen_ram() {
    return memory + VIDEO_RAM_START + (crtc.start_address & VIDEO_RAM_MASK);
}

uint32_t video_get_cursor() { return crtc.cursor_address - crtc.start_address - VIDEO_RAM_START; }

void video_update_frame() { update_screen(1); }
