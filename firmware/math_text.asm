; Text to number and back. The number stands as WIDE (ten bytes, lowest first) with WIDE_POINT of
; them, counted from the top, before the point. It begins in the bytes of its mantissa and
; grows downward.

SINGLE_DIGITS   EQU 6
DOUBLE_DIGITS   EQU 16

clear_wide:
        LD HL,WIDE_BELOW
        LD B,13
; B bytes from HL become 0.
clear_bytes:
        LD (HL),0
        INC HL
        DJNZ clear_bytes
        RET

; WIDE * 10 + C. It grows downward until all ten bytes are in use.
; Uses: AF, BC, DE, HL
wide_times_ten:
        LD DE,WIDE
        LD A,(WIDE_FIRST)
        LD E,A
        LD B,0
_byte:
        LD A,(DE)
        LD L,A
        LD H,B
        ADD HL,HL
        ADD HL,HL
        ADD A,L
        LD L,A
        JR NC,_five
        INC H
_five:
        ADD HL,HL
        ADD HL,BC
        LD A,L
        LD (DE),A
        LD C,H
        INC E
        LD A,E
        CP WIDE_POINT & 0FFh
        JR NZ,_byte
        LD A,C
        OR A
        RET Z
        LD HL,WIDE + 1
        LD DE,WIDE
        LD C,9
        LDIR
        LD (DE),A
        LD HL,WIDE_POINT
        INC (HL)
        INC HL                  ; WIDE_FIRST
        LD A,(HL)
        CP WIDE & 0FFh
        RET Z
        DEC (HL)
        RET

; WIDE / 10; its top byte must not be 0 and is not 0 after it.
; Uses: AF, BC, DE, HL
wide_over_ten:
        LD DE,WIDE_TOP
        LD H,0
        LD B,11
_byte:
        LD A,(DE)
        LD L,A
        LD C,8
_bit:
        ADD HL,HL
        LD A,H
        SUB 10
        JR C,_below
        LD H,A
        INC L
_below:
        DEC C
        JR NZ,_bit
        LD A,L
        LD (DE),A
        DEC DE
        DJNZ _byte
        LD A,(WIDE_TOP)
        OR A
        RET NZ
        LD HL,WIDE_TOP - 1
        LD DE,WIDE_TOP
        LD BC,10
        LDDR
        LD (DE),A
        LD HL,WIDE_POINT
        DEC (HL)
        RET

; Reads a number, with or without a sign: more than 7 digits or an exponent behind D make a double,
; a point, an exponent behind E or a value above 32767 a single; % ! # behind it decide.
; Seven digits are read into C':HL', more into WIDE.
; In:   HL text
; Out:  accumulator, HL behind the number
; Uses: all
parse_number:
        EXX
        LD HL,0
        LD C,L
        EXX
        LD BC,0                 ; B digits, C power of ten
        LD D,B                  ; 0 in a whole number
        DEC HL
        CALL number_sign        ; E sign, bit 0: digits stand in WIDE
        JR _test
_point:
        BIT 0,D
        JP NZ,_suffix
        INC D
_next:
        INC HL
        LD A,(HL)
        SUB '0'
        CP 10
        JR C,_value
        DEC HL
        CALL next_character
_test:
        JR C,_digit
        CP '.'
        JR Z,_point
        CP 'E'
        JR Z,_exponent
        CP 'D'
        JR Z,_exponent
        JR _suffix
_digit:
        SUB '0'
_value:
        OR A
        JR NZ,_counts
        CP B
        JR Z,_place             ; a leading 0
_counts:
        INC B
        BIT 3,B
        JR NZ,_long
        EXX
        LD B,A
        LD A,C
        LD D,H
        LD E,L
        ADD HL,HL
        ADC A,A
        ADD HL,HL
        ADC A,A
        ADD HL,DE
        ADC A,C
        ADD HL,HL
        ADC A,A
        LD E,B
        LD D,0
        ADD HL,DE
        ADC A,D
        LD C,A
        EXX
_place:
        LD A,C
        SUB D
        LD C,A
        JR _next
_long:
        EX AF,AF'
        BIT 0,B
        CALL Z,digits_to_wide   ; the eighth
        LD B,8
        EX AF,AF'
        EXX
        LD C,A
        CALL wide_times_ten
        EXX
        JR _place
_exponent:
        INC D
        SUB 'E'                 ; FF for D
        AND 8
        LD B,A                  ; digits that count: enough for a double, or not
        PUSH DE
        PUSH BC
        CALL number_sign
        LD B,0
        JR _figure
_figures:
        SUB '0'
        LD C,A
        LD A,B
        CP 10
        JR C,_small
        LD A,8                  ; 80 and more is too much anyway
_small:
        LD B,A
        ADD A,A
        ADD A,A
        ADD A,B
        ADD A,A
        ADD A,C
        LD B,A
        CALL next_character
_figure:
        JR C,_figures
        LD A,E
        OR A
        LD A,B
        JR Z,_upward
        NEG
