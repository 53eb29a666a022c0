/* Runs a line as the prompt does, by what the firmware documents for drivers and disk ROMs: the
   drivers of keyboard and screen in their control blocks, and the hooks before READY, at errors and
   for lines that run at once. The keyboard's driver types the line, the screen's shows nothing until
   the line runs, and before the second READY the program has the processor again. */
#include <genie/basic.h>
#include <genie/graphics.h>

#include <string.h>

#define KEYBOARD_DRIVER (*(uint16_t *)0x4016)
#define SCREEN_DRIVER (*(uint16_t *)0x401E)
#define ERROR_HOOK ((uint8_t *)0x41A6)
#define READY_HOOK ((uint8_t *)0x41A9)
#define LINE_HOOK ((uint8_t *)0x41B5)
#define HOOK_BYTES 3
#define JP 0xC3

static const char *typed; /* what is still to be typed */
static bool entered;      /* and Enter behind it */
static uint8_t error;
static bool prompted;
static uint16_t stack;
static uint16_t old_keyboard, old_screen;
/* The hooks as they were, as code. */
static uint8_t old_error[HOOK_BYTES], old_ready[HOOK_BYTES], old_line[HOOK_BYTES];

static void type_line(void) __naked {
    __asm
	ld	hl,(_typed)
	ld	a,(hl)
	inc	hl
	or	a,a
	jr	Z,typed_all
	ld	(_typed),hl
	ret
typed_all:
	ld	hl,#_entered
	ld	a,(hl)
	ld	(hl),#1
	or	a,a
	ld	a,#13
	ret	Z
	ld	hl,(_old_keyboard)
	jp	(hl)
    __endasm;
}

static void show_nothing(void) __naked {
    __asm
	ret
    __endasm;
}

/* E is the code of the error. */
static void keep_error(void) __naked {
    __asm
	push	hl
	ld	hl,#_show_nothing
	ld	(0x401E),hl
	ld	hl,#_error
	ld	(hl),e
	srl	(hl)
	inc	(hl)
	pop	hl
	jp	_old_error
    __endasm;
}

static void show_again(void) __naked {
    __asm
	push	hl
	ld	hl,(_old_screen)
	ld	(0x401E),hl
	pop	hl
	jp	_old_line
    __endasm;
}

static void go_on(void) __naked {
    __asm
	jp	_old_line
    __endasm;
}

static void be_ready(void) __naked {
    __asm
	call	_old_ready
	ld	hl,#_prompted
	ld	a,(hl)
	ld	(hl),#1
	or	a,a
	ret	Z
	ld	sp,(_stack)
	pop	ix
	ret
    __endasm;
}

/* Returns out of be_ready. */
static void go_to_prompt(void) __naked {
    __asm
	push	ix
	ld	(_stack),sp
	jp	0x1A19
    __endasm;
}

static void take(uint8_t *hook, uint8_t *old, void (*routine)(void)) {
    memcpy(old, hook, HOOK_BYTES);
    *(uint16_t *)(hook + 1) = (uint16_t)routine;
    *hook = JP;
}

static uint8_t run(const char *line, bool shown) {
    const uint8_t graphics = LATCH_COPY & LATCH_GRAPHICS;
    if (!basic_is_there()) return BASIC_ABSENT;
    typed = line;
    entered = prompted = false;
    error = BASIC_DONE;
    old_keyboard = KEYBOARD_DRIVER;
    old_screen = SCREEN_DRIVER;
    take(ERROR_HOOK, old_error, keep_error);
    take(READY_HOOK, old_ready, be_ready);
    take(LINE_HOOK, old_line, shown ? show_again : go_on);
    KEYBOARD_DRIVER = (uint16_t)type_line;
    SCREEN_DRIVER = (uint16_t)show_nothing;
    go_to_prompt();
    KEYBOARD_DRIVER = old_keyboard;
    SCREEN_DRIVER = old_screen;
    memcpy(ERROR_HOOK, old_error, HOOK_BYTES);
    memcpy(READY_HOOK, old_ready, HOOK_BYTES);
    memcpy(LINE_HOOK, old_line, HOOK_BYTES);
    if (graphics) graphics_show();
    return error;
}

uint8_t basic_run(const char *line) { return run(line, true); }
uint8_t basic_run_unseen(const char *line) { return run(line, false); }
