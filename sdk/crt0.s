; Start and end of a C program, the first module of the link.
;
; The program stands where BASIC has its own, behind the three bytes of an empty one: so BASIC, the
; reset key and the disk ROM go on working beside it. Behind code and data comes the stack, and what
; is left up to the top of memory is BASIC's.

	.module	crt0
	.globl	_main, _screen_show, _sound_off

; Cells of the firmware.
PROGRAM		= 0x40A4	; address of BASIC's program
TOP		= 0x40B1	; the last byte that BASIC may use
CONTINUE	= 0x40F7
VARIABLES	= 0x40F9	; then arrays, free memory, DATA
LATCH_COPY	= 0x431C
GRAPHICS_BIT	= 5

; Entries of the firmware.
COLD_START	= 0x0000
DISPLAY		= 0x0033
WAIT_KEY	= 0x0049
PROMPT		= 0x1A19

FIRST_LINE	= 0x5801	; of a BASIC program
RAM_END_32K	= 0xBFFF
RAM_END_16K	= 0x7FFF

; The order of the areas.
	.area	_CODE
	.area	_HOME
	.area	_INITIALIZER
	.area	_GSINIT
	.area	_GSFINAL
	.area	_DATA
	.area	_INITIALIZED
	.area	_BSEG
	.area	_BSS
	.area	_HEAP
	.area	_HEAP_END
	.area	_STACK
	.ds	STACK_SIZE
stack_top:
program_end:

	.area	_CODE
	.db	0		; 5800
	.dw	0		; 5801: no line of BASIC

; 5803: the entry.
start:	call	_basic_is_there
	or	a
	ld	hl,(TOP)
	jr	NZ,is_there
	ld	hl,#RAM_END_32K		; BASIC has not looked yet how much there is
	ld	a,(hl)
	cpl
	ld	(hl),a
	cp	(hl)
	jr	Z,is_there
	ld	hl,#RAM_END_16K
is_there:
	ld	de,#program_end
	or	a
	sbc	hl,de
	jr	C,too_large
	ld	sp,#stack_top

	ld	hl,#s__DATA
	ld	bc,#l__DATA
	ld	a,b
	or	c
	jr	Z,cleared
clear:	ld	(hl),#0
	inc	hl
	dec	bc
	ld	a,b
	or	c
	jr	NZ,clear
cleared:
	ld	bc,#l__INITIALIZER
	ld	a,b
	or	c
	jr	Z,copied
	ld	hl,#s__INITIALIZER
	ld	de,#s__INITIALIZED
	ldir
copied:
	call	_basic_is_there
	or	a
	jr	Z,alone
	ld	hl,#program_end
	ld	(VARIABLES),hl
	ld	(VARIABLES+2),hl
	ld	(VARIABLES+4),hl
	ld	hl,#FIRST_LINE-1
	ld	(VARIABLES+6),hl
	ld	hl,#0
	ld	(CONTINUE),hl
alone:	call	gsinit
	call	_main

; Back to the prompt with the text screen and without a tone. Where BASIC was not there, a key starts
; the machine as if it was switched on.
__exit::	ld	sp,#stack_top
	call	_sound_off
	ld	a,(LATCH_COPY)
	bit	GRAPHICS_BIT,a
	call	NZ,_screen_show
	call	_basic_is_there
	or	a
	jp	NZ,PROMPT
key:	call	WAIT_KEY	; what the program has printed stays for a while
	jp	COLD_START

; bool basic_is_there(void): what stood here was its program, or would have been.
_basic_is_there::
	ld	hl,(PROGRAM)
	ld	de,#FIRST_LINE
	or	a
	sbc	hl,de
	ld	a,#1
	ret	Z
	dec	a
	ret

too_large:
	ld	hl,#too_large_text
message:
	ld	a,(hl)
	inc	hl
	or	a
	jr	Z,key
	call	DISPLAY
	jr	message
too_large_text:
	.ascii	"NOT ENOUGH MEMORY"
	.db	0

	.area	_GSINIT
gsinit:
	.area	_GSFINAL
	ret
