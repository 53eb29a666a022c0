; Numbers: moves, types, whole numbers. A single is worked on as C:HL (mantissa with its
; leading 1), B exponent, A the 8 bits below the mantissa, SIGN bit 7.

; Copies the value at HL of NUMBER_TYPE into the accumulator; a string's is its address.
; Uses: AF, BC, DE, HL
acc_from_hl:
        LD A,(NUMBER_TYPE)
        LD DE,ACCUMULATOR
        CP TYPE_SINGLE
        JR C,from_hl_small
        JR Z,copy_four
        LD E,ACC_LOW & 0FFh
copy_eight:
        LDI
        LDI
        LDI
        LDI
copy_four:
        LDI
        LDI
        LDI
        LDI
        RET
from_hl_small:
        CP TYPE_STRING
        JR C,copy_two
        LD (ACCUMULATOR),HL
        RET

; Copies the accumulator to HL by NUMBER_TYPE; of a string the three bytes of its descriptor.
; Out:  DE behind the copy
; Uses: AF, BC, HL
acc_to_hl:
        EX DE,HL
        LD A,(NUMBER_TYPE)
        LD HL,ACCUMULATOR
        CP TYPE_SINGLE
        JR C,_small
        JR Z,copy_four
        LD L,ACC_LOW & 0FFh
        JR copy_eight
_small:
        CP TYPE_STRING
        JR C,copy_two
        LD HL,(ACCUMULATOR)
        LDI
copy_two:
        LDI
        LDI
        RET

; Copies the left operand and its type to the accumulator.
; Uses: AF, BC, DE, HL
left_to_acc:
        LD A,(LEFT_TYPE)
        LD (NUMBER_TYPE),A
        LD HL,LEFT
        LD DE,ACC_LOW
        JR copy_eight

; Brings both operands to the greater type. The left one is no string.
; Out:  flags of type - 4: C integer, Z single, NC double
; Uses: all
same_types:
        LD HL,LEFT_TYPE
        LD A,(NUMBER_TYPE)
        CP (HL)
        JR NZ,_differ
_flags:
        CP TYPE_SINGLE
        RET
_differ:
        CP TYPE_STRING
        JP Z,error_tm
        CP (HL)
        JR C,_right
        LD B,(HL)
        LD (HL),A
        DEC B
        DJNZ _single
        PUSH AF                 ; from 2, an integer
        CALL left_to_single
        POP AF
_single:
        CP TYPE_SINGLE
        RET Z
        LD HL,0
        LD (LEFT),HL
        LD (LEFT + 2),HL
        RET
_right:
        BIT 2,(HL)
        JR Z,_double
        LD HL,(ACCUMULATOR)
        CALL acc_single_from_hl
        JR _flags
_double:
        CALL to_double
        JR _flags

left_to_single:
        LD HL,(LEFT_SINGLE)
        CALL float_integer
        LD (LEFT_SINGLE),HL
        LD (LEFT_HIGH),DE
        RET

; Both operands from integers to singles.
; Uses: AF, C, DE, HL
both_single:
        CALL left_to_single
        LD A,TYPE_SINGLE
        LD (LEFT_TYPE),A
        LD HL,(ACCUMULATOR)
        JR acc_single_from_hl

; CDBL
; Out:  A type
; Uses: all
to_double:
        LD A,(NUMBER_TYPE)
        CP TYPE_DOUBLE
        RET Z
        CALL to_single
        LD HL,0
        LD (ACC_LOW),HL
        LD (ACC_LOW + 2),HL
        LD A,TYPE_DOUBLE
        LD (NUMBER_TYPE),A
        RET

; CSNG, rounded.
; Out:  A type
; Uses: all
to_single:
        LD A,(NUMBER_TYPE)
        CP TYPE_SINGLE
        RET Z
        JR NC,double_to_single
        CP TYPE_STRING
        JP Z,error_tm
        LD HL,(ACCUMULATOR)
acc_single_from_hl:
        CALL float_integer
store_single:
        LD (ACCUMULATOR),HL
        LD (ACC_HIGH),DE
set_single:
        LD A,TYPE_SINGLE
        LD (NUMBER_TYPE),A
        RET
double_to_single:
        LD BC,(ACC_HIGH)
        INC B
        DEC B
        JR Z,set_single
        LD A,C
        LD (SIGN),A
        SET 7,C
        LD HL,(ACCUMULATOR)
        LD A,(ACCUMULATOR - 1)
        JP round_single

; Integer to packed single.
; In:   HL
; Out:  DE:HL, exponent in D
; Uses: AF, C
float_integer:
        LD A,H
        AND 80h
        LD C,A
        CALL NZ,negate_hl
; The same for HL without a sign, C the sign bit.
float_word:
        LD A,H
        LD D,BIAS + 16
        OR A
        JR NZ,_normalize
        OR L
        LD D,A                  ; 0 when the number is 0
        LD E,A
        RET Z
        LD L,H
        LD D,BIAS + 8
_normalize:
        JP M,_done              ; A:L, by A's sign
_shift:
        DEC D
        SLA L
        ADC A,A
        JP P,_shift
_done:
        AND 7Fh
        OR C
        LD E,A
        LD H,L
        LD L,0
        RET

; -32768 to 65535 as a 16-bit address.
; Out:  DE
; Uses: AF, BC, HL
to_address:
        CALL to_word
        EX DE,HL
        RET

; Greatest whole number not above the accumulator, -32768 to 65535.
; Out:  HL its low 16 bits, carry if positive and not from an integer
; Uses: AF, BC, DE
to_word:
        LD A,(NUMBER_TYPE)
        LD HL,(ACCUMULATOR)
        CP TYPE_STRING
        CCF
        RET NC
        JP Z,error_tm
        LD E,L                  ; the bits that fall away
        CP TYPE_DOUBLE
        JR C,_single
        LD A,E
        LD HL,ACC_LOW
        LD B,4
_below:
        OR (HL)
        INC HL
        DJNZ _below
        LD E,A
_single:
        LD HL,(ACC_HIGH - 1)
        LD C,H
        SET 7,H
        LD A,(ACC_EXPONENT)
        SUB BIAS + 17
        JR NC,_overflow
        CPL                     ; places to the right
        CP 16
        JR NC,_fraction
        SUB 8
        JR C,_bits
        LD D,A
        LD A,L
        OR E
        LD E,A
        LD L,H
        LD H,0
        LD A,D
        SUB 8
_bits:
        ADD A,8
        JR Z,_shifted
        LD B,A
_shift:
        SRL H
        RR L
        JR NC,_clear
        LD E,B                  ; not 0
_clear:
        DJNZ _shift
_shifted:
        LD A,C
        RLA
        CCF
        RET C
        LD A,E
        OR A
        JR Z,_negative
        INC HL
_negative:
        CALL negate_hl          ; 0 here stands for 65536
        OR A
        RET M
_overflow:
        JP error_ov
_fraction:
        LD HL,0
        LD A,(ACC_EXPONENT)
        LD E,A                  ; 0 for zero only
        OR A
        RET Z
        JR _shifted
