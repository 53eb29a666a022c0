; Number to text.

; Digits of the accumulator, a single or double, cut off, not rounded; 0 has only digits behind the
; point. The number is scaled until its whole part fills as many bytes as the type has and the top
; one is below 10, which leaves 8 digits of a single or 17 of a double at least.
; Out:  DIGITS, FIRST_EXPONENT
; Uses: AF, BC, DE, HL, IX
make_digits:
        LD A,(NUMBER_TYPE)
        LD IXL,A                ; 4 or 8
        INC A
        LD B,A
        LD HL,DIGITS
        CALL clear_bytes
        CALL clear_wide
        LD A,(ACC_EXPONENT)
        SUB 1
        LD (FIRST_EXPONENT),A
        RET C
        LD A,IXL
        DEC A
        LD C,A                  ; B is 0
        LD HL,ACC_HIGH
        LD DE,WIDE_TOP
        LDDR
        LD A,E
        LD (WIDE_FIRST),A
        LD HL,WIDE_TOP
        SET 7,(HL)
        LD A,(ACC_EXPONENT)
        DEC A
        LD C,A
_shift:
        LD A,C
        CPL
        AND 7
        JR Z,_aligned
        INC C
        LD HL,WIDE_TOP
        LD B,10
        CALL shift_bytes
        JR _shift
_aligned:
        LD A,C
        RRCA
        RRCA
        RRCA
        AND 1Fh
        SUB BIAS / 8 - 1
        LD (WIDE_POINT),A
        LD A,IXL
        ADD A,A
        INC A
        LD (FIRST_EXPONENT),A
_down:
        LD HL,(WIDE_TOP)        ; H: WIDE_POINT
        LD A,L
        CP 10
        LD A,H
        SBC A,IXL
        JP M,_up
        CALL wide_over_ten
        LD HL,FIRST_EXPONENT
        INC (HL)
        JR _down
_up:
        LD A,(WIDE_POINT)
        SUB IXL
        JP P,_convert
        LD C,0
        CALL wide_times_ten
        LD HL,FIRST_EXPONENT
        DEC (HL)
        JR _up
_convert:
        LD A,IXL
        ADD A,DIGITS & 0FFh
        LD L,A
        LD H,DIGITS / 256
        LD DE,WIDE_TOP
        LD A,(DE)
        LD (HL),A               ; a digit already
        LD IXH,2                ; one byte of digits more with each byte of the number
        DEC IXL
_byte:
        INC IXH
        DEC DE
        LD A,(DE)
        SCF
        ADC A,A                 ; a 1 behind the last bit
        LD C,A
_bit:
        PUSH HL
        LD B,IXH
_double:
        LD A,(HL)
        ADC A,A
        DAA
        LD (HL),A
        DEC L
        DJNZ _double
        POP HL
        SLA C
        JR NZ,_bit
        DEC IXL
        JR NZ,_byte
_left:
        LD A,(DIGITS)           ; the first digit on top
        CP 10h
        RET NC
        PUSH HL
        LD B,IXH
        XOR A
_digit:
        RLD
        DEC L
        DJNZ _digit
        LD HL,FIRST_EXPONENT
        DEC (HL)
        POP HL
        JR _left

; Rounds the digits to A of them, which may be 0 or below, and to as many as the type has at most.
; Out:  DIGITS_VALID, at least 1 when it was rounded up to a power of ten
; Uses: AF, B, HL
round_digits:
        LD HL,DIGITS_VALID
        LD (HL),0
        OR A
        RET M
        LD B,A
        RST 20h
        LD A,DOUBLE_DIGITS
        JR NC,_most
        LD A,USING_SINGLE
_most:
        CP B
        JR C,_valid
        LD A,B
_valid:
        LD (HL),A
        ADD A,2 * (DIGITS & 0FFh)
        SRL A
        LD L,A
        LD A,50h
        JR NC,_add
        LD A,05h
_add:
        ADD A,(HL)
        DAA
        LD (HL),A
        RET NC
        DEC L
        LD A,L
        CP (DIGITS & 0FFh) - 1
        LD A,1
        JR NZ,_add
        INC L
        LD (HL),10h
        LD L,FIRST_EXPONENT & 0FFh
        INC (HL)
        INC L                   ; DIGITS_VALID: the new 1 counts
        LD A,(HL)
        OR A
        RET NZ
        INC (HL)
        RET

