; 0A7F: the entries of USR routines, and what fits between them.

; Argument of USR. CINT: the greatest integer not above the accumulator.
; Out:  HL and the accumulator
; Uses: AF, BC, DE
        fill_to 0A7Fh
to_integer:
        CALL to_word
        JR NC,set_integer
        BIT 7,H
        JR Z,set_integer
        JP error_ov

negate_hl:
        XOR A
        SUB L
        LD L,A
        SBC A,A
        SUB H
        LD H,A
        RET

; Makes the accumulator an integer from A or HL, which is the result of USR.
; Uses: AF, HL
        fill_to 0A97h
set_byte:
        LD L,A
        LD H,0
set_integer:
        fill_to 0A9Ah
        LD (ACCUMULATOR),HL
        LD A,TYPE_INTEGER
        LD (NUMBER_TYPE),A
        RET
