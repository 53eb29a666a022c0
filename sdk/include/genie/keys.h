#pragma once
/* The keyboard: characters as BASIC gets them, and keys that are down. */

#include <genie/machine.h>
#include <stdbool.h>

/* What key_get and key_wait give for keys without a character. */
#define CHARACTER_LEFT 8
#define CHARACTER_RIGHT 9
#define CHARACTER_DOWN 10
#define CHARACTER_ENTER 13

/* The character of a key that was just pressed, 0 for none. A key held down repeats. */
char key_get(void);
/* Waits for a key. */
char key_wait(void);
/* Reads a line with the keys of BASIC's prompt into `line`, which has room for `length` + 1
   characters, 1 to 240. Returns how many there are, or -1 when BREAK ended it. */
int16_t key_line(char* line, uint8_t length);

/* Places of keys: eight times the row, and the column. Letters and digits by their character:
   KEY_OF('A'), KEY_OF('7'). */
#define KEY_OF(c) ((c) >= 'A' ? (c) - '@' : (c) - '0' + 32)
#define KEY_F1 28
#define KEY_F2 29
#define KEY_F3 30
#define KEY_F4 31
#define KEY_COLON 42
#define KEY_SEMICOLON 43
#define KEY_COMMA 44
#define KEY_MINUS 45
#define KEY_POINT 46
#define KEY_SLASH 47
#define KEY_ENTER 48
#define KEY_CLEAR 49
#define KEY_BREAK 50
#define KEY_UP 51
#define KEY_DOWN 52
#define KEY_LEFT 53
#define KEY_RIGHT 54
#define KEY_SPACE 55
#define KEY_SHIFT 56
#define KEY_MODE 57
#define KEY_REPEAT 59
#define KEY_CONTROL 60

/* Whether a key is down now. Any number of keys may be. */
bool key_down(uint8_t place);
/* Whether any key is down. */
bool key_any(void);