_upward:
        POP BC
        POP DE
        ADD A,C
        LD C,A
_suffix:
        LD A,(HL)
        CP '#'
        LD IXL,TYPE_DOUBLE
        JR Z,_given
        LD IXL,TYPE_SINGLE
        CP '!'
        JR Z,_given
        CP '%'
        JR Z,_given
        BIT 3,B
        JR NZ,_double
        LD A,D
        OR A
        CALL _convert
        RET NZ
        LD A,(ACC_EXPONENT)
        CP BIAS + 16
        RET NC
_integer:
        PUSH HL
        CALL to_integer
        POP HL
        RET
_given:
        PUSH AF
        CALL next_character
        POP AF
        CALL _convert
        CP '%'
        RET NZ
        JR _integer
_double:
        LD IXL,TYPE_DOUBLE
_convert:
        PUSH AF
        PUSH HL
        LD A,IXL
        LD (NUMBER_TYPE),A
        LD A,E
        LD (SIGN),A
        CALL digits_to_number
        POP HL
        POP AF
        RET

; A sign, as a character or a token.
; In:   HL in front of it
; Out:  E 80 for a minus, else 0; HL, A and flags as next_character behind it
number_sign:
        LD E,0
        CALL next_character
        RET C
        CP '+'
        JR Z,_plus
        CP TOKEN_PLUS
        JR Z,_plus
        CP '-'
        JR Z,_minus
        CP TOKEN_MINUS
        JR Z,_minus
        OR A
        RET
_minus:
        LD E,80h
_plus:
        JP next_character

; The digits of C':HL' to WIDE.
; Out:  bit 0 of E set
; Uses: AF, B and the other registers
digits_to_wide:
        PUSH HL
        CALL clear_wide
        POP HL
        INC E
        EXX
        LD B,3
_up:
        LD A,C
        OR A
        JR NZ,_aligned
        LD C,H
        LD H,L
        LD L,A
        DJNZ _up
_aligned:
        LD (WIDE_TOP),A
        LD (WIDE_TOP - 2),HL
        LD L,B
        LD A,WIDE_POINT & 0FFh
        SUB B
        LD H,A
        LD (WIDE_POINT),HL
        EXX
        RET

; The digits times the power C of ten to the accumulator, with SIGN. Seven digits and a power that a
; single holds are multiplied or divided as singles.
; In:   E, IXL type
; Uses: all
digits_to_number:
        BIT 0,E
        JR NZ,_wide
        LD A,IXL
        CP TYPE_DOUBLE
        JR Z,_spread
        LD A,C
        ADD A,10
        CP 21
        JR NC,_spread
        PUSH BC
        EXX
        LD B,BIAS + 24
        XOR A
        CALL normalize_single
        POP DE
        OR A
        RET Z                   ; the digits are 0
        LD (LEFT_HIGH),BC
        LD (LEFT_SINGLE),HL
        LD A,E
        OR A
        RET Z
        PUSH AF
        JP M,_power
        NEG
_power:
        ADD A,A
        ADD A,A
        LD E,A
        LD D,-1
        LD HL,powers_end
        ADD HL,DE
        LD DE,ACCUMULATOR
        CALL copy_four
        POP AF
        JP M,single_divide
        JP single_multiply
_spread:
        CALL digits_to_wide
_wide:
        LD A,(WIDE_TOP)
        OR A
        JP Z,set_zero
_scale:
        LD A,C
        OR A
        JR Z,_scaled
        PUSH BC
        JP M,_down
        LD C,0
        CALL wide_times_ten
        POP BC
        DEC C
        JR _scale
_down:
        CALL wide_over_ten
        POP BC
        INC C
        JR _scale
_scaled:
        LD A,(WIDE_POINT)
        ADD A,15
        JP M,set_zero
        CP 32
        JR NC,_overflow
        ADD A,A
        ADD A,A
        ADD A,A
        ADD A,BIAS - 15 * 8     ; exponent, 0 for 256
        LD HL,NUMBER_TYPE
        BIT 3,(HL)
        JR NZ,_double
        LD B,A
        OR A
        LD HL,(WIDE_TOP - 2)
        LD A,(WIDE_TOP)
        LD C,A
        JR NZ,_fits
        OR A
        JP P,_fits
_overflow:
        JP error_ov
_fits:
        LD A,(WIDE_TOP - 3)
        JP normalize_single
_double:
        LD HL,WIDE + 2
        LD DE,ACC_GUARD
        CALL copy_eight
        JP finish_double

; 10 to the power of 10 down to 1.
        DEFB 0F9h, 2, 15h, 162
        DEFB 28h, 6Bh, 6Eh, 158
        DEFB 20h, 0BCh, 3Eh, 155
        DEFB 80h, 96h, 18h, 152
        DEFB 0, 24h, 74h, 148
        DEFB 0, 50h, 43h, 145
        DEFB 0, 40h, 1Ch, 142
        DEFB 0, 0, 7Ah, 138
        DEFB 0, 0, 48h, 135
        DEFB 0, 0, 20h, 132
powers_end:
