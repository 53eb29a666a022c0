#include <genie/machine.h>

void latch_set(uint8_t mask, uint8_t bits) {
    LATCH_COPY = (LATCH_COPY & ~mask) | (bits & mask);
    LATCH = LATCH_COPY;
}

/* The firmware's delay of 26 cycles a count; the loop takes the rest of the 2217 of a millisecond. */
void wait(uint16_t milliseconds) __naked {
    milliseconds;
    __asm
	ld	a,h
	or	a,l
	ret	Z
	ld	bc,#82
	call	0x0060
	dec	hl
	jr	_wait
    __endasm;
}

void end_program(void) __naked {
    __asm
	jp	__exit
    __endasm;
}
