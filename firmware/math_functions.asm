; EXP, LOG, powers.

; EXP
; Uses: all
func_exp:
        CALL to_single
        CALL load_extended
        LD DE,0B8AAh            ; 1 / ln 2
        EXX
        LD DE,3B29h
        EXX
        LD B,BIAS + 1
        CALL multiply_extended
; 2 to the power of a number.
; In:   HL:HL', C exponent, SIGN
; Out:  accumulator
power_of_two:
        LD A,C
        SUB BIAS
        JR C,_small
        CP 8
        JR NC,_limit
        LD B,A
        INC B
        XOR A
        JR _count
_whole:
        CALL shift_left_32
        RLA
_count:
        DJNZ _whole
        JR _split
_small:
        NEG
        CALL shift_right_32
        XOR A
_split:
        LD C,A                  ; whole part, the fraction in HL:HL'
        LD A,(SIGN)
        RLA
        LD A,C
        JR NC,_positive
        CALL negate_32
        LD A,0
        SBC A,C
_positive:
        ADD A,BIAS + 1
        JP Z,error_ov
        LD C,A
        CALL store_factor
        LD DE,exponential_table
        CALL polynomial
        XOR A
        LD (SIGN),A
        JP round_extended
_limit:
        LD A,(SIGN)
        RLA
        JP NC,error_ov
        JP set_zero

; Logarithm to the base 2 of the single in the accumulator, greater than 0: that of the mantissa u
; between sqrt(1/2) and sqrt(2) from t = (u-1)/(u+1), and the exponent.
; Out:  HL:HL', C exponent, SIGN
logarithm:
        CALL load_extended
        LD A,H
        CP 0B5h
        LD A,C
        JR C,_above
        SUB BIAS
        PUSH AF
        CALL negate_32          ; 1-u
        CALL _halve             ; (1+u)/2
        LD A,80h
        LD C,BIAS - 1
        JR _signed
_above:
        SUB BIAS + 1
        PUSH AF
        LD D,H
        LD E,L
        EXX
        LD D,H
        LD E,L
        EXX
        CALL _halve
        RES 6,D                 ; (1+u)/4
        CALL shift_left_32      ; u-1
        XOR A
        LD C,BIAS - 2
_signed:
        LD (SIGN),A
        LD B,32
_normalize:
        BIT 7,H
        JR NZ,_divide
        CALL shift_left_32
        DEC C
        DJNZ _normalize
        LD C,B                  ; u = 1
        JR _add
_divide:
        LD B,BIAS
        CALL divide_extended
        LD DE,logarithm_table
        CALL odd_polynomial
        INC C
        INC C
_add:
        POP AF                  ; exponent
        OR A
        RET Z
        LD B,A
        LD A,BIAS
        SUB C
        CALL shift_right_32
        LD A,(SIGN)
        RLA
        CALL C,negate_32
        LD A,B
        SBC A,0
        LD C,A
        LD (SIGN),A
        OR A
        JP P,_positive
        CALL negate_32
        LD A,0
        SBC A,C
_positive:
        LD C,BIAS
        JR _test
_right:
        INC C
        SRL A
        RR H
        RR L
        EXX
        RR H
        RR L
        EXX
_test:
        OR A
        JR NZ,_right
        JP normalize_32
_halve:
        SCF
        RR D
        RR E
        EXX
        RR D
        RR E
        EXX
        RET

; LOG
; Uses: all
func_log:
        CALL to_single
        CALL num_sign
        DEC A
        JP NZ,error_fc
        CALL logarithm
        LD DE,0B172h            ; ln 2
        EXX
        LD DE,17F8h
        EXX
        LD B,BIAS
        CALL multiply_extended
        JP round_extended

; LEFT ^ accumulator, a single
; Uses: all
num_power:
        CALL to_single
        LD HL,(ACCUMULATOR)
        PUSH HL
        LD HL,(ACC_HIGH)
        PUSH HL
        CALL left_to_acc
        CALL to_single
        LD (LEFT_TYPE),A        ; of the exponent, from now on
        POP HL
        LD (LEFT_HIGH),HL
        LD A,H
        POP HL
        LD (LEFT_SINGLE),HL
        OR A
        JP Z,single_one         ; also 0 ^ 0
        CALL num_sign
        LD A,(LEFT_HIGH)
        JR NZ,_small_whole
        RLA
        RET NC
        JP error_dz
_small_whole:
        OR 80h                  ; 1 to 255 by multiplication
        LD D,A
        LD HL,(LEFT_SINGLE)
        LD A,H
        OR L
        JR NZ,_general
        LD A,(LEFT_EXPONENT)
        SUB BIAS + 9
        CP -8 & 0FFh
        JR C,_general
        LD B,A
_shift:
        INC B
        JR Z,_whole
        SRL D
        JR NC,_shift
_general:
        LD HL,ACC_HIGH
        LD A,(HL)
        RES 7,(HL)
        PUSH AF
        CALL logarithm
        CALL store_argument
        LD A,(SIGN)
        LD IYL,A
        CALL left_to_acc
        POP AF
        AND 80h
        JR Z,_signed
        CALL num_fix            ; a negative base takes whole exponents only
        LD A,E
        OR A
        JP NZ,error_fc
        CALL to_integer
        PUSH HL
        CALL to_single
        POP HL
        LD A,L
        RRCA                    ; odd
_signed:
        PUSH AF
        CALL load_extended
        LD A,(SIGN)
        XOR IYL
        LD (SIGN),A
        LD A,(ARGUMENT_EXP)
        LD B,A
        CALL load_argument
        CALL power_of_two
        POP AF
        AND 80h
        RET Z
        JP flip_sign
_whole:
        LD A,D
        RRCA                    ; odd: the base's sign
        LD HL,ACC_HIGH
        AND (HL)
        PUSH AF
        PUSH DE
        CALL load_extended
        LD A,(LEFT_HIGH)
        RLA
        CALL C,reciprocal
        CALL store_argument
        POP DE
        SCF                     ; a 1 behind the last bit
_leading:
        RL D
        JR NC,_leading
_step:
        LD A,D
        ADD A,A
        JR Z,_done
        PUSH DE
        LD B,C
        LD D,H
        LD E,L
        EXX
        LD D,H
        LD E,L
        EXX
        CALL multiply_extended
        POP DE
        JR C,_limit
        SLA D
        JR NC,_step
        PUSH DE
        LD A,(ARGUMENT_EXP)
        LD B,A
        CALL load_argument
        POP DE
        JR NC,_step
_limit:
        POP AF
        INC C
        JP Z,error_ov
        JP set_zero
_done:
        POP AF
        LD (SIGN),A
        JP round_extended

single_one:
        LD HL,1
        JP acc_single_from_hl

; Highest coefficient first, low word first; each error below the 27th bit.
exponential_table:              ; 2^x / 2, 0 to 1
        DEFB 6
        DEFW 2B38h,0007h,0A302h,0028h,3BD5h,013Dh,1442h,071Ah,0D6B8h,1EBFh
        DEFW 0AF7h,58B9h,0000h,8000h
logarithm_table:                ; log2((1+t)/(1-t)) / t / 4, by t^2
        DEFB 4
        DEFW 5FEFh,15CEh,0DAF7h,1A58h,0EFF1h,24EEh,13A2h,3D8Eh,3B29h,0B8AAh
