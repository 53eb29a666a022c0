; PRINT USING.

USING_EXPONENT  EQU 0           ; flags of a field
USING_BEHIND    EQU 2
USING_PLUS      EQU 3
USING_DOLLAR    EQU 4
USING_ASTERISKS EQU 5
USING_COMMAS    EQU 6
USING_SIGNS     EQU 1 << USING_BEHIND | 1 << USING_PLUS
USING_SINGLE    EQU 7           ; most digits that are not 0

; The accumulator in a field. The sign takes one of the places before the point when nothing else
; is said; the dollar sign, a plus in front and a sign behind take one of their own.
; In:   D flags, E places before the point with those for commas, IYL places behind it plus 1 or 0
; Out:  HL text, ended by 0
; Uses: all
format_using:
        CALL num_sign
        LD A,'-'                ; the sign that is shown: minus, plus, blank, or none
        JP M,_sign
        LD A,'+'
        BIT USING_PLUS,D
        JR NZ,_sign
        LD A,' '
        BIT USING_BEHIND,D
        JR NZ,_sign
        XOR A
_sign:
        LD IYH,A
        EXX                     ; flags and places wait there
        CALL num_abs
        RST 20h
        CALL M,to_single
        CALL make_digits
        EXX
        LD C,0                  ; number of the first digit shown
        LD A,IYL
        SUB 1
        ADC A,C
        LD B,A                  ; places behind the point
        BIT USING_EXPONENT,D
        JR NZ,_scientific
        LD A,(FIRST_EXPONENT)
        INC A
        ADD A,B
        CALL round_digits
        LD A,(FIRST_EXPONENT)
        INC A
        LD L,A                  ; digits before the point
        JP P,_before
        LD C,A
        LD L,0
_before:
        LD A,E
        SUB L
        LD H,A                  ; what is left before them
        BIT USING_COMMAS,D
        JR Z,_room
        LD A,L
        DEC A
_thousand:
        SUB 3
        JP M,_room
        DEC H
        JR _thousand
_scientific:
        LD A,D
        AND 1 << USING_PLUS | 1 << USING_BEHIND | 1 << USING_EXPONENT
        LD D,A
        DEC A                   ; the exponent alone: a place is for the sign
        LD L,E
        LD H,0
        JR NZ,_all
        LD A,E
        OR A
        JR Z,_all
        DEC L
        INC H
_all:
        LD A,L
        ADD A,B
        PUSH HL
        CALL round_digits
        POP HL
_room:
        LD A,D
        AND USING_SIGNS
        JR NZ,_own_place
        OR IYH
        JR Z,_own_place
        DEC H
_own_place:
        LD A,D
        RRA
        LD A,L
        JR C,_start
        OR A
        JR NZ,_start
        LD A,H
        DEC A
        JP M,_start             ; no room for a 0 before the point
        LD H,A
        INC L
        DEC C
_start:
        LD A,H
        LD E,L
        LD HL,NUMBER_TEXT
        OR A
        JP P,_fits
        LD (HL),'%'
        INC HL
        XOR A
_fits:
        INC A
_filler:
        DEC A
        JR Z,_front
        LD (HL),' '
        BIT USING_ASTERISKS,D
        JR Z,_filled
        LD (HL),'*'
_filled:
        INC HL
        JR _filler
_front:
        BIT USING_BEHIND,D
        CALL Z,using_sign
        BIT USING_DOLLAR,D
        JR Z,_digits
        LD (HL),'$'
        INC HL
_digits:
        LD B,E
        INC B
        JR _next
_digit:
        CALL digit
        LD (HL),A
        INC HL
        BIT USING_COMMAS,D
        JR Z,_next
        LD A,B
        DEC A
        JR Z,_next
_modulo:
        SUB 3
        JR C,_next
        JR NZ,_modulo
        LD (HL),','
        INC HL
_next:
        DJNZ _digit
        LD A,IYL
        SUB 1
        LD B,A
        CALL NC,put_fraction
        BIT USING_EXPONENT,D
        JR Z,_end
        LD A,(ACC_EXPONENT)
        OR A
        JR Z,_exponent
        LD A,(FIRST_EXPONENT)
        INC A
        SUB E
_exponent:
        CALL put_exponent
_end:
        BIT USING_BEHIND,D
        CALL NZ,using_sign
        JP end_number

; The sign, if one is shown.
using_sign:
        LD A,IYH
        OR A
        RET Z
        LD (HL),A
        INC HL
        RET
