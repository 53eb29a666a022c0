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
        LD DE,ACC_LOW
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
        LD HL,ACC_LOW
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

; Copies the accumulator and its type to the left operand.
; Uses: AF, HL; BC, DE with doubles
acc_to_left:
        LD HL,(ACCUMULATOR)
        LD (LEFT_SINGLE),HL
        LD HL,(ACC_HIGH)
        LD (LEFT_HIGH),HL
        LD A,(NUMBER_TYPE)
        LD (LEFT_TYPE),A
        CP TYPE_DOUBLE
        RET NZ
        LD HL,ACC_LOW
        LD DE,LEFT
        JR copy_four

; Copies the left operand and its type to the accumulator.
; Uses: AF, BC, DE, HL
left_to_acc:
        LD A,(LEFT_TYPE)
        LD (NUMBER_TYPE),A
        LD HL,LEFT
        LD DE,ACC_LOW
        JR copy_eight

; Brings both operands to the greater type.
; Out:  flags of type - 4: C integer, Z single, NC double
; Uses: all
same_types:
        LD HL,LEFT_TYPE
        LD A,(NUMBER_TYPE)
        CP (HL)
        JR NZ,_differ
_compare:
        CP TYPE_SINGLE
        RET NC
        CP TYPE_STRING
        RET C
_mismatch:
        JP error_tm
_differ:
        CP TYPE_STRING
        JR Z,_mismatch
        LD B,A
        LD A,(HL)
        CP TYPE_STRING
        JR Z,_mismatch
        CP B
        JR C,_left
        CALL convert
        CP TYPE_SINGLE
        RET
_left:
        LD (HL),B               ; the left one's type is A, wanted is B
        PUSH BC
        CP TYPE_INTEGER
        CALL Z,left_to_single
        POP AF
        CP TYPE_DOUBLE
        JR NZ,_compare
        LD HL,0
        LD (LEFT),HL
        LD (LEFT + 2),HL
        JR _compare

left_to_single:
        LD HL,(LEFT_SINGLE)
        CALL float_integer
        LD (LEFT_SINGLE),HL
        LD (LEFT_HIGH),DE
        RET

; Accumulator to the numeric type A.
; Out:  A type
; Uses: all
convert:
        CP TYPE_DOUBLE
        JR Z,to_double
        JR NC,_mismatch
        CP TYPE_SINGLE
        JR Z,to_single
        CALL to_integer
        LD A,TYPE_INTEGER
        RET
_mismatch:
        JP error_tm

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
        LD (ACCUMULATOR),HL
        LD (ACC_HIGH),DE
set_single:
        LD A,TYPE_SINGLE
        LD (NUMBER_TYPE),A
        RET
double_to_single:
        LD HL,(ACC_HIGH)
        LD B,H
        LD A,B
        OR A
        JR Z,set_single
        LD A,L
        LD (SIGN),A
        OR 80h
        LD C,A
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
        LD D,BIAS + 16
        LD A,H
        OR A
        JR NZ,_normalize
        OR L
        LD D,A                  ; 0 when the number is 0
        LD E,A
        RET Z
        LD H,A
        LD L,0
        LD D,BIAS + 8
_normalize:
        BIT 7,H
        JR NZ,_done
_shift:
        DEC D
        ADD HL,HL
        BIT 7,H
        JR Z,_shift
_done:
        LD A,H
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
        CALL NC,low_bytes
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
        LD A,H
        OR L
        JR Z,_overflow
_negative:
        LD A,H
        OR L
        RET Z
        CALL negate_hl          ; carry clear only for 0
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

; The bytes of a double below a single, as one value that is 0 only if all are.
; In:   E
; Out:  E
; Uses: AF, HL
low_bytes:
        LD A,E
        LD HL,ACC_LOW
        OR (HL)
        INC L
        OR (HL)
        INC L
        OR (HL)
        INC L
        OR (HL)
        LD E,A
        RET
