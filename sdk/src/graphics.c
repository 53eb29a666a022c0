#include <genie/graphics.h>

uint8_t graphics_height(void) { return TEXT_ROWS == 24 ? 96 : 102; }

void graphics_show(void) __naked {
    __asm
	push	ix
	call	0x38A9
	pop	ix
	ret
    __endasm;
}

#define START_HIGH 12
#define START_LOW 13
#define VIDEO_RAM 0x4000

void graphics_show_page(const uint8_t *page) {
    const uint16_t start = (uint16_t)page - VIDEO_RAM;
    CRTC_SELECT = START_HIGH;
    CRTC_DATA = start >> 8;
    CRTC_SELECT = START_LOW;
    CRTC_DATA = start;
}
