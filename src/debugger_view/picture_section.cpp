#include "cgenie/palette.h"
#include "cgenie/video.h"
#include "cgenie/video_beam.h"
#include "core/frame_driver.h"
#include "debugger/debugger.h"
#include "debugger_view/section.h"
#include "platform/pane.h"
#include "z80/z80.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int CROSS = 9; ///< pixels of the cross to each side

class PictureSection final : public DebugSection {
public:
    const char* title() const override { return "Picture"; }

    void draw(CellPainter& out, const SectionLook& look) override {
        out.leave_out({0, 0, out.columns(), out.rows() - 1});
        out.text(0, out.rows() - 1, text(), look.theme.quiet);
    }

    void draw_picture(Pane& pane, const Rectangle& cells, const SectionLook& look) override {
        const Size cell = pane.cell_size();
        const Rectangle room = {cells.left * cell.width, cells.top * cell.height,
                                cells.right * cell.width, (cells.bottom - 1) * cell.height};
        const Size size = size_in({room.width(), room.height()});
        if (size.width <= 0 || size.height <= 0) return;
        const int left = room.left + (room.width() - size.width) / 2;
        const int top = room.top + (room.height() - size.height) / 2;
        fill_around(pane, room, {left, top, left + size.width, top + size.height},
                    look.theme.text.ground);
        compose(size, look.theme.cross);
        pane.copy_bitmap(
            {size.width, size.height, 32, reinterpret_cast<const uint8_t*>(pixels.data()), nullptr},
            left, top);
    }

    std::string spoken() const override { return text(); }

private:
    /// Of the beam with the beam engine, else by the cycles of the frame.
    static Size beam() {
        if (g_bCycleBasedEngine) {
            return {int(beam_state.beam % SCREEN_WIDTH), int(beam_state.beam / SCREEN_WIDTH)};
        }
        if (!frame_state.begun) return {0, 0};
        const int64_t budget = std::max(frame_budget(), 1);
        const int64_t passed = std::clamp<int64_t>(budget - frame_state.left, 0, budget - 1);
        const int64_t pixel = passed * SCREEN_WIDTH * SCREEN_HEIGHT / budget;
        return {int(pixel % SCREEN_WIDTH), int(pixel / SCREEN_WIDTH)};
    }

    static std::string text() {
        return "line " + std::to_string(debugger_raster_line()) + ", beam at " +
               std::to_string(beam().width) + ", " + std::to_string(beam().height);
    }

    static void fill_around(Pane& pane, const Rectangle& room, const Rectangle& picture,
                            Colour colour) {
        pane.fill_rectangle({room.left, room.top, room.right, picture.top}, colour);
        pane.fill_rectangle({room.left, picture.top, picture.left, picture.bottom}, colour);
        pane.fill_rectangle({picture.right, picture.top, room.right, picture.bottom}, colour);
        pane.fill_rectangle({room.left, picture.bottom, room.right, room.bottom}, colour);
    }

    static Colour colour_at(int x, int y) {
        const int entry = frame_buffer[size_t(y) * SCREEN_WIDTH + size_t(x)];
        return Colour(video_get_palette_value(entry, 0)) << 16 |
               Colour(video_get_palette_value(entry, 1)) << 8 |
               Colour(video_get_palette_value(entry, 2));
    }

    /// As large as the room lets it be, and no larger than it is.
    static Size size_in(Size room) {
        const int width = std::min(int(SCREEN_WIDTH), room.height * SCREEN_WIDTH / SCREEN_HEIGHT);
        const int shown = std::min(width, room.width);
        return {shown, shown * SCREEN_HEIGHT / SCREEN_WIDTH};
    }

    void compose(Size size, Colour cross) {
        pixels.resize(size_t(size.width) * size_t(size.height));
        const Size at = {beam().width * size.width / SCREEN_WIDTH,
                         beam().height * size.height / SCREEN_HEIGHT};
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const bool is_cross = (x == at.width && std::abs(y - at.height) <= CROSS) ||
                                      (y == at.height && std::abs(x - at.width) <= CROSS);
                const int from_x = x * SCREEN_WIDTH / size.width;
                const int from_y = y * SCREEN_HEIGHT / size.height;
                pixels[size_t(y) * size_t(size.width) + size_t(x)] =
                    is_cross ? cross : colour_at(from_x, from_y);
            }
        }
    }

    std::vector<uint32_t> pixels;
};

} // namespace

NewSection new_picture_section() { return std::make_unique<PictureSection>(); }
