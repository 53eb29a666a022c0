#include <genie/graphics.h>

static int16_t centre_x, centre_y;
static uint8_t circle_colour;

static void plot(int16_t x, int16_t y) {
    if (x >= 0 && x < GRAPHICS_WIDTH && y >= 0 && y < 255) graphics_plot(x, y, circle_colour);
}

static void plot_four(uint8_t x, uint8_t y) {
    plot(centre_x + x, centre_y + y);
    plot(centre_x - x, centre_y + y);
    plot(centre_x + x, centre_y - y);
    plot(centre_x - x, centre_y - y);
}

/* An eighth from the right on, and its mirror images. */
void graphics_circle(uint8_t x, uint8_t y, uint8_t radius, uint8_t colour) {
    uint8_t across = radius, down = 0;
    int16_t error = 1 - (int16_t)radius;
    centre_x = x;
    centre_y = y;
    circle_colour = colour;
    while (down <= across) {
        plot_four(across, down);
        plot_four(down, across);
        ++down;
        if (error >= 0) error -= 2 * (int16_t)--across;
        error += 2 * (int16_t)down + 1;
    }
}
