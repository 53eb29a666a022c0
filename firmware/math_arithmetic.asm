; Numbers: signs, FIX and INT, the four operations, comparison.

; Compares LEFT with the accumulator.
; Out:  A FF, 0, 1 and flags S, Z for LEFT <, =, > accumulator
; Uses: all
num_compare:
        CALL same_types
        JR Z,compare_single
        LD B,8
        JR NC,compare_floats
        LD HL,(LEFT_SINGLE)
        LD DE,(ACCUMULATOR)
        OR A
        SBC HL,DE
        JR Z,_equal
        LD A,H
        JP PO,sign_result
        CPL
        JR sign_result
_equal:
        XOR A
        RET
compare_single:
        LD B,4
compare_floats:
        LD HL,(ACC_HIGH)
        LD A,H
        OR A
        LD HL,(LEFT_HIGH)
        JR Z,_right_zero
        INC H
        DEC H
        LD A,(ACC_HIGH)
        JR Z,_opposite
        XOR L
        LD A,L
        JP M,_by_sign
        LD C,L
        LD HL,ACC_EXPONENT
        LD DE,LEFT_EXPONENT
_byte:
        LD A,(DE)
        CP (HL)
        JR NZ,_unequal
        DEC HL
        DEC DE
        DJNZ _byte
        XOR A
        RET
_unequal:
        SBC A,A                 ; FF if the left magnitude is smaller
        XOR C
        JR _by_sign
_right_zero:
        LD A,H
        OR A
        RET Z
        LD A,L
        JR _by_sign
_opposite:
        CPL
_by_sign:
; FF or 1 by bit 7 of A.
sign_result:
        ADD A,A
        SBC A,A
        OR 1
        RET

; SGN of the accumulator.
; Out:  A FF, 0 or 1, flags S and Z
; Uses: HL
num_sign:
        LD A,(NUMBER_TYPE)
        CP TYPE_STRING
        JR C,_integer
        JP Z,error_tm
        LD HL,(ACC_HIGH)
        LD A,H
        OR A
        RET Z
        LD A,L
        JR sign_result
_integer:
        LD HL,(ACCUMULATOR)
        LD A,H
        OR L
        RET Z
        LD A,H
        JR sign_result

; ABS
; Uses: all
num_abs:
        CALL num_sign
        RET P
; Changes the sign of the accumulator.
; Uses: AF, BC, DE, HL
num_negate:
        CALL check_number
        JR NC,flip_sign
        LD HL,(ACCUMULATOR)
        CALL negate_hl
        JP PO,set_integer
        CALL acc_single_from_hl ; -32768
flip_sign:
        LD HL,ACC_HIGH
        LD A,(HL)
        XOR 80h
        LD (HL),A
        RET

; FIX: cuts the places behind the point.
; Out:  E not 0 if there were any
; Uses: AF, BC, HL
num_fix:
        LD E,0
        CALL check_number
        RET C
        LD HL,ACCUMULATOR
        LD C,24
        CP TYPE_DOUBLE
        JR NZ,_count
        LD L,ACC_LOW & 0FFh
        LD C,56
_count:
        LD A,(ACC_EXPONENT)
        OR A
        RET Z
        SUB BIAS + 1
        JR C,_fraction
        CPL
        ADD A,C                 ; bits to clear
        RET NC
_bytes:
        SUB 8
        JR C,_bits
        LD C,A
        LD A,E
        OR (HL)
        LD E,A
        LD (HL),0
        INC HL
        LD A,C
        JR _bytes
_bits:
        ADD A,8
        RET Z
        LD B,A
        XOR A
_mask:
        SCF
        RLA
        DJNZ _mask
        AND (HL)
        LD C,A
        OR E
        LD E,A
        LD A,(HL)
        XOR C
        LD (HL),A
        RET
_fraction:
        XOR A
        LD (ACC_EXPONENT),A
        INC E
        RET

; INT: greatest whole number not above.
; Uses: all
num_int:
        LD A,(ACC_HIGH)
        LD D,A
        CALL num_fix
        BIT 7,D
        RET Z
        LD A,E
        OR A
        RET Z
        LD A,(NUMBER_TYPE)
        LD (LEFT_TYPE),A
        LD HL,ACC_LOW
        LD DE,LEFT
        CALL copy_eight
        LD HL,-1
        CALL set_integer
; LEFT + accumulator
; Uses: all, of this and the next three
num_add:
        CALL same_types
add_values:
        JP Z,single_add
        JP NC,double_add
        LD HL,(LEFT_SINGLE)
        LD DE,(ACCUMULATOR)
        OR A
        ADC HL,DE
        JP PO,store_integer
        CALL both_single
        JP single_add
store_integer:
        LD (ACCUMULATOR),HL
        RET

; LEFT - accumulator
num_subtract:
        CALL same_types
        JR NC,_negate
        LD HL,(LEFT_SINGLE)
        LD DE,(ACCUMULATOR)
        OR A
        SBC HL,DE
        JP PO,store_integer
        CALL both_single
        CP A
_negate:
        EX AF,AF'
        CALL flip_sign
        EX AF,AF'
        JR add_values

; LEFT * accumulator
num_multiply:
        CALL same_types
        JP Z,single_multiply
        JP NC,double_multiply
        LD HL,(LEFT_SINGLE)
        LD DE,(ACCUMULATOR)
        LD A,H
        XOR D
        PUSH AF
        BIT 7,H
        CALL NZ,negate_hl
        EX DE,HL
        BIT 7,H
        CALL NZ,negate_hl
        LD B,H
        LD C,L
        LD HL,0
_bit:
        SRL D
        RR E
        JR NC,_even
        ADD HL,BC
        JR C,_overflow
_even:
        LD A,D
        OR E
        JR Z,_done
        SLA C
        RL B
        JR NC,_bit
_overflow:
        POP AF
        CALL both_single
        JP single_multiply
_done:
        BIT 7,H
        JR NZ,_overflow
        POP AF
        CALL M,negate_hl
        JR store_integer

; LEFT / accumulator; integers are divided as singles
num_divide:
        CALL same_types
        JP Z,single_divide
        JP NC,double_divide
        CALL both_single
        JP single_divide
