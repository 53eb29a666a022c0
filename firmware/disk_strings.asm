; Strings changed where they are: MID$ on the left, LSET, RSET.

; MID$(variable, start, length) = value: as many characters as there are take the place of those.
; In:   HL MID$
word_mid:
        RST 10h
        RST 08h
        DEFB '('
        CALL string_variable
        PUSH DE
        RST 08h
        DEFB ','
        CALL get_byte
        OR A
        JP Z,error_fc
        PUSH AF
        LD E,255
        LD A,(HL)
        CP ','
        JR NZ,_length
        RST 10h
        CALL get_byte
_length:
        POP AF
        LD D,A
        PUSH DE
        RST 08h
        DEFB ')'
        RST 08h
        DEFB TOKEN_EQUAL
        CALL eval_string
        POP BC                  ; B start, C length
        CP C
        JR NC,_value
        LD C,A
_value:
        EX (SP),HL
        LD A,(HL)
        SUB B
        JP C,error_fc           ; behind the end
        INC A
        CP C
        JR NC,_part
        LD C,A
_part:
        PUSH BC
        INC HL
        LD C,(HL)
        INC HL
        LD H,(HL)
        LD L,C
        DEC B
        LD C,B
        LD B,0
        ADD HL,BC
        POP BC
        LD A,C
        CALL move_bytes
        POP HL
        RET

; A string variable that is to be changed in place: characters in the program are copied.
; In:   HL text
; Out:  DE its descriptor, HL behind
; Uses: all
string_variable:
        CALL find_string
        PUSH HL
        PUSH DE
        EX DE,HL
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        LD HL,(PROGRAM_END)
        RST 18h
        JR C,_own
        POP HL
        PUSH HL
        LD A,(HL)
        CALL make_string
        POP HL
        PUSH HL
        CALL copy_string
        POP DE
        PUSH DE
        LD HL,STRING_WORK
        LD BC,3
        LDIR
_own:
        POP DE
        POP HL
        RET
; In:   HL text
; Out:  DE descriptor of a string variable, HL behind; TM error for another one
; Uses: all
find_string:
        CALL find_variable
        BIT 0,B
        RET NZ
        JP error_tm

; Moves bytes, also to where some of them are.
; In:   DE from, HL to, A count
; Uses: AF, BC, DE, HL
move_bytes:
        OR A
        RET Z
        LD C,A
        LD B,0
        EX DE,HL
        RST 18h
        JR C,_up
        LDIR
        RET
_up:
        ADD HL,BC
        DEC HL
        EX DE,HL
        ADD HL,BC
        DEC HL
        EX DE,HL
        LDDR
        RET

; LSET variable = value, RSET variable = value: fills the variable with it and blanks.
word_rset:
        DEFB 3Eh                ; LD A, with the next byte: not 0
word_lset:
        XOR A
        PUSH AF
        CALL string_variable
        PUSH DE
        RST 08h
        DEFB TOKEN_EQUAL
        CALL eval_string
        EX (SP),HL
        LD B,(HL)
        INC HL
        PUSH AF
        LD A,(HL)
        INC HL
        LD H,(HL)
        LD L,A
        POP AF
        CP B
        JR C,_fits
        LD A,B
_fits:
        LD C,A
        LD A,B
        SUB C
        LD B,A                  ; B blanks, C characters
        POP IX
        POP AF
        PUSH IX                 ; text
        OR A
        LD A,C
        JR Z,_left
        LD A,B
_left:
        PUSH DE
        LD E,A
        LD D,0
        EX DE,HL
        ADD HL,DE               ; Z kept
        JR Z,_places
        EX DE,HL
_places:
        EX (SP),HL              ; DE to, HL from, where the blanks begin
        EX DE,HL
        LD A,C
        PUSH BC
        CALL move_bytes
        POP BC
        POP HL
        INC B
        JR _count
_blank:
        LD (HL),' '
        INC HL
_count:
        DJNZ _blank
        POP HL
        RET
