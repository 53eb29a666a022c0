; RENUM new,old,step: the lines from old get new numbers, and what names them follows.
;
; The old and the new numbers lie on the stack while the text is gone through twice: first for the
; room that longer numbers may need at most, then, moved up by that much, on its way back down. So
; every byte is moved twice, however many numbers change their length, and what can fail does so
; before the program is touched.

stmt_renum:
        LD BC,RENUM_NEW
        LD DE,10
        CALL _argument
        LD DE,0
        CALL _argument
        LD DE,10
        CALL _argument
        DEC HL
        RST 10h
        RET NZ
        LD A,D
        OR E
        JP Z,error_fc
        XOR A
        LD (RENUM_TEXT + 1),A   ; the first time through the text
        CALL clear_variables
; The new numbers must come behind those that stay, and end before 65530.
        LD DE,(RENUM_OLD)
        CALL find_line
        PUSH HL
        LD DE,(RENUM_NEW)
        CALL find_line
        POP DE
        RST 18h
        JP C,error_fc
        EXX
        LD HL,(RENUM_NEW)
        LD DE,(RENUM_STEP)
        EXX
_old:
        EX DE,HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        LD A,D
        OR E
        JR Z,_all
        INC HL
        LD A,(HL)
        INC HL
        LD H,(HL)
        LD L,A
        EXX
        PUSH HL
        ADD HL,DE
        JR NC,_fits
        LD HL,0FFFFh
_fits:
        EXX
        PUSH HL
        CALL check_stack
        JR _old
_all:
        LD (RENUM_TABLE),SP
        POP HL                  ; the last line
        POP DE
        PUSH DE
        PUSH HL
        LD HL,65529
        RST 18h
        JP C,error_fc
        LD DE,0
        LD HL,(PROGRAM_START)
        CALL renumber_text
        LD B,D
        LD C,E
        PUSH DE
        LD HL,(PROGRAM_START)
        CALL open_gap
        POP DE
        PUSH HL
        ADD HL,DE
        POP DE
        LD (RENUM_TEXT),HL
        CALL renumber_text
        INC HL
        CALL move_text
        CALL relink_program
        LD DE,(RENUM_OLD)
        CALL find_line
        LD DE,(RENUM_NEW)
_line:
        LD C,(HL)
        INC HL
        LD A,(HL)
        LD B,A
        OR C
        JP Z,program_changed
        INC HL
        LD (HL),E
        INC HL
        LD (HL),D
        LD HL,(RENUM_STEP)
        ADD HL,DE
        EX DE,HL
        LD H,B
        LD L,C
        JR _line

; A number and the comma behind it.
; In:   HL text, DE number if there is none, BC cell for it
; Out:  DE, HL and BC behind
_argument:
        DEC HL
        RST 10h
        CALL C,line_number
        LD A,E
        LD (BC),A
        INC BC
        LD A,D
        LD (BC),A
        INC BC
        LD A,(HL)
        CP ','
        RET NZ
        INC HL
        RET

; Moves text down.
; In:   HL its end, RENUM_TEXT its start, DE new place
; Out:  HL kept, DE behind the text
; Uses: AF, BC
move_text:
        LD BC,(RENUM_TEXT)
        OR A
        SBC HL,BC
        PUSH HL
        LD H,B
        LD L,C
        POP BC
        LDIR
        RET

; Goes through the text of the program. The first time, with 0 in the high byte of RENUM_TEXT, it
; counts the bytes by which the numbers may grow. The second time it moves the text down and
; writes the new numbers.
; In:   HL first line; DE 0, or the place of the new text
; Out:  HL last byte of the program; DE count, or the end of what is moved
; Uses: all
renumber_text:
        LD A,(HL)
        INC HL
        OR (HL)
        RET Z
        INC HL
        INC HL
        INC HL
_text:
        LD A,(HL)
        INC HL
        OR A
        JR Z,renumber_text
        CP STRING_QUOTE
        CALL Z,skip_string
        CP EXTENDED
        JR Z,_two_bytes
        CP TOKEN_REM
        JR NZ,_word
        CALL skip_line
_two_bytes:
        INC HL
        OR A
        JR NZ,_text
        JR renumber_text
_error:
        DEC HL
        RST 10h
        CP TOKEN_GOTO
        JR NZ,_text
        INC HL
; The 0 of ON ERROR GOTO 0 and RESUME 0 is no line.
_zero:
        DEC HL
        RST 10h
        CP '0'
        JR Z,_text
        JR _item
_word:
        CP TOKEN_ERROR
        JR Z,_error
        PUSH HL
        LD HL,naming_words
        LD BC,NAMING_WORDS
        CPIR
        POP HL
        JR NZ,_text
        CP TOKEN_RESUME
        JR Z,_zero
_item:
        DEC HL
_blanks:
        RST 10h
        JR C,_number
        CP ','
        JR Z,_blanks
        CP TOKEN_GREATER        ; ERL = line
        JR C,_text
        CP TOKEN_SGN
        JR C,_blanks
        JR _text
_number:
        PUSH HL
        PUSH DE
        CALL line_number        ; SN error for one that is too great, the first time
        LD A,(RENUM_TEXT + 1)
        OR A
        JR NZ,_second
        POP DE
        INC DE                  ; from one digit to five
        INC DE
        INC DE
        INC DE
        POP BC
        JR _item
_second:
        PUSH HL
        LD HL,(STRING_SPACE)    ; behind the table: a number that is not in it stays
        DEC HL
        LD (HL),D
        DEC HL
        LD (HL),E
        DEC HL
        LD (HL),D
        DEC HL
        LD (HL),E
        LD HL,(RENUM_TABLE)
        LD BC,4
_compare:
        LD A,E
_find:
        CP (HL)
        JR Z,_low
        ADD HL,BC
        JP _find
_low:
        INC HL
        LD A,(HL)
        DEC HL
        SUB D
        JR Z,_found
        ADD HL,BC
        JR _compare
_found:
        INC HL
        INC HL
        LD C,(HL)
        INC HL
        LD B,(HL)
        POP HL
_end:
        DEC HL
        LD A,(HL)
        CP ' '
        JR Z,_end
        INC HL                  ; behind the last digit
        POP DE
        EX (SP),HL
        PUSH BC
        CALL move_text
        POP BC
        POP HL
        LD (RENUM_TEXT),HL
        PUSH HL
        PUSH DE
        LD H,B
        LD L,C
        CALL line_number_text
        POP DE
_digit:
        LD A,(HL)
        OR A
        JR Z,_written
        LD (DE),A
        INC HL
        INC DE
        JR _digit
_written:
        POP HL
        JR _item

; Words that line numbers follow.
naming_words:
        DEFB TOKEN_GOTO, TOKEN_GOSUB, TOKEN_THEN, TOKEN_ELSE
        DEFB TOKEN_RUN, TOKEN_RESTORE, TOKEN_RESUME, TOKEN_ERL
NAMING_WORDS    EQU 8
