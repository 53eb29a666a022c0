#include <genie/keys.h>

char key_get(void) __naked {
    __asm
	push	ix
	call	0x002B
	pop	ix
	ret
    __endasm;
}

char key_wait(void) __naked {
    __asm
	push	ix
	call	0x0049
	pop	ix
	ret
    __endasm;
}

/* The line ends with 0D. */
int16_t key_line(char *line, uint8_t length) __naked {
    line, length;
    __asm
	pop	bc		; return address
	dec	sp
	pop	af		; A length
	push	bc
	push	ix
	push	hl
	ld	b,a
	call	0x0040
	pop	hl
	pop	ix
	ld	e,b
	ld	d,#0
	push	af
	add	hl,de
	ld	(hl),d
	pop	af
	ret	NC
	ld	de,#-1
	ret
    __endasm;
}

bool key_down(uint8_t place) { return KEYBOARD[1 << (place >> 3)] >> (place & 7) & 1; }

bool key_any(void) {
    uint8_t row;
    for (row = 1; row; row <<= 1)
        if (KEYBOARD[row]) return true;
    return false;
}
