#include "host/command_table_window.h"

#include "host/display.h"
#include "host/main_window.h"
#include "host/menu.h"

#include <algorithm>

namespace {

constexpr uint32_t LARGEST_SIZE = 1 << 14;

uint32_t possible_size(uint32_t pixels) { return std::min(pixels, LARGEST_SIZE); }

template <WindowScale SCALE>
CommandRow scale_row(int id, const char* label, const char* tip) {
    return {.id = id,
            .label = label,
            .tip = tip,
            .run = [] { choose_window_scale(SCALE); },
            .marked = [] { return shell_state.window_scale == uint32_t(SCALE); }};
}

Setting size_setting(const char* name, uint32_t* pixels) {
    return {.name = name,
            .place = pixels,
            .initial = 0,
            .read = StartStep::engine,
            .possible = possible_size};
}

} // namespace

std::span<const CommandRow> window_command_rows() {
    static const CommandRow rows[] = {
        {.id = COMMAND_FIXED_WINDOW,
         .label = "Fi&xed window",
         .tip = "The window has the size of the picture, pixel for pixel.",
         .flag = &shell_state.fixed_window,
         .run = fixed_window_switched,
         .setting = {.name = "FixedWindow", .initial = 0, .read = StartStep::engine}},
        {.setting = {.name = "WindowScale",
                     .place = &shell_state.window_scale,
                     .initial = 0,
                     .read = StartStep::engine,
                     .possible = [](uint32_t n) { return std::min(n, 1u); }}},
        {.id = COMMAND_SCALE_SMOOTH,
         .label = "&Smooth",
         .tip = "Colours flow into each other; else pixels have sharp edges.",
         .flag = &shell_state.window_smooth,
         .run = show_canvas,
         .setting = {.name = "WindowSmooth", .initial = 0, .read = StartStep::engine}},
        {.setting = size_setting("WindowWidth", &shell_state.window_width)},
        {.setting = size_setting("WindowHeight", &shell_state.window_height)},
        {.setting = {.name = "WindowMaximized",
                     .place = NumberAccess{[] { return uint32_t(remembers_maximized()); },
                                           [](uint32_t on) { open_maximized(on != 0); }},
                     .initial = 0,
                     .read = StartStep::engine}},
        scale_row<WindowScale::fill>(COMMAND_SCALE_FILL, "&Fill the window",
                                     "The picture is as large as the window lets it be."),
        scale_row<WindowScale::whole>(COMMAND_SCALE_WHOLE, "&Whole multiples only",
                                      "The picture has exactly two, three or more times its size."),
    };
    return rows;
}
