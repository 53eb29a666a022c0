; Doubles: the same in memory, 8 bytes with the one below the mantissa.

DOUBLE_NEGLIGIBLE EQU 58

; LEFT + accumulator, doubles
; Uses: all
double_add:
        LD HL,(LEFT_HIGH)
        LD DE,(ACC_HIGH)
        LD A,D
        OR A
        JP Z,left_to_acc
        LD A,H
        OR A
        RET Z
        SUB D
        JR C,_ordered
        LD HL,LEFT              ; the greater one into the accumulator
        LD DE,ACC_LOW
        LD B,8
_exchange:
        LD A,(DE)
        LD C,(HL)
        LD (HL),A
        LD A,C
        LD (DE),A
        INC HL
        INC DE
        DJNZ _exchange
        LD A,(LEFT_EXPONENT)
        LD HL,ACC_EXPONENT
        SUB (HL)
_ordered:
        NEG
        CP DOUBLE_NEGLIGIBLE
        RET NC
        CALL unpack_doubles
        PUSH BC
        LD E,A
_places:
        LD A,E
        SUB 8
        JR C,_bits
        LD E,A
        PUSH DE
        LD HL,LEFT
        LD DE,LEFT_GUARD
        LD BC,7
        LDIR
        XOR A
        LD (DE),A
        POP DE
        LD HL,LEFT_GUARD
        SET 0,(HL)              ; for what fell away
        JR _places
_bits:
        LD A,E
        OR A
        JR Z,_aligned
        LD HL,LEFT_HIGH
        CALL shift_right_8
        DEC E
        JR _bits
_aligned:
        POP BC                  ; bit 7 of B: signs differ
        LD HL,ACC_GUARD
        LD DE,LEFT_GUARD
        BIT 7,B
        LD B,8
        JR NZ,_subtract
        CALL add_bytes
        JR NC,round_double
        LD HL,ACC_HIGH
        LD B,8
        CALL shift_bytes
        LD HL,ACC_EXPONENT
        INC (HL)
        JR NZ,round_double
        JP error_ov
_subtract:
        CALL subtract_bytes
        JR NC,normalize_double
        LD HL,SIGN
        LD A,(HL)
        CPL
        LD (HL),A
        LD HL,ACC_GUARD
        LD B,8
        OR A
_negate:
        LD A,0
        SBC A,(HL)
        LD (HL),A
        INC HL
        DJNZ _negate
; Shifts the accumulator up until its leading bit stands, rounds and packs it.
; Uses: AF, B, HL
normalize_double:
        LD C,64
_next:
        LD A,(ACC_HIGH)
        OR A
        JP M,round_double
        LD HL,ACC_EXPONENT
        DEC (HL)
        JR Z,_zero
        LD HL,ACC_GUARD
        CALL shift_left_8
        DEC C
        JR NZ,_next
_zero:
        CALL set_zero
        JR set_double
; Rounds and packs the accumulator.
round_double:
        LD HL,ACC_GUARD
        LD A,(HL)
        ADD A,A
        JR NC,_pack
        LD B,7
_carry:
        INC HL
        INC (HL)
        JR NZ,_pack
        DJNZ _carry
        INC HL
        INC (HL)
        JP Z,error_ov
_pack:
        LD HL,ACC_HIGH
        LD A,(SIGN)
        XOR (HL)
        AND 80h
        XOR (HL)
        LD (HL),A
set_double:
        LD A,TYPE_DOUBLE
        LD (NUMBER_TYPE),A
        RET

; Sets the leading bits and clears the bytes below.
; Out:  SIGN as the accumulator's, bit 7 of B: signs differ
; Uses: F, HL
unpack_doubles:
        PUSH AF
        XOR A
        LD (ACC_GUARD),A
        LD (LEFT_GUARD),A
        LD HL,ACC_HIGH
        LD A,(HL)
        LD (SIGN),A
        SET 7,(HL)
        LD HL,LEFT_HIGH
        XOR (HL)
        SET 7,(HL)
        LD B,A
        POP AF
        RET

; 8 bytes up to HL one bit right.
; Uses: AF, B, HL
shift_right_8:
        LD B,8
        OR A
shift_bytes:
        RR (HL)
        DEC HL
        DJNZ shift_bytes
        RET

; 8 bytes from HL one bit left.
; Uses: AF, B, HL
shift_left_8:
        OR A
shift_left_in:
        LD B,8
shift_left_bytes:
        RL (HL)
        INC HL
        DJNZ shift_left_bytes
        RET

; B bytes at HL plus or minus those at DE.
; Out:  carry
; Uses: A, B, DE, HL
add_bytes:
        OR A
_byte:
        LD A,(DE)
        ADC A,(HL)
        LD (HL),A
        INC HL
        INC DE
        DJNZ _byte
        RET

subtract_bytes:
        OR A
        EX DE,HL
_byte:
        LD A,(DE)
        SBC A,(HL)
        LD (DE),A
        INC HL
        INC DE
        DJNZ _byte
        RET

; LEFT * accumulator, doubles
; Uses: all
double_multiply:
        CALL product_exponent
        LD C,A
        LD A,(SIGN)
        PUSH AF
        PUSH BC
        CALL unpack_doubles
        CALL clear_wide
        EXX
        LD HL,ACC_LOW
        LD B,7
        EXX
_byte:
        EXX
        LD A,(HL)
        INC HL
        EXX
        OR A
        JR Z,_skip
        LD C,A
        LD IXL,8
_bit:
        SRL C
        JR NC,_shift
        LD HL,WIDE + 1
        LD DE,LEFT
        LD B,7
        CALL add_bytes
_shift:
        LD HL,WIDE + 7
        LD B,8
        CALL shift_bytes
        DEC IXL
        JR NZ,_bit
_next:
        EXX
        DEC B
        EXX
        JR NZ,_byte
        JR wide_to_acc
_skip:
        LD HL,WIDE + 1
        LD DE,WIDE
        LD BC,7
        LDIR
        LD (DE),A
        JR _next

; The 8 bytes at WIDE become the accumulator, from 1/4 to below 1.
; In:   on the stack the sign in A, the exponent for a value below 1/2 in C
wide_to_acc:
        LD HL,WIDE
        LD DE,ACC_GUARD
        CALL copy_eight
        POP BC
        POP AF
        LD (SIGN),A
        LD A,C
        LD HL,ACC_HIGH
        BIT 7,(HL)
        JR NZ,_high
        OR A
        CALL Z,set_zero         ; and nothing to shift
        LD (ACC_EXPONENT),A
        JP Z,set_double
        LD HL,ACC_GUARD
        CALL shift_left_8
        JP round_double
_high:
        INC A
        LD (ACC_EXPONENT),A
        JP NZ,round_double
        JP error_ov

; LEFT / accumulator, doubles
; Uses: all
double_divide:
        CALL quotient_exponent
        LD C,A
        LD A,(SIGN)
        PUSH AF
        PUSH BC
        CALL unpack_doubles
        XOR A
        LD (ACC_EXPONENT),A     ; both have an eighth byte on top
        LD (LEFT_EXPONENT),A
        LD C,64
_bit:
        LD HL,LEFT
        LD DE,ACC_LOW
        LD B,8
        CALL subtract_bytes
        JR NC,_one
        LD HL,LEFT
        LD DE,ACC_LOW
        LD B,8
        CALL add_bytes          ; ends with a carry
_one:
        CCF
        LD HL,WIDE
        CALL shift_left_in
        LD HL,LEFT
        CALL shift_left_8
        DEC C
        JR NZ,_bit
        JR wide_to_acc
