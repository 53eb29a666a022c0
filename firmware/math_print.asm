; Number to text.

; Digits of the accumulator, a single or double but not 0, cut off, not rounded.
; Out:  DIGITS, FIRST_EXPONENT
; Uses: all but IY
make_digits:
        CALL clear_wide
        LD A,(NUMBER_TYPE)
        CP TYPE_DOUBLE
        LD HL,ACCUMULATOR
        LD DE,WIDE + 7
        LD BC,3
        LD A,WIDE + 3 & 0FFh
        LD IX,single_limits
        JR NZ,_copy
        LD L,ACC_LOW & 0FFh
        LD E,A
        LD C,7
        LD A,WIDE & 0FFh
        LD IX,double_limits
_copy:
        LD (WIDE_FIRST),A
        LDIR
        LD HL,WIDE_TOP
        SET 7,(HL)
        LD A,(ACC_EXPONENT)
        LD C,A
        ADD A,7
        RRA
        SRL A
        SRL A
        SUB BIAS / 8
        LD (WIDE_POINT),A
        XOR A
        SUB C
        AND 7
        JR Z,_aligned
        LD C,A
_shift:
        LD HL,WIDE_TOP
        LD B,10
        OR A
        CALL shift_bytes
        DEC C
        JR NZ,_shift
_aligned:
        LD A,(IX)
        LD (FIRST_EXPONENT),A
_down:
        LD BC,10
        CALL _compare
        JR C,_up
        CALL wide_over_ten
        LD HL,FIRST_EXPONENT
        INC (HL)
        JR _down
_up:
        LD BC,1
        CALL _compare
        JR NC,_convert
        LD C,0
        CALL wide_times_ten
        LD HL,FIRST_EXPONENT
        DEC (HL)
        JR _up
_convert:
        LD A,(IX)               ; bytes of digits
        INC A
        SRL A
        LD B,A
        LD IXL,A
        LD HL,DIGITS
_clear:
        LD (HL),0
        INC HL
        DJNZ _clear
        DEC HL
        LD DE,WIDE_TOP
        LD A,(WIDE_POINT)
        LD IXH,A
_byte:
        LD A,(DE)
        DEC DE
        SCF
        ADC A,A                 ; a 1 behind the last bit
        LD C,A
_bit:
        PUSH HL
        LD B,IXL
_double:
        LD A,(HL)
        ADC A,A
        DAA
        LD (HL),A
        DEC HL
        DJNZ _double
        POP HL
        SLA C
        JR NZ,_bit
        DEC IXH
        JR NZ,_byte
        RET
; Carry if WIDE is below the limit at IX + BC.
_compare:
        PUSH IX
        POP HL
        ADD HL,BC
        LD A,(WIDE_POINT)
        LD B,(HL)
        SUB B
        SCF
        RET M
        JR Z,_equal
        OR A
        RET
_equal:
        LD DE,WIDE_TOP
_next:
        INC HL
        LD A,(DE)
        CP (HL)
        RET NZ
        DEC DE
        DJNZ _next
        RET

; Digits made but one; bytes and value where they begin; the same, ten times as much.
single_limits:
        DEFB SINGLE_WORK - 1
        DEFB 3, 98h, 96h, 80h, 0, 0, 0, 0, 0
        DEFB 4, 05h, 0F5h, 0E1h, 00h
double_limits:
        DEFB DOUBLE_WORK - 1
        DEFB 8, 01h, 63h, 45h, 78h, 5Dh, 8Ah, 00h, 00h
        DEFB 8, 0Dh, 0E0h, 0B6h, 0B3h, 0A7h, 64h, 00h, 00h

; Rounds the digits to A of them, which may be 0 or below.
; Out:  DIGITS_VALID, at least 1 when it was rounded up to a power of ten
; Uses: AF, BC, E, HL
round_digits:
        OR A
        LD E,A
        JP P,_keep
        XOR A
_keep:
        LD (DIGITS_VALID),A
        BIT 7,E
        RET NZ
        SRL A
        LD C,A
        LD B,0
        LD HL,DIGITS
        ADD HL,BC
        LD B,C
        INC B
        LD A,50h
        BIT 0,E
        JR Z,_add
        LD A,05h
_add:
        ADD A,(HL)
        DAA
        LD (HL),A
        RET NC
        DEC HL
        LD A,1
        DJNZ _add
        INC HL
        LD (HL),10h
        LD HL,FIRST_EXPONENT
        INC (HL)
        INC HL                  ; DIGITS_VALID: the new 1 counts
        LD A,(HL)
        OR A
        RET NZ
        INC (HL)
        RET

; A digit as a character; 0 in front of the first and behind the last that counts.
; In:   C number of the digit
; Out:  A, C next
digit:
        LD A,C
        INC C
        OR A
        JP M,_none
        PUSH HL
        LD HL,DIGITS_VALID
        CP (HL)
        JR NC,_behind
        SRL A
        LD HL,DIGITS
        PUSH AF
        ADD A,L
        LD L,A
        POP AF
        LD A,(HL)
        JR C,_low
        RRCA
        RRCA
        RRCA
        RRCA
_low:
        AND 0Fh
        ADD A,'0'
        POP HL
        RET
_behind:
        POP HL
_none:
        LD A,'0'
        RET

; B digits, B not 0, from number C to HL.
put_digits:
        CALL digit
        LD (HL),A
        INC HL
        DJNZ put_digits
        RET

; Letter and exponent A to HL.
; Uses: AF, DE
put_exponent:
        LD E,A
        LD A,(NUMBER_TYPE)
        CP TYPE_DOUBLE
        LD A,'D'
        JR Z,_letter
        INC A
_letter:
        LD (HL),A
        INC HL
        LD A,E
        OR A
        LD D,'+'
        JP P,_sign
        NEG
        LD D,'-'
_sign:
        LD (HL),D
        INC HL
        LD D,'0' - 1
_ten:
        INC D
        SUB 10
        JR NC,_ten
        ADD A,10 + '0'
        LD (HL),D
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
        LD A,(NUMBER_TYPE)
        CP TYPE_SINGLE
        JR C,_whole
        LD HL,0
        LD A,(ACC_EXPONENT)
        OR A
        JR Z,_whole
        CP BIAS + 17
        JR NC,_digits
        CALL to_word
        LD A,E
        OR A
        JR Z,_whole
_digits:
        CALL make_digits
        LD A,(NUMBER_TYPE)
        CP TYPE_DOUBLE
        LD A,DOUBLE_DIGITS
        JR Z,_round
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
        DEC A
        JP P,_before
        INC A
        JR Z,_behind
        LD C,A
        JR _behind
_before:
        CALL put_digits
_behind:
        LD A,(DIGITS_VALID)
        SUB C
        JR Z,_exponent
        JP M,_exponent
        LD B,A
        LD (HL),'.'
        INC HL
        CALL put_digits
_exponent:
        POP AF
        LD A,(FIRST_EXPONENT)
        CALL NC,put_exponent
        LD (HL),0
        LD HL,NUMBER_TEXT
        RET
_whole:
        LD DE,NUMBER_TEXT + 1
        LD BC,-10000
        CALL _power
        LD BC,-1000
        CALL _power
        LD BC,-100
        CALL _power
        LD BC,-10
        CALL _power
        LD A,L
        ADD A,'0'
        LD (DE),A
        INC DE
        XOR A
        LD (DE),A
        LD HL,NUMBER_TEXT
        RET
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
