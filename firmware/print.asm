; PRINT and LPRINT, and what goes to the device of OUTPUT_DEVICE.
;
; A comma goes on to the next zone of 16 columns. The screen has room for two of them, a comma
; behind column 15 begins a new row; the printer has eight. On a cassette it stays a comma.

ZONE            EQU 16
LAST_ZONE       EQU 16
PRINTER_ZONE    EQU 112

; Character to the device.
; In:   A character
; Out:  all registers but AF kept
put_character:
        PUSH DE
        LD E,A
        LD A,(OUTPUT_DEVICE)
        OR A
        LD A,E
        JR NZ,_other
        CALL print_entry
        POP DE
        RET
_other:
        JP M,put_on_tape
        PUSH AF
        CALL call_printer
        POP AF
        LD DE,(PRINT_COLUMN)    ; E
        INC E
        CP ' '
        JR NC,_column
        DEC E
        CP RETURN
        JR NZ,_column
        LD E,0
_column:
        LD A,E
        LD (PRINT_COLUMN),A
        POP DE
        RET

; Column on the device.
; Out:  A; Z for the screen, else NZ, M for a cassette
; Uses: DE, HL
get_column:
        LD A,(OUTPUT_DEVICE)
        OR A
        LD A,(PRINT_COLUMN)
        RET NZ
        LD HL,(CURSOR)
        CALL column_of
        CP A
        RET

; Begins a row unless the device stands at the start of one.
; Uses: AF, DE, HL
print_new_row:
        CALL get_column
        OR A
        RET Z
; Begins a row.
; Uses: AF
new_row:
        LD A,RETURN
        JR put_character

; The number in the accumulator, with a blank or minus before it and a blank behind. On the screen
; it begins a row when it does not fit in the one of the cursor.
; Uses: all
print_number:
        CALL format_number
        PUSH HL
        CALL get_column
        POP HL
        JR NZ,_fits
        PUSH HL
        LD B,A
        XOR A
_length:
        INC B
        CP (HL)
        INC HL
        JR NZ,_length
        LD A,B                  ; with the blank behind
        CP COLUMNS + 1
        CALL NC,new_row
        POP HL
_fits:
        CALL put_text
        LD A,' '
        JR put_character

; Ends PRINT: a last row, and back to the screen.
print_last_row:
        CALL new_row
print_end:
        JP auto_off

; LPRINT list
stmt_lprint:
        LD A,1
        LD (OUTPUT_DEVICE),A
; PRINT list
stmt_print:
        LD A,(HL)
        CP '#'
        JR NZ,print_list
        CALL tape_number
        JP Z,print_to_tape
        CALL hook_print
        JP error_l3
print_list:
        LD A,(HL)
        CALL end_of_statement
        JR Z,print_last_row
_item:
        CP ';'
        JR Z,_separator
        CP ','
        JR Z,_zone
        CP TOKEN_TAB
        JR Z,_tab
        CP '@'
        JR Z,_at
        CP TOKEN_USING
        JP Z,print_using
        CALL eval
        PUSH HL
        RST 20h
        JR Z,_string
        CALL print_number
        POP HL
        JR print_list
_string:
        CALL take_string
        CALL put_string
        POP HL
        JR print_list
; @ position: moves the cursor.
_at:
        RST 10h
        CALL get_integer
        RST 08h
        DEFB ','
        DEC HL
        PUSH HL
        LD HL,COLUMNS * ROWS - 1
        RST 18h
        JP C,error_fc           ; below 0, too
        LD HL,TEXT_SCREEN
        ADD HL,DE
        CALL set_cursor
        POP HL
_separator:
        RST 10h
        JR NZ,_item
        JR print_end
_zone:
        PUSH HL
        CALL get_column
        LD C,A
        LD A,','
        JP M,_comma
        LD A,LAST_ZONE - 1
        JR Z,_screen
        LD A,PRINTER_ZONE - 1
_screen:
        CP C
        JR NC,_blanks
        LD A,RETURN
_comma:
        CALL put_character
        JR _in_zone
_blanks:
        LD A,C
        CPL
        AND ZONE - 1
        CALL put_blanks
_in_zone:
        POP HL
        JR _separator
_tab:
        INC HL
        CALL get_byte
        RST 08h
        DEFB ')'
        PUSH HL
        PUSH DE
        CALL get_column
        POP DE
        LD B,A
        LD A,E
        JR NZ,_blanks_to
_row:
        SUB COLUMNS
        JR NC,_row
        ADD A,COLUMNS
_blanks_to:
        INC B
        SUB B
        CALL NC,put_blanks
        POP HL
        JP print_list

; Characters to the device.
; In:   A number, DE the first one
; Out:  HL kept
; Uses: AF, B, DE
put_string:
        LD B,A
        INC B
        JR _count
_character:
        LD A,(DE)
        CALL put_character
        INC DE
_count:
        DJNZ _character
        RET

; In:   A number of blanks, less one
; Uses: AF, B
put_blanks:
        LD B,A
        INC B
_blank:
        LD A,' '
        CALL put_character
        DJNZ _blank
        RET
