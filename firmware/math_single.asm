; Singles: add, multiply, divide, square root.

NEGLIGIBLE      EQU 26          ; places after which a smaller operand cannot change a rounded sum

; LEFT + accumulator, singles
; Uses: all
single_add:
        LD HL,(LEFT_HIGH)
        LD DE,(ACC_HIGH)
        LD A,D
        OR A
        JP Z,left_to_acc
        LD A,H
        OR A
        RET Z
        SUB D
        JR C,_acc_greater
        CP NEGLIGIBLE
        JP NC,left_to_acc
        EX AF,AF'
        LD A,H
        LD IXH,A
        LD B,E
        LD C,L
        LD HL,(LEFT_SINGLE)
        LD DE,(ACCUMULATOR)
        JR _align
_acc_greater:
        NEG
        CP NEGLIGIBLE
        RET NC
        EX AF,AF'
        LD IXH,D
        LD B,L
        LD C,E
        LD HL,(ACCUMULATOR)
        LD DE,(LEFT_SINGLE)
_align:
        LD A,C                  ; greater C:HL, smaller B:DE, places in A'
        LD (SIGN),A
        XOR B
        SET 7,B
        SET 7,C
        EX AF,AF'
        OR A
        JR Z,_aligned
        PUSH HL
        LD IXL,0
        LD L,0                  ; bits below
        SUB 8
        JR C,_bits
_bytes:
        LD L,E
        LD E,D
        LD D,B
        LD B,0
        SUB 8
        JR NC,_bytes
        LD IXL,1                ; for what falls away
_bits:
        ADD A,8
        JR Z,_whole
        LD H,A
        LD A,L
_bit:
        SRL B
        RR D
        RR E
        RRA
        DEC H
        JR NZ,_bit
        LD L,A
_whole:
        LD A,L
        OR IXL
        POP HL
_aligned:
        LD IXL,A
        EX AF,AF'
        JP M,_subtract
        ADD HL,DE
        LD A,C
        ADC A,B
        LD C,A
        LD B,IXH
        LD A,IXL
        JR NC,round_single
        RR C
        RR H
        RR L
        RRA
        INC B
        JR NZ,round_single
        JP error_ov
_subtract:
        XOR A
        SUB IXL
        SBC HL,DE
        LD IXL,A
        LD A,C
        SBC A,B
        LD C,A
        JR NC,_positive
        LD A,(SIGN)             ; only with equal exponents, no bits below
        CPL
        LD (SIGN),A
        EX DE,HL
        XOR A
        LD H,A
        LD L,A
        SBC HL,DE
        SBC A,C
        LD C,A
_positive:
        LD B,IXH
        LD A,IXL
; Shifts C:HL:A up until the leading bit stands, then rounds and stores.
; In:   C:HL:A mantissa, B exponent, SIGN
; Out:  BC:HL the number as it is stored, A not 0; A 0 for 0
normalize_single:
        LD E,A
        LD A,C
        OR A
        JP M,_done
        JR NZ,_bits
        OR H
        OR L
        OR E
        JR Z,set_zero
        LD A,B
        SUB 8
        JR C,set_zero
        JR Z,set_zero
        LD B,A
        LD C,H
        LD H,L
        LD L,E
        XOR A
        JR normalize_single
_bits:
        DEC B
        JR Z,set_zero
        SLA E
        ADC HL,HL
        RL C
        JP P,_bits
_done:
        LD A,E
; Rounds and stores a single.
; In:   C:HL mantissa, A bits below, B exponent, SIGN
; Uses: AF, BC, HL
round_single:
        ADD A,A
        JR NC,_store
        INC L
        JR NZ,_store
        INC H
        JR NZ,_store
        INC C
        JR NZ,_store
        INC B                   ; C without its leading bit stays 0
        JP Z,error_ov
_store:
        LD A,(SIGN)
        XOR C
        AND 80h
        XOR C
        LD C,A
        LD (ACC_HIGH),BC
        LD (ACCUMULATOR),HL
        LD A,TYPE_SINGLE
        LD (NUMBER_TYPE),A
        RET

; Upper words of LEFT and accumulator to HL and DE, SIGN; Z if the accumulator is 0.
operand_words:
        LD HL,(LEFT_HIGH)
        LD DE,(ACC_HIGH)
        LD A,L
        XOR E
        LD (SIGN),A
        LD A,D
        OR A
        RET

; Exponent and sign of a product.
; Out:  A exponent of a product below 1/2, SIGN, HL and DE the upper words of LEFT and accumulator;
;       returns to the caller's caller with 0 when it is too small
product_exponent:
        CALL operand_words
        JR Z,zero_result
        LD A,H
        OR A
        JR Z,zero_result
        ADD A,D
        JR C,_great
        SUB BIAS + 1
        RET NC
        JR zero_result
_great:
        ADD A,BIAS - 1
        RET NC
        JP error_ov

; Exponent and sign of a quotient.
; Out:  A exponent of a quotient below 1, SIGN, HL and DE the upper words of LEFT and accumulator;
;       returns to the caller's caller with 0 when it is too small
quotient_exponent:
        CALL operand_words
        JP Z,error_dz
        LD A,H
        OR A
        JR Z,zero_result
        SUB D
        JR C,_small
        ADD A,BIAS
        RET NC
        JP error_ov
_small:
        ADD A,BIAS
        RET C
zero_result:
        POP HL
; The accumulator 0, its type kept; a value of type integer must not come here.
; Uses: AF, HL
set_zero:
        LD HL,0
        LD (ACCUMULATOR),HL
        LD (ACC_HIGH),HL
        RET

