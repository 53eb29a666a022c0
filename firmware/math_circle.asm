; SIN, COS, TAN, ATN, RND.

SMALL_ANGLE     EQU BIAS - 12   ; exponents below: the functions are their argument

; The argument of a function of angles.
; Out:  the accumulator a single; A exponent, carry: too small to make a difference
small_angle:
        CALL to_single
        LD A,(ACC_EXPONENT)
        CP SMALL_ANGLE
        RET

; COS
; Uses: all
func_cos:
        CALL small_angle
        JP C,single_one
        LD A,1
        JR sine_function
; SIN
func_sin:
        CALL small_angle
        RET C
        XOR A
sine_function:
        CALL sine_extended
        JP round_extended

; TAN
; Uses: all
func_tan:
        CALL small_angle
        RET C
        LD A,1
        CALL sine_extended
        PUSH HL
        EXX
        PUSH HL
        EXX
        LD A,(SIGN)
        LD B,A
        PUSH BC
        XOR A
        CALL sine_extended
        POP DE
        LD A,(SIGN)
        XOR D
        LD (SIGN),A
        LD B,E                  ; exponent of the cosine
        EXX
        POP DE
        EXX
        POP DE
        CALL divide_extended
        JP round_extended

; Sine of the accumulator plus A quarter turns. The argument times 2/pi is kept to 64 bits, so that
; what remains beside a whole number is still exact: HL, HL', DE, DE' from the highest word down.
; Out:  HL:HL', C exponent, SIGN
sine_extended:
        LD B,A
        CALL load_extended
        LD A,B
        LD IYH,A                ; quarter turns
        DJNZ _odd
        XOR A
        LD (SIGN),A             ; the cosine is even
_odd:
        CALL store_factor
        LD DE,4E44h             ; 2/pi, lower half
        EXX
        LD DE,152Ah
        EXX
        CALL multiply_32
        LD DE,0A2F9h
        EXX
        LD DE,836Eh
        CALL multiply_add
        LD DE,(PRODUCT_LOW + 2)
        EXX
        LD DE,(PRODUCT_LOW)
        EXX
        LD A,C
        SUB BIAS
        JR C,_normalize         ; below 1/2 already
        LD C,BIAS
        LD B,A
        INC B
        XOR A
        JR _count
_whole:
        CALL shift_left_64
        RLA
_count:
        DJNZ _whole
        BIT 7,H                 ; to the nearest whole number
        JR Z,_below
        INC A
        LD B,A
        CALL complement_64
        LD A,B
        LD B,80h                ; what remains is negative
_below:
        ADD A,IYH
        LD IYH,A
        RRCA
        JR NC,_sine
        LD B,0                  ; the cosine does not care
_sine:
        RRCA                    ; the other half of the circle
        XOR B
        LD B,A
        LD A,(SIGN)
        XOR B
        LD (SIGN),A
_normalize:
        LD B,64
_up:
        BIT 7,H
        JR NZ,_series
        CALL shift_left_64
        DEC C
        DJNZ _up
        LD C,B
_series:
        LD A,IYH
        RRA
        JR C,_even
        LD DE,sine_table
        CALL odd_polynomial
        INC C
        RET
_even:
        CALL square_fraction
        LD DE,cosine_table
        CALL polynomial
        LD C,BIAS + 1
        CALL normalize_32
        JP normalize_32

; The four words one bit left, the bit in carry.
shift_left_64:
        EXX
        EX DE,HL
        ADD HL,HL
        EX DE,HL
        EXX
        EX DE,HL
        ADC HL,HL
        EX DE,HL
        EXX
        ADC HL,HL
        EXX
        ADC HL,HL
        RET

complement_64:
        CALL _words
_words:
        LD A,H
        CPL
        LD H,A
        LD A,L
        CPL
        LD L,A
        LD A,D
        CPL
        LD D,A
        LD A,E
        CPL
        LD E,A
        EXX
        RET

; ATN
; Uses: all
func_atn:
        CALL small_angle
        RET C
        CALL load_extended
        LD A,C
        CP BIAS + 1
        PUSH AF
        CALL NC,reciprocal      ; pi/2 - ATN(1/x)
        LD DE,arctangent_table
        CALL odd_polynomial
        POP AF
        JR C,_small
        LD A,BIAS + 1
        SUB C
        CALL shift_right_32
        CALL exchange_32
        EXX
        LD HL,0DAA2h            ; pi/4
        OR A
        SBC HL,DE
        EXX
        LD HL,0C90Fh
        SBC HL,DE
        LD C,BIAS + 1
        CALL normalize_32
_small:
        JP round_extended

; RND: argument 0 gives 0 to below 1, n gives 1 to n.
; Uses: all
func_rnd:
        CALL to_integer
        BIT 7,H
        JP NZ,error_fc
        PUSH HL
        LD DE,(RANDOM_SEED)     ; times 65536 + RANDOM_FACTOR, plus RANDOM_STEP, modulo 2^24
        LD A,(RANDOM_SEED + 2)
        LD B,A
        LD H,D
        LD L,E
        LD IX,RANDOM_FACTOR
        LD C,16
_bit:
        ADD HL,HL
        ADC A,A
        ADD IX,IX
        JR NC,_clear
        ADD HL,DE
        ADC A,B
_clear:
        DEC C
        JR NZ,_bit
        LD DE,RANDOM_STEP
        ADD HL,DE
        ADC A,C
        LD (RANDOM_SEED),HL
        LD (RANDOM_SEED + 2),A
        POP IX                  ; the argument
        LD C,A
        LD A,IXL
        OR IXH
        JR Z,_fraction
        EX DE,HL
        LD B,C                  ; B:DE the seed
        XOR A
        LD H,A
        LD L,A
        LD C,IXL
        CALL multiply_byte
        LD C,IXH
        CALL multiply_byte
        LD L,H                  ; the product / 2^24
        LD H,A
        INC HL
        JP set_integer
_fraction:
        LD B,BIAS
        LD (SIGN),A
        JP normalize_single

RANDOM_FACTOR   EQU 0C39Dh      ; 1 more than a multiple of 4, as the full period wants
RANDOM_STEP     EQU 5A87h

; RANDOM: the seed from the refresh register.
; Uses: AF
randomize:
        LD A,R
        LD (RANDOM_SEED + 1),A
        RET

sine_table:                     ; sin(x*pi/2) / x / 2, by x^2 up to 1/4
        DEFB 83h
        DEFW 0CDA0h,0096h,0F61Ch,0A32h,0EE65h,52AEh,0DA98h,0C90Fh
cosine_table:                   ; cos(x*pi/2) / 2, by x^2 up to 1/4
        DEFB 84h
        DEFW 9C32h,001Dh,8BC5h,02ABh,3BD1h,2078h,0E641h,9DE9h,0000h,8000h
arctangent_table:               ; ATN(x) / x, by x^2 up to 1
        DEFB 89h
        DEFW 7CE6h,006Fh,518Fh,02AFh,23CBh,07C5h,6BD0h,0E9Dh,1365h,1560h
        DEFW 9E8Ch,1BFCh,71B3h,2481h,0F049h,3331h,4BC3h,5555h,0FFF4h,0FFFFh
