#pragma once
/* The graphics screen: 160 points in a row, 96 rows or 102, four colours: 0, the background, to 3.
   What is drawn outside of it is left out. */

#include <genie/machine.h>

#define GRAPHICS_WIDTH 160

/* 96 where the text has 24 rows, 102 where it has 25. */
uint8_t graphics_height(void);
/* Shows the graphics screen with the page at GRAPHICS_MEMORY; screen_show goes back. */
void graphics_show(void);

/* Pictures that move are drawn into one page while another one is shown. Another page is an array
   of GRAPHICS_BYTES of the program's own that lies below 8000. */
#define GRAPHICS_BYTES (40 * 102)
/* Everything is drawn into this page from now on; GRAPHICS_MEMORY at first. */
void graphics_draw_into(uint8_t* page);
/* Shows this page from the next frame on, behind graphics_show. */
void graphics_show_page(const uint8_t* page);

/* Fills all of it with a colour. */
void graphics_clear(uint8_t colour);
void graphics_plot(uint8_t x, uint8_t y, uint8_t colour);
/* The colour of a point, 0 outside. */
uint8_t graphics_point(uint8_t x, uint8_t y);
/* A line with an end outside is left out as a whole. */
void graphics_line(uint8_t x0, uint8_t y0, uint8_t x1, uint8_t y1, uint8_t colour);
/* A filled rectangle. */
void graphics_box(uint8_t x, uint8_t y, uint8_t width, uint8_t height, uint8_t colour);
void graphics_circle(uint8_t x, uint8_t y, uint8_t radius, uint8_t colour);
/* Copies a picture of `columns` bytes a row, four points each, to the byte column 0 to 39. It must
   fit on the screen. */
void graphics_copy(uint8_t column, uint8_t y, uint8_t columns, uint8_t rows, const uint8_t* bytes);
