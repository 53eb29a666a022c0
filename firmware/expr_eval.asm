; Values: operators by precedence, operands, literals.

PREC_POWER      EQU 7Fh
PREC_NEGATE     EQU 7Dh
PREC_TIMES      EQU 7Ch
PREC_PLUS       EQU 79h
PREC_RELATION   EQU 64h
PREC_NOT        EQU 5Ah
PREC_AND        EQU 50h
PREC_OR         EQU 46h
OPERATORS       EQU 10          ; from TOKEN_PLUS on, the last three compare
FIRST_RELATION  EQU TOKEN_GREATER - TOKEN_PLUS

; A number.
; In, out: as eval
eval_number:
        CALL eval
; TM error unless the accumulator holds a number.
; Out:  A type, carry for an integer
; Uses: F
check_number:
        LD A,(NUMBER_TYPE)
        CP TYPE_STRING
        RET NZ
        JR type_error

; A string.
; In:   HL text
; Out:  A length, DE address of the characters, which stay until the next string is made;
;       HL behind
; Uses: all
eval_string:
        CALL eval
        JP take_string

; A string in the accumulator.
eval_text:
        CALL eval
check_string:
        RST 20h
        RET Z
type_error:
        JP error_tm

; The value of a text.
; In:   HL text
; Out:  value in the accumulator, HL the first character that does not belong to it
; Uses: all
eval:
        LD D,0
; The same with operators of a precedence above D only.
eval_above:
        PUSH DE
        CALL operand
_next:
        LD A,(HL)
        SUB TOKEN_PLUS
        CP OPERATORS
        JR NC,_end
        LD C,A
        CP FIRST_RELATION
        JR NC,_relation
        EX DE,HL
        LD B,0
        LD HL,precedences
        ADD HL,BC
        LD B,(HL)
        EX DE,HL
        POP DE
        LD A,D
        CP B
        RET NC
        PUSH DE
        INC HL
; In:   B precedence, C operator
_right:
        LD A,(NUMBER_TYPE)
        CP TYPE_SINGLE
        JR C,_word
        JR Z,_single
        LD DE,(ACC_LOW)
        PUSH DE
        LD DE,(ACC_LOW + 2)
        PUSH DE
_single:
        LD DE,(ACCUMULATOR + 2)
        PUSH DE
_word:
        LD DE,(ACCUMULATOR)
        PUSH DE
        LD D,B
        LD B,A
        PUSH BC
        CALL eval_above
        POP BC
        POP DE
        LD (LEFT + 4),DE
        LD A,B
        LD (LEFT_TYPE),A
        CP TYPE_SINGLE
        JR C,_popped
        POP DE
        LD (LEFT + 6),DE
        JR Z,_popped
        POP DE
        LD (LEFT + 2),DE
        POP DE
        LD (LEFT),DE
_popped:
        PUSH HL
        CALL operate
        POP HL
        JR _next
_end:
        POP DE
        RET
_relation:
        POP DE
        LD A,D
        CP PREC_RELATION
        RET NC
        PUSH DE
        LD C,80h
_sign:
        LD A,(HL)
        SUB TOKEN_GREATER
        CP 3
        JR NC,_signs
        CALL bit_mask           ; 0 > 1 = 2 < becomes 1 > 2 = 4 <
        XOR C
        CP C
        LD C,A
        JP C,error_sn           ; the same sign again
        RST 10h
        JR _sign
_signs:
        LD B,PREC_RELATION
        JR _right

; In:   A number of a bit
; Out:  A with that bit set, B = 0
bit_mask:
        LD B,A
        INC B
        LD A,80h
_bit:
        RLCA
        DJNZ _bit
        RET

precedences:
        DEFB PREC_PLUS, PREC_PLUS, PREC_TIMES, PREC_TIMES, PREC_POWER, PREC_AND, PREC_OR
operator_table:
        DEFW num_add, num_subtract, num_multiply, num_divide, num_power, and_values, or_values

; A text on the right of a number is refused by the operators.
; In:   left operand, B = LEFT_TYPE, accumulator, C operator or 80 + relation
; Out:  accumulator
operate:
        LD A,B
        CP TYPE_STRING
        JR Z,_strings
        LD A,C
        ADD A,A
        JR C,_compare
        LD E,A
        LD D,0
        LD HL,operator_table
        ADD HL,DE
        LD A,(HL)
        INC HL
        LD H,(HL)
        LD L,A
        JP (HL)
_strings:
        CALL check_string
        LD A,C
        OR A
        JP Z,join_strings
        JP P,error_tm
        PUSH BC
        CALL compare_strings
        JR _relation
_compare:
        PUSH BC
        CALL num_compare
_relation:
        POP BC
        NEG                     ; FF, 0, 1: less, equal, greater
        ADD A,2
        CP 3
        JR NZ,_mask
        INC A                   ; 4, 2, 1
_mask:
        AND C
; The values -1 and 0.
; In:   Z for 0
truth:
        LD HL,0
        JR Z,_false
        DEC HL
_false:
        JP set_integer

; AND and OR of integers.
and_values:
        CALL two_integers
        LD A,H
        AND D
        LD H,A
        LD A,L
        AND E
        JR integer_result
or_values:
        CALL two_integers
        LD A,H
        OR D
        LD H,A
        LD A,L
        OR E
integer_result:
        LD L,A
        JP set_integer

; Out:  DE accumulator, HL left operand as integers
two_integers:
        CALL to_integer
        PUSH HL
        CALL left_to_acc
        CALL to_integer
        POP DE
        RET

