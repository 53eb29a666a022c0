; Memory cells of the interpreter's control.
;
; What the control offers to the other modules (see the headers of the routines):
;   raise_error, error_xx, check_stack, clear_variables, skip_statement, skip_line, line_number,
;   find_line, print_line_number (HL), set_word (HL 0 to 65535 as a value), stop_run (BREAK),
;   func_err, func_erl, stmt_renum, stmt_call.

RENUM_NEW       EQU 4080h
RENUM_OLD       EQU 4082h
RENUM_STEP      EQU 4084h
RENUM_TEXT      EQU 4086h       ; text that is still to be moved
RENUM_TABLE     EQU 4088h       ; old and new numbers, the last line's first
STATEMENT       EQU 4090h       ; end of the statement before, where RESUME and CONT begin
DATA_LINE       EQU 4092h       ; line of the DATA pointer
AUTO_NUMBER     EQU 4094h
AUTO_STEP       EQU 4096h
AUTO_ON         EQU 4098h       ; not 0 while AUTO numbers the lines
INKEY_CODE      EQU 4099h       ; a key already taken
ERROR_CODE      EQU 409Ah       ; last error
TRACE           EQU 409Bh       ; not 0 after TRON
OUTPUT_DEVICE   EQU 409Ch       ; 0 screen, 1 printer, 80 cassette
TAPE_ROOM       EQU 409Dh       ; PRINT#-1: characters that the record can still take, and one
INPUT_SOURCE    EQU 409Dh       ; 0 READ, RETURN INPUT#-1, else INPUT
PRINT_COLUMN    EQU 40A6h       ; of the printer
ERROR_LINE      EQU 40EAh
EDIT_LINE       EQU 40ECh       ; the line that "." means
ERROR_TEXT      EQU 40EEh       ; statement in which the error came
ON_ERROR        EQU 40F0h       ; line of the program's own error handling, 0 none
IN_HANDLER      EQU 40F2h       ; not 0 between an error and RESUME
TAPE_OPEN       EQU 40F3h       ; not 0 when the next PRINT#-1 goes on with the same tape
STOP_LINE       EQU 40F5h       ; line where CONT goes on
CONT_TEXT       EQU 40F7h       ; text where CONT goes on, high byte 0: not possible
INPUT_TEXT      EQU 43E0h       ; READ and INPUT: where the values come from
LIST_LAST       EQU 43E2h       ; last line number of a range

; A line is made into tokens below the line buffer: the text grows by two bytes at most before it
; meets what is still to be read.
TOKEN_BUFFER    EQU LINE_BUFFER - 3
LINE_HEAD       EQU 4           ; link and number of a line
LAST_NUMBER     EQU 65529
LIST_LENGTH     EQU 252         ; of LINE_BUFFER with the text of a line for EDIT, 0 behind it

; Rooms kept between the stack and what grows towards it.
STACK_ROOM      EQU 80

; On the stack, a loop: kind, sign of the step, variable, step, limit, line, text; a call: kind,
; unused, line, text. A word 0 ends them.
FRAME_INTEGER   EQU 80h
FRAME_SINGLE    EQU 81h
FRAME_KIND      EQU 0FEh        ; both of these
FRAME_GOSUB     EQU TOKEN_GOSUB
FRAME_SIZE      EQU 16          ; of a loop
FOR_VARIABLE    EQU 4088h
NEXT_TEXT       EQU 408Ah
FOR_LIMIT       EQU 43E6h       ; four bytes
FOR_TYPE        EQU 43EAh
LINE_SIZE       EQU 43EBh       ; of a line to be stored, with its head and its 0
