; SIN, COS, TAN, ATN, RND.

SMALL_ANGLE     EQU BIAS - 12   ; exponents below: the functions are their argument

; COS
; Uses: all
func_cos:
        CALL to_single
        LD A,(ACC_EXPONENT)
        OR A
        LD A,1
        JR NZ,sine_function
        CALL set_byte           ; COS(0)
        JP to_single
; SIN
func_sin:
        CALL to_single
        LD A,(ACC_EXPONENT)
        CP SMALL_ANGLE
        RET C
        XOR A
sine_function:
        CALL sine_extended
        JP round_extended

; TAN
; Uses: all
func_tan:
        CALL to_single
        LD A,(ACC_EXPONENT)
        CP SMALL_ANGLE
        RET C
        LD A,1
        CALL sine_extended
        PUSH HL
        EXX
        PUSH HL
        EXX
        PUSH BC
        LD A,(SIGN)
        PUSH AF
        XOR A
        CALL sine_extended
        POP AF
        LD B,A
        LD A,(SIGN)
        XOR B
        LD (SIGN),A
        POP DE
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
        LD (QUADRANT),A
        CALL load_extended
        LD A,(QUADRANT)
        OR A
        JR Z,_odd
        XOR A
        LD (SIGN),A             ; the cosine is even
_odd:
        CALL store_factor
        LD DE,4E44h             ; 2/pi, lower half
        EXX
        LD DE,152Ah
        EXX
        CALL multiply_32
        PUSH HL
        EXX
        PUSH HL
        EXX
        LD DE,0A2F9h
        EXX
        LD DE,836Eh
        EXX
        CALL multiply_32
        EXX
        EX DE,HL
        POP HL
        LD BC,(PRODUCT_LOW)
        ADD HL,BC
        EX DE,HL
        EXX
        EX DE,HL
        POP HL
        LD BC,(PRODUCT_LOW + 2)
        ADC HL,BC
        EX DE,HL
        CALL C,increment_32
        LD A,(ACC_EXPONENT)
        LD C,A
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
        CALL complement_words
        EXX
        CALL complement_words
        EXX
        LD A,B
        LD B,80h                ; what remains is negative
_below:
        PUSH HL
        LD HL,QUADRANT
        ADD A,(HL)
        LD (HL),A
        BIT 0,A
        JR NZ,_cosine           ; which does not care for the sign
        LD A,(SIGN)
        XOR B
        LD (SIGN),A
_cosine:
        BIT 1,(HL)
        JR Z,_upper
        LD A,(SIGN)
        CPL
        LD (SIGN),A
_upper:
        POP HL
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
        LD A,(QUADRANT)
        RRA
        JR C,_even
        LD IX,sine_table
        CALL odd_polynomial
        INC C
        RET
_even:
        CALL square_fraction
        LD IX,cosine_table
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

complement_words:
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
        RET

; ATN
; Uses: all
func_atn:
        CALL to_single
        LD A,(ACC_EXPONENT)
        CP SMALL_ANGLE
        RET C
        CALL load_extended
        LD A,C
        CP BIAS + 1
        LD IX,arctangent_table
        JR C,_small
        CALL reciprocal         ; pi/2 - ATN(1/x)
        CALL odd_polynomial
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
        JP round_extended
_small:
        CALL odd_polynomial
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
        LD C,E                  ; C:HL: 65536 times the seed
        LD HL,0
        LD IX,RANDOM_FACTOR
        LD A,16
        EX AF,AF'
        LD A,C
        LD C,0
        PUSH AF
_bit:
        ADD HL,HL
        RL C
        ADD IX,IX
        JR NC,_clear
        ADD HL,DE
        LD A,C
        ADC A,B
        LD C,A
_clear:
        EX AF,AF'
        DEC A
        JR Z,_done
        EX AF,AF'
        JR _bit
_done:
        POP AF
        ADD A,C
        LD C,A
        LD DE,RANDOM_STEP
        ADD HL,DE
        LD (RANDOM_SEED),HL
        LD A,C
        ADC A,0
        LD (RANDOM_SEED + 2),A
        EX DE,HL
        LD B,A                  ; B:DE the seed
        POP IX                  ; the argument
        LD A,IXL
        OR IXH
        JR Z,_fraction
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
        LD C,B
        LD B,BIAS
        EX DE,HL
        XOR A
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
        DEFB 84h
        DEFW 0CDA0h,0096h,0F61Ch,0A32h,0EE65h,52AEh,0DA98h,0C90Fh
cosine_table:                   ; cos(x*pi/2) / 2, by x^2 up to 1/4
        DEFB 85h
        DEFW 9C32h,001Dh,8BC5h,02ABh,3BD1h,2078h,0E641h,9DE9h,0000h,8000h
arctangent_table:               ; ATN(x) / x, by x^2 up to 1
        DEFB 8Ah
        DEFW 7CE6h,006Fh,518Fh,02AFh,23CBh,07C5h,6BD0h,0E9Dh,1365h,1560h
        DEFW 9E8Ch,1BFCh,71B3h,2481h,0F049h,3331h,4BC3h,5555h,0FFF4h,0FFFFh