; A digit as a character; 0 in front of the first and behind the last that counts.
; In:   C number of the digit
; Out:  A, C next
digit:
        PUSH HL
        LD HL,DIGITS_VALID
        LD A,C
        INC C
        CP (HL)
        JR NC,_none             ; or below 0
        ADD A,2 * (DIGITS & 0FFh)
        SRL A
        LD L,A
        LD A,(HL)
        JR C,_low
        RRCA
        RRCA
        RRCA
        RRCA
_low:
        AND 0Fh
        DEFB 0FEh               ; CP n
_none:
        XOR A
        ADD A,'0'
        POP HL
        RET

; The point and B digits, from number C, to HL.
put_fraction:
        LD (HL),'.'
        INC HL
; B digits from number C to HL.
put_digits:
        INC B
        JR _test
_digit:
        CALL digit
        LD (HL),A
        INC HL
_test:
        DJNZ _digit
        RET

; Letter and exponent A to HL.
; Uses: AF, B
put_exponent:
        LD B,A
        RST 20h
        LD A,'D'
        ADC A,0                 ; E of a single
        LD (HL),A
        INC HL
        LD (HL),'+'
        LD A,B
        OR A
        JP P,_sign
        NEG
        LD (HL),'-'
_sign:
        INC HL
        LD (HL),'0' - 1
_ten:
        INC (HL)
        SUB 10
        JR NC,_ten
        ADD A,10 + '0'
        INC HL
        LD (HL),A
        INC HL
        RET

; The accumulator as PRINT shows it: a blank or minus and the digits.
; Out:  HL text, ended by 0; the accumulator has lost its sign
; Uses: all
format_number:
        CALL num_sign
        LD HL,NUMBER_TEXT
        LD (HL),' '
        JP P,_positive
        LD (HL),'-'
_positive:
        CALL num_abs
        LD HL,(ACCUMULATOR)
        RST 20h
        JP M,_whole
        LD A,(ACC_EXPONENT)
        CP BIAS + 17
        JR NC,_digits
        CALL to_word
        LD A,E
        OR A
        JR NZ,_digits
_whole:
        LD DE,NUMBER_TEXT + 1
        LD BC,-10000
        CALL _power
        LD BC,-1000
        CALL _power
        LD BC,-100
        CALL _power
        LD C,-10 & 0FFh
        CALL _power
        LD A,L
        ADD A,'0'
        LD (DE),A
        INC DE
        EX DE,HL
        JR end_number
_power:
        LD A,'0' - 1
_count:
        INC A
        ADD HL,BC
        JR C,_count
        SBC HL,BC
        CP '0'
        JR NZ,_put
        LD A,E
        CP NUMBER_TEXT + 1 & 0FFh
        RET Z
        LD A,'0'
_put:
        LD (DE),A
        INC DE
        RET
_digits:
        CALL make_digits
        RST 20h
        LD A,DOUBLE_DIGITS
        JR NC,_round
        LD A,SINGLE_DIGITS
_round:
        PUSH AF
        CALL round_digits
        LD HL,DIGITS_VALID
_trim:
        LD C,(HL)
        DEC C
        CALL digit
        CP '0'
        JR NZ,_trimmed
        DEC (HL)
        JR _trim
_trimmed:
        POP BC
        INC B
        INC B
        LD HL,NUMBER_TEXT + 1
        LD C,0
        LD A,(FIRST_EXPONENT)
        ADD A,2
        CP B
        PUSH AF                 ; NC: with an exponent
        LD B,1
        JR NC,_before
        DEC A
        LD B,A                  ; digits before the point
        JP P,_before
        LD C,A
        JR _behind
_before:
        CALL put_digits
_behind:
        LD A,(DIGITS_VALID)
        SUB C
        LD B,A
        DEC A
        JP M,_exponent
        CALL put_fraction
_exponent:
        POP AF
        LD A,(FIRST_EXPONENT)
        CALL NC,put_exponent
end_number:
        LD (HL),0
        LD HL,NUMBER_TEXT
        RET
