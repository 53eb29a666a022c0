; Doubles: the same in memory, 8 bytes with the one below the mantissa.

DOUBLE_NEGLIGIBLE EQU 58

; LEFT * accumulator, doubles, the lowest bit of LEFT first. The product stands in A:HL:HL':(SP), what
; is shifted out of it takes the place of the bits in C.
; Uses: all
double_multiply:
        CALL product_exponent
        PUSH AF
        CALL unpack_doubles
        LD IX,LEFT - 1
        LD IY,256 * 8
_zero:
        INC IXL                 ; bytes of 0 make no product
        DEC IYH
        LD A,(IX)
        OR A
        JR Z,_zero
        LD HL,0
        PUSH HL
        CALL factor_to_registers
        LD HL,0
        XOR A
_byte:
        LD C,(IX)
        INC IXL
        LD IYL,8
_bit:
        RR C
        JR NC,_shift
        EXX
        EX (SP),HL
        ADD HL,BC
        EX (SP),HL
        ADC HL,DE
        EXX
        ADC HL,DE
        ADC A,B
_shift:
        RRA
        RR H
        RR L
        EXX
        RR H
        RR L
        EX (SP),HL
        RR H
        RR L
        EX (SP),HL
        EXX
        DEC IYL
        JR NZ,_bit
        DEC IYH
        JR NZ,_byte
        RR C
        LD (ACC_HIGH),A
        LD (ACCUMULATOR),HL
        LD A,C
        LD (ACC_GUARD),A
        EXX
        LD (ACC_LOW + 2),HL
        POP HL
        LD (ACC_LOW),HL
        JR finish_product

; Out:  B:DE:DE':BC' mantissa of the accumulator; registers exchanged
factor_to_registers:
        LD BC,(ACC_LOW)
        LD DE,(ACC_LOW + 2)
        EXX
        LD DE,(ACCUMULATOR)
        LD BC,(ACC_HIGH - 1)
        RET

; LEFT / accumulator, doubles. The remainder stands in A:HL:HL':(SP), the divisor in B:DE:DE':BC'.
; Uses: all
double_divide:
        CALL quotient_exponent
        PUSH AF
        CALL unpack_doubles
        LD HL,(LEFT)
        PUSH HL
        LD HL,(LEFT + 2)
        CALL factor_to_registers
        LD HL,(LEFT_SINGLE)
        LD A,(LEFT_HIGH)
        LD IX,ACC_HIGH
        LD IY,8 * 256 + 8
        JR _first
_bit:
        EXX
        EX (SP),HL
        ADD HL,HL
        EX (SP),HL
        ADC HL,HL
        EXX
        ADC HL,HL
        RLA
_first:
        RL C                    ; the bit that the remainder lost; then the divisor fits
        BIT 0,C
        JR NZ,_try
        CP B
        JR C,_stored
_try:
        EXX
        OR A
        EX (SP),HL
        SBC HL,BC
        EX (SP),HL
        SBC HL,DE
        EXX
        SBC HL,DE
        SBC A,B
        JR NC,_one
        BIT 0,C
        JR NZ,_stored
        EXX
        EX (SP),HL
        ADD HL,BC
        EX (SP),HL
        ADC HL,DE
        EXX
        ADC HL,DE
        ADC A,B
        DEC C
_one:
        INC C
_stored:
        DEC IYL
        JR NZ,_bit
        LD (IX),C
        DEC IXL
        LD IYL,8
        DEC IYH
        JR NZ,_bit
        POP HL
; The accumulator, from 1/4 to below 1, gets the exponent on the stack, which is for a value below 1/2.
finish_product:
        POP AF
        INC A
; The accumulator gets its exponent, is shifted up until its leading bit stands, rounded and packed.
; In:   A exponent, 0 for 256; SIGN
; Uses: AF, BC, HL
finish_double:
        LD (ACC_EXPONENT),A
        OR A
        LD HL,ACC_HIGH
        JR NZ,normalize_double
        BIT 7,(HL)
        JR NZ,overflow_double
normalize_double:
        LD C,64
_next:
        LD HL,ACC_HIGH
        BIT 7,(HL)
        JR NZ,round_double
        INC HL
        DEC (HL)
        JR Z,_zero
        LD HL,ACC_GUARD
        CALL shift_left_8
        DEC C
        JR NZ,_next
_zero:
        JP set_zero
; Rounds and packs the accumulator.
round_double:
        LD HL,ACC_GUARD
        BIT 7,(HL)
        JR Z,_pack
        LD B,8
_carry:
        INC HL
        INC (HL)
        JR NZ,_pack
        DJNZ _carry
        JR overflow_double
_pack:
        LD HL,ACC_HIGH
        LD A,(SIGN)
        XOR (HL)
        AND 80h
        XOR (HL)
        LD (HL),A
        RET
overflow_double:
        JP error_ov

; LEFT + accumulator, doubles
; Uses: all
double_add:
        CALL operand_words
        JP Z,left_to_acc
        LD A,H
        OR A
        RET Z
        SUB D
        JR C,_less
        EX AF,AF'
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
        EX AF,AF'
        DEFB 21h                ; skips the next two bytes
_less:
        NEG
        CP DOUBLE_NEGLIGIBLE
        RET NC
        LD C,A
        CALL unpack_doubles
        LD HL,SIGN
        LD B,(HL)               ; bit 7: signs differ
        LD (HL),A
        PUSH BC
_places:
        LD HL,LEFT_HIGH
        LD B,8
        LD A,C
        SUB 4
        JR C,_bit
        LD C,A
        XOR A
_nibble:
        RRD
        DEC HL
        DJNZ _nibble
        JR _fallen
_bit:
        CP -4
        JR Z,_aligned           ; no carry
        DEC C
        CALL shift_right_8
        SBC A,A
_fallen:
        INC HL
        OR A
        JR Z,_places
        SET 0,(HL)              ; for what fell away
        JR _places
_aligned:
        POP BC
        LD HL,ACC_GUARD
        LD DE,LEFT_GUARD
        BIT 7,B
        LD B,8
        JR NZ,_subtract
_sum:
        LD A,(DE)
        ADC A,(HL)
        LD (HL),A
        INC HL
        INC DE
        DJNZ _sum
        JR NC,_round
        INC (HL)                ; exponent
        JR Z,overflow_double
        DEC HL
        LD B,8
        CALL shift_bytes
_round:
        JP round_double
_subtract:
        EX DE,HL
_byte:
        LD A,(DE)
        SBC A,(HL)
        LD (DE),A
        INC HL
        INC DE
        DJNZ _byte
        JP NC,normalize_double
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
        JP normalize_double

; Sets the leading bits and clears the bytes below.
; Out:  A upper byte of the accumulator as it was, carry clear
; Uses: HL
unpack_doubles:
        XOR A
        LD (ACC_GUARD),A
        LD (LEFT_GUARD),A
        LD HL,LEFT_HIGH
        SET 7,(HL)
        LD L,ACC_HIGH & 0FFh
        LD A,(HL)
        SET 7,(HL)
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
        LD B,8
        OR A
_byte:
        RL (HL)
        INC HL
        DJNZ _byte
        RET
