; Text to number and back. The number stands as WIDE (ten bytes, lowest first) with WIDE_POINT of
; them, counted from the top, before the point. Singles use the upper seven bytes only.

SINGLE_DIGITS   EQU 6
DOUBLE_DIGITS   EQU 16
FOUND_POINT     EQU 0           ; bits of D while a number is read
FOUND_LETTER    EQU 1

clear_wide:
        LD HL,WIDE
        LD B,12
; B bytes from HL become 0.
clear_bytes:
        LD (HL),0
        INC HL
        DJNZ clear_bytes
        RET

; WIDE * 10 + C.
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
        RET

; WIDE / 10; its top byte must not be 0 and is not 0 after it.
; Uses: AF, BC, DE, HL
wide_over_ten:
        LD DE,WIDE_TOP
        LD H,0
        LD B,11
_byte:
        LD L,0
        DEC B
        JR Z,_more
        INC B
        LD A,(DE)
        LD L,A
_more:
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
        LD A,B
        OR A
        JR Z,_last
        LD A,L
        LD (DE),A
        DEC DE
        DJNZ _byte
_last:
        LD A,(WIDE_TOP)
        OR A
        RET NZ
        LD A,L
; WIDE one byte up, A into the lowest.
wide_up:
        LD HL,WIDE_TOP - 1
        LD DE,WIDE_TOP
        LD BC,9
        LDDR
        LD (WIDE),A
        LD HL,WIDE_POINT
        DEC (HL)
        RET

; Reads a number, with or without a sign: more than 7 digits or an exponent behind D make a double,
; a point, an exponent behind E or a value above 32767 a single; % ! # behind it decide.
; In:   HL text
; Out:  accumulator, HL behind the number
; Uses: all
parse_number:
        PUSH HL
        CALL clear_wide
        LD A,WIDE & 0FFh
        LD (WIDE_FIRST),A
        LD A,10
        LD (WIDE_POINT),A
        POP HL
        LD BC,0                 ; B digits, C power of ten
        LD D,B
        DEC HL
        CALL number_sign        ; E sign
        JR _test
_point:
        BIT FOUND_POINT,D
        JR NZ,_suffix
        SET FOUND_POINT,D
_next:
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
        JR NZ,_counts
        CP B
        JR Z,_place             ; a leading 0
_counts:
        INC B
        EXX
        LD C,A
        CALL wide_times_ten
        EXX
_place:
        BIT FOUND_POINT,D
        JR Z,_next
        DEC C
        JR _next
_exponent:
        SET FOUND_LETTER,D
        SUB 'D'
        JR NZ,_letter
        LD B,100                ; as many digits as a double has at least
_letter:
        PUSH DE
        PUSH BC
        CALL number_sign
        LD B,0
        JR _figure
_figures:
        SUB '0'
        LD C,A
        LD A,B
        CP 11
        JR NC,_huge
        ADD A,A
        ADD A,A
        ADD A,B
        ADD A,A
        ADD A,C
        LD B,A
        JR _following
_huge:
        LD B,100
_following:
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
        LD A,B
        CP 100
        LD B,0
        JR C,_suffix
        LD B,8
_suffix:
        LD A,(HL)
        CP '#'
        LD IXL,TYPE_DOUBLE
        JR Z,_given
        CP '!'
        LD IXL,TYPE_SINGLE
        JR Z,_given
        CP '%'
        JR Z,_given
        LD A,B
        CP 8
        JR NC,_double
        LD A,D
        OR A
        JR NZ,_convert
        PUSH HL
        LD HL,(WIDE + 1)
        LD A,H
        LD H,L
        BIT 7,L
        JR NZ,_great
        OR A
        JR NZ,_great
        LD A,(WIDE)
        LD L,A
        LD A,(WIDE + 3)
        OR A
        JR NZ,_great
        BIT 7,E
        CALL NZ,negate_hl
        CALL set_integer
        POP HL
        RET
_great:
        POP HL
        JR _convert
_double:
        LD IXL,TYPE_DOUBLE
        JR _convert
_given:
        PUSH AF
        CALL next_character
        POP AF
        CALL _convert
        CP '%'
        RET NZ
        PUSH HL
        CALL to_integer
        POP HL
        RET
_convert:
        PUSH AF
        PUSH HL
        LD A,IXL
        LD (NUMBER_TYPE),A
        LD A,E
        LD (SIGN),A
        CALL wide_to_number
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

; WIDE times the power C of ten to the accumulator of NUMBER_TYPE, with SIGN.
; Uses: all
wide_to_number:
        LD B,10
_normalize:
        LD A,(WIDE_TOP)
        OR A
        JR NZ,_scale
        PUSH BC
        CALL wide_up
        POP BC
        DJNZ _normalize
        JP set_zero
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
        LD D,C                  ; 0
        JR _test
_bit:
        INC D
        LD HL,WIDE
        LD B,10
        OR A
        CALL shift_left_bytes
_test:
        LD A,(WIDE_TOP)
        OR A
        JP P,_bit
        LD A,(WIDE_POINT)
        CP 17
        JP M,_fits
        JP error_ov
_fits:
        CP -15
        JP M,set_zero
        ADD A,A
        ADD A,A
        ADD A,A
        SUB D
        ADD A,BIAS
        JP Z,error_ov
        LD B,A
        LD A,(NUMBER_TYPE)
        CP TYPE_DOUBLE
        JR Z,_double
        LD HL,(WIDE_TOP - 2)
        LD A,(WIDE_TOP)
        LD C,A
        LD A,(WIDE_TOP - 3)
        JP round_single
_double:
        LD A,B
        LD (ACC_EXPONENT),A
        LD HL,WIDE + 2
        LD DE,ACC_GUARD
        CALL copy_eight
        JP round_double
