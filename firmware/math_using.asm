; PRINT USING.

USING_EXPONENT    EQU 0           ; flags of a field
USING_BEHIND      EQU 2
USING_PLUS        EQU 3
USING_DOLLAR      EQU 4
USING_ASTERISKS   EQU 5
USING_COMMAS      EQU 6
FIELD_FLAGS     EQU WIDE        ; while the text is made
FIELD_BEFORE    EQU WIDE + 1
FIELD_BEHIND    EQU WIDE + 2
FIELD_SIGN      EQU WIDE + 3
USING_SINGLE    EQU 7           ; most digits that are not 0

; The accumulator in a field. The sign takes one of the places before the point when nothing else
; is said; the dollar sign, a plus in front and a sign behind take one of their own.
; In:   A flags, B places before the point with those for commas, C places behind it plus 1 or 0
; Out:  HL text, ended by 0
; Uses: all
format_using:
        PUSH BC
        PUSH AF
        CALL num_sign
        LD A,'-'
        JP M,_sign
        XOR A
_sign:
        PUSH AF
        CALL num_abs
        LD A,(NUMBER_TYPE)
        CP TYPE_SINGLE
        CALL C,to_single
        LD A,(ACC_EXPONENT)
        OR A
        JR Z,_zero
        CALL make_digits
        JR _made
_zero:
        LD (FIRST_EXPONENT),A
        LD HL,DIGITS
        LD B,9
_clear:
        LD (HL),A
        INC HL
        DJNZ _clear
_made:
        POP BC
        POP AF
        POP DE
        LD C,A                  ; C flags, B sign, D and E places
        LD HL,FIELD_FLAGS
        LD (HL),C
        INC HL
        LD (HL),D
        INC HL
        LD (HL),E
        INC HL
        LD A,B                  ; the sign that is shown: minus, plus, blank, or none
        OR A
        JR NZ,_known
        BIT USING_PLUS,C
        LD A,'+'
        JR NZ,_known
        BIT USING_BEHIND,C
        LD A,' '
        JR NZ,_known
        XOR A
_known:
        LD (HL),A
        LD A,E
        OR A
        JR Z,_places
        DEC A
_places:
        LD E,A                  ; places behind the point
        BIT USING_EXPONENT,C
        JP NZ,_scientific
        LD A,(FIRST_EXPONENT)
        INC A
        ADD A,E
        CALL using_round
        LD A,(FIRST_EXPONENT)
        INC A
        JP P,_before
        XOR A
_before:
        LD C,A                  ; digits before the point
        LD HL,FIELD_FLAGS
        LD D,0
        BIT USING_COMMAS,(HL)
        JR Z,_room
        SUB 1
        JR C,_room
_thousand:
        SUB 3
        JR C,_room
        INC D
        JR _thousand
_room:
        INC HL
        LD A,(HL)
        SUB C
        SUB D
        LD B,A                  ; what is left before them
        DEC HL
        LD A,(HL)
        AND 1 << USING_BEHIND | 1 << USING_PLUS
        JR NZ,_own_place
        LD A,(FIELD_SIGN)
        OR A
        JR Z,_own_place
        DEC B
_own_place:
        LD A,C
        OR A
        JR NZ,_start
        LD A,B
        DEC A
        JP M,_start             ; no room for a 0 before the point
        LD B,A
        INC C
_start:
        LD HL,NUMBER_TEXT
        LD A,B
        OR A
        JP P,_fits
        LD (HL),'%'
        INC HL
        LD B,0
_fits:
        LD A,(FIELD_FLAGS)
        BIT USING_ASTERISKS,A
        LD A,' '
        JR Z,_fill
        LD A,'*'
_fill:
        INC B
        JR _filled
_filler:
        LD (HL),A
        INC HL
_filled:
        DJNZ _filler
        CALL using_front
        LD A,(FIELD_FLAGS)
        BIT USING_DOLLAR,A
        JR Z,_digits
        LD (HL),'$'
        INC HL
_digits:
        LD B,C
        LD A,(FIRST_EXPONENT)
        INC A
        SUB B
        LD C,A                  ; number of the first digit shown
        INC B
        DEC B
        JR Z,_point
_digit:
        CALL digit
        LD (HL),A
        INC HL
        DEC B
        JR Z,_point
        LD A,(FIELD_FLAGS)
        BIT USING_COMMAS,A
        JR Z,_digit
        LD A,B
_modulo:
        SUB 3
        JR Z,_comma
        JR NC,_modulo
        JR _digit
_comma:
        LD (HL),','
        INC HL
        JR _digit
_point:
        CALL using_fraction
        JR using_end
_scientific:
        LD A,C                  ; places for digits: all but that of a sign
        AND 1 << USING_BEHIND | 1 << USING_PLUS
        LD A,D
        JR NZ,_all
        SUB 1
        ADC A,0
_all:
        LD D,A
        ADD A,E
        PUSH DE
        CALL using_round
        POP DE
        LD HL,NUMBER_TEXT
        LD A,(FIELD_BEFORE)
        SUB D
        JR Z,_signed
        LD A,(FIELD_SIGN)
        OR A
        JR NZ,_signed
        LD (HL),' '
        INC HL
_signed:
        CALL using_front
        LD C,0
        LD B,D
        LD A,D
        OR A
        CALL NZ,put_digits
        PUSH DE
        CALL using_fraction
        POP DE
        LD A,(ACC_EXPONENT)
        OR A
        JR Z,_exponent
        LD A,(FIRST_EXPONENT)
        INC A
        SUB D
_exponent:
        CALL put_exponent
using_end:
        LD A,(FIELD_FLAGS)
        BIT USING_BEHIND,A
        JR Z,_end
        LD A,(FIELD_SIGN)
        LD (HL),A
        INC HL
_end:
        LD (HL),0
        LD HL,NUMBER_TEXT
        RET

; Rounds to A digits, as many as the type has at most.
using_round:
        OR A
        JP M,round_digits
        LD B,A
        LD A,(NUMBER_TYPE)
        CP TYPE_DOUBLE
        LD A,DOUBLE_DIGITS
        JR Z,_limit
        LD A,USING_SINGLE
_limit:
        CP B
        JP C,round_digits
        LD A,B
        JP round_digits

; The sign, where it stands in front.
using_front:
        LD A,(FIELD_FLAGS)
        BIT USING_BEHIND,A
        RET NZ
        LD A,(FIELD_SIGN)
        OR A
        RET Z
        LD (HL),A
        INC HL
        RET

; The point and the places behind it, from digit number C.
using_fraction:
        LD A,(FIELD_BEHIND)
        OR A
        RET Z
        LD (HL),'.'
        INC HL
        DEC A
        RET Z
        LD B,A
        JP put_digits
