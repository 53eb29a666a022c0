; Octal constants, and numbers as strings.

SKIP_TWO        EQU 11h         ; LD DE,nn: takes the next instruction for its operand

; &O or & and octal digits.
; In:   HL behind &, A character
; Out:  as operand
function_octal:
        CP 'O'
        JR NZ,_first
        RST 10h
_first:
        LD DE,0
        CALL _value
        JP NC,error_sn
_digit:
        EX DE,HL
        LD B,3
_shift:
        ADD HL,HL
        JP C,error_ov
        DJNZ _shift
        ADD A,L
        LD L,A
        EX DE,HL
        RST 10h
        CALL _value
        JR C,_digit
        LD B,D
        LD C,E
        JP whole_literal
; In:   A character
; Out:  A value, carry if it is a digit
_value:
        SUB '0'
        CP 8
        RET

; MKI$, MKS$, MKD$: the bytes of a number as a string.
; In:   accumulator
; Out:  accumulator
function_mki:
        LD B,TYPE_INTEGER
        DEFB SKIP_TWO
function_mks:
        LD B,TYPE_SINGLE
        DEFB SKIP_TWO
function_mkd:
        LD B,TYPE_DOUBLE
        CALL convert_value
        LD HL,(DISK_AREA)
        PUSH HL
        PUSH AF
        CALL acc_to_hl
        POP AF
        CALL make_string        ; BC its length
        POP HL
        LDIR
        JP push_string
; The accumulator becomes a value of a type.
; In:   B type
; Out:  A type
; Uses: all
convert_value:
        LD A,(NUMBER_TYPE)
        CP B
        RET Z
        JP convert_type
; CVI, CVS, CVD: and back.
function_cvi:
        LD B,TYPE_INTEGER
        DEFB SKIP_TWO
function_cvs:
        LD B,TYPE_SINGLE
        DEFB SKIP_TWO
function_cvd:
        LD B,TYPE_DOUBLE
        CALL take_string
        CP B
        JP C,error_fc
        LD A,B
        LD (NUMBER_TYPE),A
        EX DE,HL
        JP acc_from_hl
