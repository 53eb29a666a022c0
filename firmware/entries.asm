; Published entries between the bottom and the graphics.

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
        LD A,2                  ; integer
        LD (NUMBER_TYPE),A
        RET

        fill_to 1A19h
        JP ready

        fill_to 28A7h
        JP print_text