; One operand with the signs before it.
; In:   HL text
; Out:  accumulator, HL the next character that is no blank
operand:
        LD A,(HL)
        CP 'A'
        JR C,_below
        CP 'Z' + 1
        JP C,read_variable
        CP TOKEN_MINUS
        JR Z,_minus
        CP FIRST_FUNCTION
        JP NC,function
        CP TOKEN_PLUS
        JR Z,_blank
        CP TOKEN_NOT
        JR Z,_not
        SUB TOKEN_FN
        CP TOKEN_INKEY - TOKEN_FN + 1
        JR NC,_wrong
        LD DE,syntax_functions
        JP dispatch_word
_below:
        CP '9' + 1
        JR NC,_end
        CP '0'
        JR NC,literal
        CP '.'
        JP Z,slow_literal
        CP STRING_QUOTE
        JR Z,_string
        CP '('
        JR Z,parentheses
        CP '&'
        JP Z,hexadecimal
        OR A
        JR Z,_missing
        CP ' ' + 1
        JR NC,_wrong
_blank:
        RST 10h
        JR operand
_end:
        CP ':'
        JR Z,_missing
_wrong:
        JP error_sn
_missing:
        JP error_mo
_string:
        CALL literal_string
        JP skip_blanks
_minus:
        LD D,PREC_NEGATE
        CALL unary_operand
        PUSH HL
        CALL num_negate
        JR pop_text
_not:
        LD D,PREC_NOT
        CALL unary_operand
        PUSH HL
        CALL to_integer
        CALL negate_hl
        DEC HL
        CALL set_integer
pop_text:
        POP HL
        RET
unary_operand:
        INC HL
        CALL check_stack
        JP eval_above

; A value in parentheses.
parentheses:
        CALL check_stack
        RST 08h
        DEFB '('
        CALL eval
close_parenthesis:
        RST 08h
        DEFB ')'
        RET

; Numbers. Whole ones without a type are read here, the others by parse_number.
; In:   HL first digit, A the same
literal:
        LD D,H
        LD E,L                  ; in case it gets longer
        SUB '0'
        LD C,A
        LD B,0
_digit:
        INC HL
        LD A,(HL)
        SUB '0'
        CP 10
        JR NC,_end
        LD (ACCUMULATOR),A
        LD A,B
        CP 0Ch                  ; above 3071 another digit may be too much
        JR NC,_slow
        PUSH HL
        LD H,B
        LD L,C
        ADD HL,HL
        ADD HL,HL
        ADD HL,BC
        ADD HL,HL
        LD A,(ACCUMULATOR)
        LD C,A
        LD B,0
        ADD HL,BC
        LD B,H
        LD C,L
        POP HL
        JR _digit
_blank:
        RST 10h
        JR C,_slow              ; a digit: the number goes on
        JR _what
_end:
        ADD A,'0'
        CP ' '
        JR Z,_blank
_what:
        OR A
        JR Z,whole_literal
        JP M,whole_literal      ; a token
        CP ')'
        JR Z,whole_literal
        CP ','
        JR Z,whole_literal
        CP ':'
        JR Z,whole_literal
        CP ';'
        JR Z,whole_literal
_slow:
        EX DE,HL
slow_literal:
        CALL parse_number
skip_blanks:
        LD A,(HL)
        CP ' '
        RET NZ
        JP next_character

; In:   BC whole number
; Out:  accumulator
whole_literal:
        LD (ACCUMULATOR),BC
        LD A,TYPE_INTEGER
        LD (NUMBER_TYPE),A
        RET

; &H and up to four hexadecimal digits; anything else behind & belongs to a disk ROM.
hexadecimal:
        RST 10h
        CP 'H'
        JP NZ,disk_ampersand
        LD DE,0
_digit:
        RST 10h
        SUB '0'
        CP 10
        JR C,_value
        SUB 'A' - '0' - 10
        CP 10
        JR C,_end
        CP 16
        JR NC,_end
_value:
        EX DE,HL
        LD B,4
_shift:
        ADD HL,HL
        JP C,error_ov
        DJNZ _shift
        ADD A,L
        LD L,A
        EX DE,HL
        JR _digit
_end:
        LD B,D
        LD C,E
        JR whole_literal

; Functions with a token of their own.
; In:   HL token, A the same
function:
        CP TOKEN_MID + 1
        JR NC,extended_function
        LD DE,function_table
        SUB FIRST_FUNCTION
        CP TOKEN_MID - 2 - FIRST_FUNCTION
        JP NC,dispatch_word ; LEFT$, RIGHT$ and MID$ read their arguments
        EX DE,HL
        CALL word_at
        EX DE,HL
        PUSH DE                 ; routine; it gives the TM error for a wrong type
        RST 10h
; In:   HL '(', routine on the stack
call_function:
        CALL parentheses
        EX (SP),HL              ; the text below, the routine away
        CALL call_hl
        POP HL
        RET
extended_function:
        INC A
        JP NZ,error_sn
        INC HL
        LD A,(HL)
        LD DE,func_joy
        CP WORD_JOY
        JR Z,_word
        LD DE,func_keypad
        CP WORD_KEYPAD
        JR Z,_word
        LD DE,func_cpoint
        CP WORD_CPOINT
        JP NZ,error_sn
_word:
        PUSH DE
        JP next_character
call_hl:
        JP (HL)

; From FN to INKEY$.
syntax_functions:
        DEFW disk_fn, error_sn, func_varptr, func_usr, func_erl, func_err, func_string
        DEFW func_instr, func_point, disk_time, func_mem, func_inkey
