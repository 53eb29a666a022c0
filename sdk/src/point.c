#include "point.h"

static uint8_t *drawn = (uint8_t *)GRAPHICS_MEMORY;

void graphics_draw_into(uint8_t *page) { drawn = page; }

/* x in A, y in L: drawn + 40 y + x / 4. */
uint8_t *point_byte(uint8_t x, uint8_t y) __naked {
    x, y;
    __asm
	ld	h,#0
	add	hl,hl
	add	hl,hl
	add	hl,hl
	ld	d,h
	ld	e,l
	add	hl,hl
	add	hl,hl
	add	hl,de
	rrca
	rrca
	and	a,#0x3F
	ld	e,a
	ld	d,#0
	add	hl,de
	ld	de,(_drawn)
	add	hl,de
	ex	de,hl
	ret
    __endasm;
}

/* HL at; pattern, bytes and rows are behind the return address. */
void point_fill(uint8_t *at, uint8_t pattern, uint8_t bytes, uint8_t rows) __naked {
    at, pattern, bytes, rows;
    __asm
	pop	iy
	pop	de
	dec	sp
	pop	af
	ld	b,a		; rows
	ld	c,d		; bytes
	ld	a,e		; pattern
fill_row:
	push	bc
	push	hl
	ld	(hl),a
	dec	c
	jr	Z,filled
	ld	e,l
	ld	d,h
	inc	de
	ld	b,#0
	ldir
filled:	pop	hl
	ld	bc,#40
	add	hl,bc
	pop	bc
	djnz	fill_row
	jp	(iy)
    __endasm;
}

void graphics_clear(uint8_t colour) {
    point_fill(drawn, point_pattern(colour), GRAPHICS_WIDTH / 4, graphics_height());
}

uint8_t point_mask(uint8_t x) {
    static const uint8_t masks[] = {0xC0, 0x30, 0x0C, 0x03};
    return masks[x & 3];
}

uint8_t point_pattern(uint8_t colour) {
    static const uint8_t patterns[] = {0x00, 0x55, 0xAA, 0xFF};
    return patterns[colour & 3];
}

void graphics_plot(uint8_t x, uint8_t y, uint8_t colour) {
    uint8_t *at;
    uint8_t mask;
    if (x >= GRAPHICS_WIDTH || y >= graphics_height()) return;
    at = point_byte(x, y);
    mask = point_mask(x);
    *at = (*at & ~mask) | (point_pattern(colour) & mask);
}

uint8_t graphics_point(uint8_t x, uint8_t y) {
    if (x >= GRAPHICS_WIDTH || y >= graphics_height()) return 0;
    return *point_byte(x, y) >> 2 * (3 - (x & 3)) & 3;
}
