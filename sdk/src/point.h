#pragma once
/* What all that draws points shares. */

#include <genie/graphics.h>

/* The byte of a point in the page that is drawn. */
uint8_t* point_byte(uint8_t x, uint8_t y);
/* The bits of a point in its byte. */
uint8_t point_mask(uint8_t x);
/* Four points of a colour. */
uint8_t point_pattern(uint8_t colour);
/* So many bytes of a pattern in each of so many rows, both at least 1. */
void point_fill(uint8_t* at, uint8_t pattern, uint8_t bytes, uint8_t rows);
