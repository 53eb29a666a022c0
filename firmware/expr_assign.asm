; Values into variables, and the arguments of statements.

CLEAR_ROOM      EQU 150         ; for the stack and a few variables
SKIP_TWO        EQU 11h         ; LD DE,nn: takes the next instruction for its operand

; LET, with or without the word.
stmt_let:
        CALL find_variable
        PUSH DE
        PUSH BC
        RST 08h
        DEFB TOKEN_EQUAL
        CALL eval
        POP BC
        POP DE
; Gives a value to a variable.
; In:   accumulator, DE address of the variable's value, B its type
; Out:  HL kept
; Uses: all others
assign:
        PUSH HL
        LD A,(NUMBER_TYPE)
        CP B
        JR NZ,_convert
_store:
        CP TYPE_SINGLE
        JR NZ,_other
        LD HL,ACCUMULATOR
        LDI
        LDI
        LDI
        LDI
        POP HL
        RET
_other:
        CP TYPE_STRING
        CALL Z,own_string
        EX DE,HL
        CALL acc_to_hl
        POP HL
        RET
_convert:
        PUSH DE
        CALL convert_type
        POP DE
        JR _store

; Converts the accumulator to another type.
; In:   B type, not the accumulator's if it is a string
; Out:  A type
; Uses: all
convert_type:
        LD A,B
        CP TYPE_STRING
        JP C,to_integer
        JP Z,error_tm
        CP TYPE_DOUBLE
        JP Z,to_double
        JP to_single

; In:   HL text
; Out:  DE -32768 to 32767, HL behind
; Uses: all
get_integer:
        CALL eval
; The accumulator as an integer.
; Out:  DE, HL kept
value_integer:
        LD A,(NUMBER_TYPE)
        CP TYPE_INTEGER
        LD DE,(ACCUMULATOR)
        RET Z
        PUSH HL
        CALL to_integer
        EX DE,HL
        POP HL
        RET

; In:   HL text
; Out:  A and E value 0-255, D = 0, HL behind
; Uses: all
get_byte:
        CALL eval
; The accumulator as a byte.
; Out:  A and E, D = 0; HL kept
value_byte:
        CALL value_integer
        LD A,D
        OR A
        LD A,E
        RET Z
        JP error_fc

; In:   HL text
; Out:  DE -32768 to 65535, HL behind
; Uses: all
get_address:
        CALL eval
        PUSH HL
        CALL to_address
        POP HL
        RET

; A comma and a byte.
comma_byte:
        RST 08h
        DEFB ','
        JR get_byte

; POKE address, value
stmt_poke:
        CALL get_address
        PUSH DE
        CALL comma_byte
        POP DE
        LD (DE),A
        RET

; OUT port, value
stmt_out:
        CALL get_byte
        PUSH DE
        CALL comma_byte
        POP BC
        OUT (C),A
        RET

; DEFINT, DEFSTR, DEFSNG, DEFDBL letters or ranges of letters
stmt_defstr:
        LD B,TYPE_STRING
        DEFB SKIP_TWO
stmt_defint:
        LD B,TYPE_INTEGER
        DEFB SKIP_TWO
stmt_defsng:
        LD B,TYPE_SINGLE
        DEFB SKIP_TWO
stmt_defdbl:
        LD B,TYPE_DOUBLE
define_types:
        CALL _letter
        LD C,E
        CP TOKEN_MINUS
        JR NZ,_last
        RST 10h
        CALL _letter
_last:
        LD A,E
        SUB C                   ; count - 1
        JP C,error_sn
        PUSH HL
        LD H,HIGH LETTER_TYPES
        LD L,C
_type:
        LD (HL),B
        INC L
        SUB 1
        JR NC,_type
        POP HL
        LD A,(HL)
        CP ','
        RET NZ
        RST 10h
        JR define_types
; Out:  E low address of the letter's type, A next character
_letter:
        LD A,(HL)
        SUB 'A'
        CP 26
        JP NC,error_sn
        INC A                   ; LETTER_TYPES begins at 01
        LD E,A
        RST 10h
        RET

; SWAP variable, variable
stmt_swap:
        PUSH HL
        CALL find_variable
        RST 08h
        DEFB ','
        CALL find_variable
        EX (SP),HL
        PUSH DE
        PUSH BC
        CALL find_variable      ; again: the second one may have been made, and arrays moved
        POP AF
        POP HL
        CP B
        JP NZ,error_tm
_byte:
        LD A,(DE)
        LD C,(HL)
        LD (HL),A
        LD A,C
        LD (DE),A
        INC HL
        INC DE
        DJNZ _byte
        POP HL
        RET

; CLEAR, CLEAR size of the string space
stmt_clear:
        JR Z,_clear
        CALL get_integer
        BIT 7,D
        JP NZ,error_fc
        PUSH HL
        LD HL,(MEMORY_TOP)
        OR A
        SBC HL,DE
        JP C,error_om
        EX DE,HL
        LD HL,(PROGRAM_END)
        LD BC,CLEAR_ROOM
        ADD HL,BC
        SBC HL,DE
        JP NC,error_om
        LD (STRING_SPACE),DE
        POP HL
_clear:
        CALL clear_variables
        RET                     ; to the address that it left there
