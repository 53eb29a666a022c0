; LIST, DELETE, and tokens to words.

; LIST and LLIST of a range of lines
stmt_llist:
        EX DE,HL
        LD HL,OUTPUT_DEVICE
        LD (HL),1
        EX DE,HL
stmt_list:
        CALL line_range
        RET NZ
        POP BC                  ; new_statement
        CALL find_line
_line:
        INC HL
        LD A,(HL)
        OR A
        JP Z,ready
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        INC HL
        PUSH HL
        LD HL,(LIST_LAST)
        RST 18h                 ; NZ, too, when it is beyond
        CALL NC,test_break
        JP NZ,ready
        LD (EDIT_LINE),DE
        EX DE,HL
        CALL list_number
        POP HL
        LD B,0                  ; words in full
        LD D,B                  ; to the device
        CALL detokenize
        CALL new_row
        JR _line

; Range of lines: n, n-, -n, n-m, or nothing for all of them; "." is the current line.
; In:   HL text, flags of its first character
; Out:  DE first, LIST_LAST, HL and flags behind it
; Uses: AF, DE
line_range:
        LD DE,0
        JR Z,_to
        CALL number_or_dot
        LD (LIST_LAST),DE
        CP TOKEN_MINUS
        JR NZ,_end
        RST 10h
_to:
        PUSH DE
        LD DE,0FFFEh
        CALL NZ,number_or_dot
        LD (LIST_LAST),DE
        POP DE
_end:
        DEC HL
        JP next_character

; A line number or "." for the current line.
; In:   HL text, A its first character
; Out:  DE number, HL behind it, A and flags as next_character
number_or_dot:
        CP '.'
        JP NZ,line_number
        LD DE,(EDIT_LINE)
        JP next_character

; DELETE range
stmt_delete:
        JP Z,error_fc           ; not all lines by chance
        CALL line_range
        RET NZ
        LD HL,(LIST_LAST)
        RST 18h
        JP C,error_fc
        PUSH DE
        EX DE,HL
        INC DE
        CALL find_line
        POP DE
        PUSH HL
        CALL find_line
        POP BC
        CALL close_gap
        CALL relink
program_changed:
        CALL clear_variables
        JP ready

; Writes the words of a line out.
; In:   HL text of a line in memory; B 0, or TOKEN_PRINT: ? for PRINT; D 0: to the device, else DE
;       in LINE_BUFFER
; Out:  HL the line behind, A 0; DE the end, at most the last byte of LIST_LENGTH; B or B + 1
; Uses: F, C
detokenize:
_next:
        LD A,(HL)
        INC HL
        OR A
        RET Z
        LD C,A
        CP STRING_QUOTE
        JR Z,_copy
        CP ':'
        JR Z,_colon
        ADD A,A
        JR C,_word
_character:
        LD A,C
        CALL put_listed
        JR _next
_print:
        LD C,'?'
        JR _character
_colon:
        RES 0,B
        LD A,(HL)
        CP TOKEN_ELSE
        JR Z,_next
        CP TOKEN_REM
        JR NZ,_character
        INC HL
        LD A,(HL)
        DEC HL
        CP TOKEN_QUOTE
        JR NZ,_character
        INC HL
        INC HL
        LD C,0
        LD A,"'"
        JR _copy
_word:
        BIT 0,B
        JR NZ,_character        ; none in DATA
        LD A,C
        CP B
        JR Z,_print
        INC A
        JR NZ,_one_byte
        LD A,(HL)
        SUB FIRST_TOKEN
        CP EXTENDED_WORDS
        JR NC,_character
        INC HL
        JR _number
_one_byte:
        LD A,C
        SUB FIRST_TOKEN - EXTENDED_WORDS
        CP TOKEN_QUOTE - FIRST_TOKEN + EXTENDED_WORDS
        JR NC,_character
_number:
        PUSH BC
        LD B,A
        INC B
        PUSH HL
        LD HL,keyword_table
        JR _first
_skip:
        LD A,(HL)
        INC HL
        RLA
        JR NC,_skip
_first:
        DJNZ _skip
_put:
        LD A,(HL)
        AND 7Fh
        CALL put_listed
        BIT 7,(HL)
        INC HL
        JR Z,_put
        POP HL
        POP BC
        LD A,C
        CP TOKEN_DATA
        JR NZ,_no_data
        INC B                   ; bit 0
_no_data:
        CP TOKEN_REM
        JR NZ,_next
        LD C,0
; Up to a character like C.
_copied:
        LD A,(HL)
        INC HL
        OR A
        RET Z
        CP C
        JR Z,_character
_copy:
        CALL put_listed
        JR _copied

; In:   A character, DE as for detokenize
put_listed:
        INC D
        DEC D
        JP Z,put_character
        LD (DE),A
        INC DE
        LD A,E
        CP LOW (LINE_BUFFER + LIST_LENGTH)
        RET NZ
        DEC DE                  ; full
        RET

; Shows a number without blanks, on the device in use; list_number with one behind.
; In:   HL
; Uses: all
list_number:
        CALL print_line_number
        LD A,' '
        JP put_character
print_line_number:
        CALL line_number_text
        JP put_text

; A number as text without blanks.
; In:   HL number
; Out:  HL text ended by 0
; Uses: all
line_number_text:
        CALL set_word
        CALL format_number
        INC HL                  ; over the blank
        RET
