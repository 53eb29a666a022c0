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
        PUSH HL
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
        RST 18h
        JP C,ready
        LD (EDIT_LINE),DE
        CALL test_break
        JP NZ,ready
        EX DE,HL
        CALL print_line_number
        LD A,' '
        CALL put_character
        POP HL
        CALL detokenize
        LD HL,LINE_BUFFER
        CALL put_text
        CALL new_row
        POP HL
        LD A,(HL)
        INC HL
        LD H,(HL)
        LD L,A
        JR _line

; Range of lines: n, n-, -n, n-m, or nothing for all of them; "." is the current line.
; In:   HL text, flags of its first character
; Out:  DE first, LIST_LAST, HL and flags behind it
; Uses: AF, DE
line_range:
        LD DE,0FFFFh
        JR NZ,_first
        LD (LIST_LAST),DE
        INC DE
        RET
_first:
        CALL number_or_dot
        LD (LIST_LAST),DE
        CP TOKEN_MINUS
        JR NZ,_end
        PUSH DE
        LD DE,0FFFFh
        RST 10h
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
        CALL find_line
        JR Z,_behind
        LD B,H
        LD C,L
_behind:
        POP DE
        PUSH BC
        CALL find_line
        POP BC
        CALL delete_lines
program_changed:
        CALL clear_variables
        JP ready

; Writes the words of a line out.
; In:   HL text of a line in memory
; Out:  LINE_BUFFER, ended by 0; DE its end
; Uses: AF, BC, HL
detokenize:
        LD DE,LINE_BUFFER
        LD C,0                  ; bit 0 in a string, bit 7 in a remark
_next:
        LD A,(HL)
        INC HL
        OR A
        JR Z,_end
        CP STRING_QUOTE
        JR NZ,_no_quote
        INC C
_no_quote:
        BIT 7,C
        JR NZ,_character
        BIT 0,C
        JR NZ,_character
        CP ':'
        JR Z,_colon
        CP FIRST_TOKEN
        JR C,_character
        CP TOKEN_REM
        JR NZ,_token
        SET 7,C
_token:
        CALL put_word
        JR _next
_character:
        CALL put_in_buffer
        JR _next
_colon:
        LD A,(HL)
        CP TOKEN_ELSE
        JR Z,_next
        CP TOKEN_REM
        LD A,':'
        JR NZ,_character
        INC HL
        LD A,(HL)
        CP TOKEN_QUOTE
        DEC HL
        LD A,':'
        JR NZ,_character
        INC HL
        INC HL
        SET 7,C
        LD A,"'"
        JR _character
_end:
        LD (DE),A
        RET

; Writes a word out.
; In:   A token, HL behind it, DE place in LINE_BUFFER
; Out:  HL behind the whole token, DE behind the word
; Uses: AF
put_word:
        PUSH BC
        CP EXTENDED
        JR NZ,_one_byte
        LD A,(HL)
        INC HL
        CP FIRST_TOKEN + EXTENDED_WORDS
        JR NC,_unknown
        SUB EXTENDED_WORDS
_one_byte:
        CP TOKEN_QUOTE
        JR NC,_unknown
        SUB FIRST_TOKEN - EXTENDED_WORDS - 1
        LD B,A
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
        CALL put_in_buffer
        BIT 7,(HL)
        INC HL
        JR Z,_put
        POP HL
_unknown:
        POP BC
        RET

; In:   A character, DE place in LINE_BUFFER
put_in_buffer:
        LD (DE),A
        INC DE
        LD A,E
        CP LOW (LINE_BUFFER + LIST_LENGTH)
        RET NZ
        DEC DE                  ; full
        RET

; Shows a number without blanks, on the device in use.
; In:   HL
; Uses: all
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
