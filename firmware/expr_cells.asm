; Cells of expressions, variables, strings and PRINT. No code.
;
; What other modules call (the header of each routine has the details):
;   eval            HL text -> accumulator, HL at the first character that does not belong to it
;   eval_number     the same, TM for a string
;   eval_string     HL text -> A length, DE address of the characters; valid until the next string
;   check_number, check_string      TM when the accumulator is not one
;   get_byte        HL text -> A = E value 0-255, D = 0
;   get_integer     HL text -> DE -32768 to 32767
;   get_address     HL text -> DE -32768 to 65535
;   find_variable   HL name -> DE value address (made if absent), B = NUMBER_TYPE = type, HL behind
;   assign          DE value address, B type: takes the accumulator, converted; HL kept
;   convert_type    B type: converts the accumulator to it, from another one
;   literal_string  HL opening quote -> accumulator, HL behind the closing one
;   text_string     HL first character, B and C two characters that end it (0 always does)
;                   -> accumulator (temporary), HL at the end
;   take_string     string in the accumulator, given up -> A length, DE address; HL kept
;   make_string     A = C length -> DE address of so many new bytes, which STRING_WORK describes
;   duplicate_string     HL descriptor -> STRING_WORK describes a copy; gives up the original
;   push_string     STRING_WORK becomes a temporary in the accumulator
;   reset_temporaries   no temporaries: after an error, at the prompt, with CLEAR; uses HL only
;   print_number    accumulator to the device, as PRINT shows it
;   put_character   A to the device of OUTPUT_DEVICE
;   put_text        HL text ended by 0 to the device
;   new_row         ends the row on the device; print_new_row only where the column is not 0

TEMP_POINTER    EQU 40B3h       ; next free temporary descriptor
TEMPORARIES     EQU 40B5h
TEMP_COUNT      EQU 10
TEMP_END        EQU TEMPORARIES + 3 * TEMP_COUNT
STRING_WORK     EQU TEMP_END        ; descriptor of a string being made: length, address
FIND_TEXT       EQU 40D8h       ; text while an array is searched
COLLECT_TABLE   EQU FIND_TEXT   ; string collection: the table of where strings begin,
COLLECT_END     EQU 40DAh       ;  end of the descriptors that are looked at,
COLLECT_TOP     EQU 40DCh       ;  the highest byte not yet looked at,
COLLECT_NEXT    EQU 40DEh       ;  the byte where the next string ends
USING_FORMAT    EQU 40E0h       ; descriptor of the format of PRINT USING
USING_PLACE     EQU 40E2h       ; characters of it already used

STRING_QUOTE    EQU '"'

; Types
TYPE_INTEGER    EQU 2
TYPE_STRING     EQU 3
TYPE_SINGLE     EQU 4
TYPE_DOUBLE     EQU 8

COLLECT_STACK   EQU 32          ; room for the stack while strings are collected
COLLECT_PAGES   EQU 12          ; most pages of a window, for BREAK between them
