; 0A7F: the entries of USR routines.

; Argument of USR.
; Out:  HL
        fill_to 0A7Fh
        LD HL,(ACCUMULATOR)
        RET

; Result of USR.
; In:   HL
; Uses: AF
        fill_to 0A9Ah
        LD (ACCUMULATOR),HL
        LD A,TYPE_INTEGER
        LD (NUMBER_TYPE),A
        RET
