#pragma once
/* Lines of BASIC out of a C program, and with them all that BASIC and the disk ROM can do. */

#include <genie/machine.h>
#include <stdbool.h>

#define BASIC_LINE 240 /* characters of a line at most */

/* What running a line gives: the number of its error, which is ERR / 2 + 1, or one of these. */
#define BASIC_DONE 0
#define BASIC_ABSENT 255 /* the program was started before BASIC: nothing was run */

/* Whether BASIC was there when the program was started, so that lines can be run. */
bool basic_is_there(void);
/* Runs a line as if it were typed at the prompt, such as "DIR". What it prints goes to the screen,
   and a row that was begun is ended; error messages are not shown. Takes the text screen meanwhile.
   Must not be a numbered line, nor NEW, LOAD of a program, RUN, GOTO or GOSUB: BASIC has no program
   beside this one. BREAK and STOP give BASIC_DONE, too. */
uint8_t basic_run(const char* line);
/* The same, and nothing that it prints is shown. */
uint8_t basic_run_unseen(const char* line);
