; What EXP, LOG, powers, SIN, COS, TAN and ATN work with, 32-bit mantissas: HL:HL' mantissa with its
; leading 1 (high word in HL), C exponent; or HL:HL' as a fraction. DE:DE' is the other factor.

FACTOR          EQU WIDE        ; 4 bytes: multiplier
ARGUMENT        EQU WIDE + 4    ; 4 bytes: argument of a polynomial, base of a power
ARGUMENT_EXP    EQU WIDE + 8
PRODUCT_LOW     EQU ACC_LOW     ; 4 bytes: lower half of a product; a single leaves them free

; Product of two 32-bit fractions.
; In:   DE:DE', FACTOR
; Out:  HL:HL' upper 32 bits, A the 8 bits below
; Uses: F, B', C'
multiply_32:
        LD HL,0
        EXX
        LD HL,0
multiply_add:                   ; plus what is in HL:HL', called with the register sets exchanged
        LD A,(FACTOR)
        CALL _byte
        LD (PRODUCT_LOW),A
        LD A,(FACTOR + 1)
        CALL _byte
        LD (PRODUCT_LOW + 1),A
        LD A,(FACTOR + 2)
        CALL _byte
        LD (PRODUCT_LOW + 2),A
        LD A,(FACTOR + 3)
        CALL _byte
        LD (PRODUCT_LOW + 3),A
        EXX
        RET
_byte:
        OR A
        JR Z,_zero
        LD B,8
_bit:
        RRA
        JR NC,_none
        ADD HL,DE
        EXX
        ADC HL,DE
        RR H
        RR L
        EXX
        RR H
        RR L
        DJNZ _bit
        RRA
        RET
_none:
        EXX
        SRL H
        RR L
        EXX
        RR H
        RR L
        DJNZ _bit
        RRA
        RET
_zero:
        LD C,L
        LD L,H
        EXX
        LD A,L
        LD L,H
        LD H,0
        EXX
        LD H,A
        LD A,C
        RET

store_argument:
        LD A,C
        LD (ARGUMENT_EXP),A
        LD (ARGUMENT + 2),HL
        EXX
        LD (ARGUMENT),HL
        EXX
        RET

store_factor:
        LD (FACTOR + 2),HL
        EXX
        LD (FACTOR),HL
        EXX
        RET

exchange_32:
        EX DE,HL
        EXX
        EX DE,HL
        EXX
        RET

; 0 - HL:HL', carry if not 0; DE:DE' what it was. Uses: F
negate_32:
        EXX
        EX DE,HL
        OR A
        SBC HL,HL
        SBC HL,DE
        EXX
        EX DE,HL
        LD HL,0
        SBC HL,DE
        RET

; HL:HL' A places right.
shift_right_32:
        OR A
        RET Z
        CP 32
        JR C,_bit
        LD A,32
_bit:
        SRL H
        RR L
        EXX
        RR H
        RR L
        EXX
        DEC A
        JR NZ,_bit
        RET

; The single in the accumulator.
; Out:  HL:HL', C exponent, SIGN
load_extended:
        LD HL,(ACCUMULATOR + 1)
        LD A,(ACC_EXPONENT)
        LD C,A
        LD A,H
        LD (SIGN),A
        SET 7,H
        EXX
        LD HL,(ACCUMULATOR - 1)
        LD L,0
        EXX
        RET

; Rounds HL:HL', C exponent, to the accumulator.
round_extended:
        LD B,C
        LD C,H
        LD H,L
        EXX
        PUSH HL
        EXX
        POP DE
        LD L,D
        LD A,E
        JP round_single

