; RENUM new,old,step: the lines from old get new numbers, and what names them follows.

stmt_renum:
        LD DE,10
        LD (RENUM_NEW),DE
        LD (RENUM_STEP),DE
        LD E,D
        LD (RENUM_OLD),DE
        LD BC,RENUM_NEW
        DEC HL
_argument:
        RST 10h
        JR Z,_checked
        CP ','
        JR Z,_left_out
        CALL line_number
        LD A,E
        LD (BC),A
        INC BC
        LD A,D
        LD (BC),A
        DEC BC
        LD A,(HL)
_left_out:
        INC BC
        INC BC
        CP ','
        JR NZ,_checked
        LD A,C
        CP LOW RENUM_TEXT
        JR C,_argument
_checked:
        DEC HL
        RST 10h
        RET NZ
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
        LD DE,0
        CALL new_number
; First what names lines, while these have their old numbers.
        LD HL,(PROGRAM_START)
_references:
        LD A,(HL)
        INC HL
        OR (HL)
        JR Z,_numbers
        INC HL
        INC HL
        INC HL
        CALL renumber_text
        JR _references
_numbers:
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

; New number of a line.
; In:   DE its address
; Out:  HL number; FC error when a number gets too great
; Uses: AF, BC, DE
new_number:
        PUSH DE
        LD DE,(RENUM_OLD)
        CALL find_line
        LD BC,(RENUM_NEW)
        POP DE
_line:
        RST 18h
        JR Z,_found
        LD A,(HL)
        INC HL
        OR (HL)
        JR Z,_found
        PUSH HL
        LD HL,65529
        SBC HL,BC
        JP C,error_fc
        LD HL,(RENUM_STEP)
        ADD HL,BC
        JP C,error_fc
        LD B,H
        LD C,L
        POP HL
        LD A,(HL)
        DEC HL
        LD L,(HL)
        LD H,A
        JR _line
_found:
        LD H,B
        LD L,C
        RET

; Corrects the line numbers in the text of a line.
; In:   HL text
; Out:  HL behind its 0
renumber_text:
        LD A,(HL)
        INC HL
        OR A
        RET Z
        CP TOKEN_REM
        JR Z,_remark
        CP EXTENDED
        JR Z,_two_bytes
        CP STRING_QUOTE
        JR Z,_string
        PUSH HL
        LD HL,naming_words
        LD BC,NAMING_WORDS
        CPIR
        POP HL
        JR NZ,renumber_text
_item:
        DEC HL
_blanks:
        RST 10h
        JR C,_number
        CP ','
        JR Z,_blanks
        CP TOKEN_GREATER        ; ERL = line
        JR C,renumber_text
        CP TOKEN_SGN
        JR C,_blanks
        JR renumber_text
_remark:
        CALL skip_line
        INC HL
        RET
_string:
        LD A,(HL)
        OR A
        JR Z,renumber_text
        INC HL
        CP STRING_QUOTE
        JR NZ,_string
        JR renumber_text
_two_bytes:
        INC HL
        JR renumber_text
_number:
        PUSH HL
        CALL line_number
        POP HL
        PUSH HL
        LD C,0                  ; digits
_digit:
        LD A,(HL)
        SUB '0'
        CP 10
        JR NC,_counted
        INC C
        INC HL
        JR _digit
_counted:
        LD A,C
        LD (LIST_LAST),A
        LD HL,(RENUM_OLD)
        EX DE,HL
        RST 18h
        JR C,_same              ; a line that stays
        EX DE,HL
        CALL find_line
        JR NZ,_same             ; there is no such line
        EX DE,HL
        CALL new_number
        CALL line_number_text
        LD (RENUM_TEXT),HL
        LD E,0
_length:
        INC E
        INC HL
        LD A,(HL)
        OR A
        JR NZ,_length
        LD A,(LIST_LAST)
        LD C,A
        LD A,E                  ; digits of the new one
        POP HL
        PUSH DE
        LD B,0
        SUB C
        JR Z,_write
        JR C,_shorter
        LD C,A
        CALL open_gap
        JR _write
_shorter:
        NEG
        LD C,A
        PUSH HL
        ADD HL,BC
        LD B,H
        LD C,L
        POP HL
        CALL close_gap
_write:
        POP BC
        LD B,0
        EX DE,HL
        LD HL,(RENUM_TEXT)
        LDIR
        PUSH DE
        CALL relink_program
        POP HL
        JP _item
_same:
        POP HL
        LD A,(LIST_LAST)
        LD C,A
        LD B,0
        ADD HL,BC
        JP _item

; Words that line numbers follow.
naming_words:
        DEFB TOKEN_GOTO, TOKEN_GOSUB, TOKEN_THEN, TOKEN_ELSE
        DEFB TOKEN_RUN, TOKEN_RESTORE, TOKEN_RESUME, TOKEN_ERL
NAMING_WORDS    EQU 8