; LEFT * accumulator, singles
; Uses: all
single_multiply:
        CALL product_exponent
        PUSH AF
        LD A,L
        OR 80h
        LD B,A
        LD A,E
        OR 80h
        LD IYL,A
        LD IX,(ACCUMULATOR)
        LD DE,(LEFT_SINGLE)
        LD HL,0
        XOR A
        LD C,IXL
        CALL multiply_byte
        LD C,IXH
        CALL multiply_byte
        LD C,IYL
        CALL multiply_byte
        RR C                    ; bits below
        POP DE                  ; D exponent
        OR A
        JP M,_high
        SLA C
        ADC HL,HL
        ADC A,A
        INC D
        DEC D
        JR Z,set_zero
        DEC D
_high:
        INC D
        JP Z,error_ov
        LD B,D
        LD D,C
        LD C,A
        LD A,D
        JP round_single

; Adds the product of a byte: A:HL = (A:HL + B:DE * C) / 256, what is shifted out in C and carry.
multiply_byte:
        INC C
        DEC C
        JR Z,_zero
        CALL _nibble
_nibble:
        RR C
        JR NC,_bit_1
        ADD HL,DE
        ADC A,B
_bit_1:
        RRA
        RR H
        RR L
        RR C
        JR NC,_bit_2
        ADD HL,DE
        ADC A,B
_bit_2:
        RRA
        RR H
        RR L
        RR C
        JR NC,_bit_3
        ADD HL,DE
        ADC A,B
_bit_3:
        RRA
        RR H
        RR L
        RR C
        JR NC,_bit_4
        ADD HL,DE
        ADC A,B
_bit_4:
        RRA
        RR H
        RR L
        RET
_zero:
        LD C,L
        LD L,H
        LD H,A
        XOR A
        RL C                    ; the caller's RR C brings it back
        RET

; LEFT / accumulator, singles
; Uses: all
single_divide:
        CALL quotient_exponent
        LD IYL,A
        LD A,E
        OR 80h
        LD B,A
        LD A,L
        OR 80h
        LD HL,(LEFT_SINGLE)
        LD DE,(ACCUMULATOR)
        SBC HL,DE
        SBC A,B
        JR NC,_above
        ADD HL,DE
        ADC A,B
        ADD HL,HL
        ADC A,A                 ; the bit it loses is taken back by the subtraction
        OR A
        SBC HL,DE
        SBC A,B
        LD C,A
        LD A,IYL
        OR A
        JP Z,set_zero
        LD A,C
        JR _divide
_above:
        INC IYL
        JP Z,error_ov
_divide:
        CALL divide_byte
        PUSH BC
        CALL divide_byte
        PUSH BC
        CALL divide_byte
        LD A,C
        CPL
        LD L,A
        POP BC
        LD A,C
        CPL
        LD H,A
        POP BC
        LD A,C
        CPL
        SCF                     ; the first bit of the quotient
        RRA
        RR H
        RR L
        LD C,A
        SBC A,A                 ; the last one, below the mantissa
        LD B,IYL
        JP round_single
; Eight bits of a quotient, inverted.
; In:   A:HL remainder below the divisor B:DE
; Out:  C, A:HL
divide_byte:
        LD C,1
        OR A
        JR Z,_small
_bit:
        ADD HL,HL
        ADC A,A
        JR C,_one
        CP B
        JR C,_store
        SBC HL,DE
        SBC A,B
        JR NC,_store
        ADD HL,DE
        ADC A,B
_store:
        RL C
        JP NC,_bit
        RET
_one:
        OR A
        SBC HL,DE
        SBC A,B
        OR A
        RL C
        JP NC,_bit
        RET
_small:
        OR H
        OR L
        LD A,0
        JR NZ,_bit
        DEC A                   ; nothing remains
        LD C,A
        INC A
        RET

; SQR of the accumulator, one bit of the root after the other: with a bit b of the root Q, twice the
; remainder takes 2Q + b or does not. HL:HL' remainder, DE:DE' 2Q + b, BC:BC' b, the first two bits
; before the point.
; Uses: all
func_sqr:
        CALL to_single
        CALL num_sign
        RET Z
        JP M,error_fc
        CALL load_extended
        SRL C
        LD A,2
        ADC A,0                 ; odd exponent: half the radicand
        LD B,A
        ADD A,C
        ADD A,BIAS / 2 - 2      ; half the exponent, rounded up
        LD IYL,A
        LD A,B
        CALL shift_right_32
        LD BC,2000h
        LD D,B
        LD E,C
        EXX
        LD BC,0
        LD D,B
        LD E,C
        LD A,25
_bit:
        ADD HL,HL
        EXX
        ADC HL,HL
        EXX
        SBC HL,DE
        EXX
        SBC HL,DE
        JR NC,_one
        EXX
        ADD HL,DE
        EXX
        ADC HL,DE
        EX DE,HL
        EXX
        EX DE,HL
        OR A
        SBC HL,BC
        EXX
        SBC HL,BC
        JR _half
_one:
        EX DE,HL
        EXX
        EX DE,HL
        ADD HL,BC
        EXX
        ADC HL,BC
_half:
        SRL B
        RR C
        EXX
        RR B
        RR C
        ADD HL,BC
        EXX
        ADC HL,BC
        EX DE,HL
        EXX
        EX DE,HL
        DEC A
        JR NZ,_bit
        EXX
        CALL exchange_32
        CALL shift_left_32
        LD C,IYL
        JP round_extended