; 1 / (HL:HL', C exponent), as the next one.
reciprocal:
        CALL exchange_32
        LD HL,8000h
        EXX
        LD HL,0
        EXX
        LD B,C
        LD C,BIAS + 1
; Quotient of two numbers.
; In:   HL:HL', C exponent; DE:DE', B exponent
; Out:  HL:HL', C
; Uses: AF, B, B', C'
divide_extended:
        PUSH HL
        OR A
        SBC HL,DE
        POP HL
        JR C,_less
        LD A,1
        CALL shift_right_32
        INC C
_less:
        LD A,C
        SUB B
        ADD A,BIAS
        PUSH AF
        LD IYL,32
_bit:
        EXX
        ADD HL,HL
        EXX
        ADC HL,HL
        SBC A,A                 ; FF: greater than any divisor
        EXX
        OR A
        SBC HL,DE
        EXX
        SBC HL,DE
        JR NC,_one
        INC A
        JR Z,_one
        EXX
        ADD HL,DE
        EXX
        ADC HL,DE               ; with a carry
        DEFB 3Eh                ; LD A,n
_one:
        OR A
        CCF
        EXX
        RL C
        RL B
        EXX
        RL C
        RL B
        DEC IYL
        JR NZ,_bit
        LD H,B
        LD L,C
        EXX
        LD H,B
        LD L,C
        EXX
        POP BC
        LD C,B
; Shifts up by one bit if the leading bit does not stand.
normalize_32:
        BIT 7,H
        RET NZ
        DEC C
; HL:HL' one bit left, the lost one in carry.
shift_left_32:
        EXX
        ADD HL,HL
        EXX
        ADC HL,HL
        RET

; Polynomial of the fraction in FACTOR.
; In:   DE table: number of coefficients but one, bit 7 if their signs alternate, the highest first
; Out:  HL:HL'
; Uses: AF, DE, IY, alternates
polynomial:
        PUSH BC
        LD B,D
        LD C,E
        LD A,(BC)
        LD IYL,A
        CALL _coefficient
_term:
        CALL multiply_32
        CALL _coefficient
        LD A,IYL
        ADD A,A
        JR C,_alternating
        EXX
        ADD HL,DE
        EXX
        ADC HL,DE
        JR _next
_alternating:
        EXX
        EX DE,HL
        OR A
        SBC HL,DE
        EXX
        EX DE,HL
        SBC HL,DE
_next:
        DEC IYL
        LD A,IYL
        ADD A,A
        JR Z,_end
        CALL exchange_32
        JR _term
_end:
        POP BC
        RET
_coefficient:
        INC BC
        LD A,(BC)
        LD E,A
        INC BC
        LD A,(BC)
        LD D,A
        PUSH DE
        EXX
        POP DE
        EXX
        INC BC
        LD A,(BC)
        LD E,A
        INC BC
        LD A,(BC)
        LD D,A
        RET

; Square of HL:HL', C exponent, as a fraction in FACTOR; 1 becomes the greatest fraction.
square_fraction:
        CALL store_factor
        CALL exchange_32
        CALL multiply_32
        LD A,BIAS
        SUB C
        JR C,_one
        ADD A,A
        JR NC,_shift
        SBC A,A
_shift:
        CALL shift_right_32
        JP store_factor
_one:
        LD HL,0FFFFh
        LD (FACTOR),HL
        LD (FACTOR + 2),HL
        RET

; x * P(x * x), P from 1/2 to below 1.
; In:   HL:HL', C exponent, DE table of P
; Out:  HL:HL', C
odd_polynomial:
        PUSH DE
        CALL store_argument
        CALL square_fraction
        POP DE
        CALL polynomial
        LD B,BIAS
load_argument:
        LD DE,(ARGUMENT + 2)
        EXX
        LD DE,(ARGUMENT)
        EXX
; Product of two numbers, rounded to 32 bits.
; In:   HL:HL', C exponent; DE:DE', B exponent
; Out:  HL:HL', C; carry if the exponent left its range, C 0 or 255 then
; Uses: AF, B', C'
multiply_extended:
        LD A,C
        ADD A,B
        JR C,_great
        SUB BIAS + 1
        JR NC,_multiply
        LD C,0
        RET
_great:
        ADD A,BIAS - 1
        JR NC,_multiply
_over:
        LD C,255
        SCF
        RET
_multiply:
        LD C,A
        CALL store_factor
        CALL multiply_32
        BIT 7,H
        JR Z,_shift
        INC C
        JR Z,_over
        JR _round
_shift:
        ADD A,A
        EXX
        ADC HL,HL
        EXX
        ADC HL,HL
_round:
        ADD A,A
        RET NC
        EXX
        INC HL
        LD A,H
        OR L
        EXX
        RET NZ
        INC HL
        LD A,H
        OR L
        RET NZ
        LD H,80h
        INC C
        RET
