; Variables and arrays.
;
; A simple variable: type (2, 3, 4, 8), second character of the name or 0, first character, value.
; An array: type, second character, first character, length of the rest (2), number of dimensions,
; number of elements in each dimension from the last to the first (2 each), values with the first
; subscript running fastest.

AUTO_ELEMENTS   EQU 11          ; in a dimension that no DIM gave: 0 to 10
TYPE_MASK       EQU 0Fh
DIM_FLAG        EQU 7           ; bit of B besides the type

; The variable of a name, made if there is none.
; In:   HL first character of the name
; Out:  DE address of its value, B and NUMBER_TYPE type, HL the next character that is no blank
; Uses: all
find_variable:
        CALL search_variable
        LD A,B
        LD (NUMBER_TYPE),A
        RET Z
; Makes a simple variable of value 0; the arrays move up.
; In:   D, E name, B type
; Out:  DE value; B, HL kept
; Uses: AF, C
make_simple:
        PUSH HL
        PUSH DE
        PUSH BC
        LD A,B
        ADD A,3
        LD C,A
        LD B,0
        PUSH BC
        LD DE,(ARRAYS)
        PUSH DE
        LD HL,(FREE_SPACE)
        CALL move_up
        LD (FREE_SPACE),HL
        POP DE                  ; old start of the arrays
        POP HL
        ADD HL,DE
        LD (ARRAYS),HL
        EX DE,HL
        POP BC
        POP DE
        LD (HL),B
        INC HL
        LD (HL),E
        INC HL
        LD (HL),D
        INC HL
        PUSH HL
        LD C,B
_zero:
        LD (HL),0
        INC HL
        DEC C
        JR NZ,_zero
        POP DE
        POP HL
        RET

; Looks for the variable of a name; an array is made if there is none.
; In:   HL first character of the name
; Out:  Z if found: DE address of its value, else D, E name; B type, HL the next character that is
;       no blank
; Uses: all
search_variable:
        CALL variable_name
        CP '('
        JP NZ,search_simple
        JP find_element

; The value of a variable. One that does not exist is 0 and is not made, since that would move
; arrays whose addresses are in use.
; In:   HL first character of the name
; Out:  accumulator, HL the next character that is no blank
; Uses: all
read_variable:
        CALL search_variable
        JR Z,_load
        LD DE,no_value
_load:
        LD A,B
        LD (NUMBER_TYPE),A
        EX DE,HL
        CP TYPE_SINGLE
        JR NZ,_other
        LD C,(HL)
        INC HL
        LD B,(HL)
        LD (ACCUMULATOR),BC
        INC HL
        LD C,(HL)
        INC HL
        LD B,(HL)
        LD (ACCUMULATOR + 2),BC
        EX DE,HL
        RET
_other:
        PUSH DE
        CALL acc_from_hl
        POP HL
        RET

; Reads a name.
; In:   HL first character
; Out:  D first character, E second one or 0, B type, HL and A the next character that is no blank
; Uses: AF, BC
variable_name:
        LD A,(HL)
        LD D,A
        SUB 'A'
        CP 26
        JP NC,error_sn
        LD E,0
_next:
        INC HL
        LD A,(HL)
        CP '0'
        JR C,_suffix
        CP ':'
        JR C,_more
        CP 'A'
        JR C,_default
        CP 'Z' + 1
        JR NC,_default
_more:
        INC E
        DEC E
        JR NZ,_next             ; the second character is known
        LD E,A
        JR _next
_default:
        LD B,HIGH LETTER_TYPES
        LD A,D
        SUB 'A' - 1             ; LETTER_TYPES begins at 01
        LD C,A
        LD A,(BC)
        LD B,A
        LD A,(HL)
        RET
_suffix:
        LD B,TYPE_STRING
        CP '$'
        JR Z,_given
        DEC B
        CP '%'
        JR Z,_given
        LD B,TYPE_SINGLE
        CP '!'
        JR Z,_given
        CP '#'
        JR Z,_double
        CP ' '
        JR NZ,_default
        RST 10h
        JR _default
_double:
        LD B,TYPE_DOUBLE
_given:
        JP next_character

; Looks for a simple variable.
; In:   D, E name, B type
; Out:  Z if found: DE value, else D, E kept; B, HL kept
; Uses: AF, C, DE, IX
search_simple:
        PUSH HL
        LD IX,(ARRAYS)
        LD HL,(PROGRAM_END)
        LD A,L
        JR _end
_entry:
        LD C,(HL)
        INC HL
        INC HL
        LD A,(HL)
        CP D
        JR Z,_first
_skip:
        INC HL
        LD A,C
        ADD A,L
        LD L,A
        JR C,_page
_end:
        CP IXL
        JR NZ,_entry
        LD A,H
        CP IXH
        JR NZ,_entry
        OR A                    ; NZ
        POP HL
        RET
_page:
        INC H
        JR _end
_first:
        DEC HL
        LD A,(HL)
        INC HL
        CP E
        JR NZ,_skip
        LD A,C
        CP B
        JR NZ,_skip
        INC HL
        EX DE,HL
        POP HL
        RET

; An element of an array; with DIM_FLAG of B the whole array is made and there is no element.
; In:   HL '(', D, E name, B type
; Out:  DE address of the element, Z; B and NUMBER_TYPE type, HL the next character that is no blank
; Uses: all
find_element:
        LD C,0                  ; subscripts
_subscript:
        PUSH DE
        PUSH BC
        INC HL
        CALL get_integer
        BIT 7,D
        JP NZ,error_fc
        POP BC
        EX (SP),HL
        EX DE,HL                ; DE name
        EX (SP),HL              ; the subscripts stay on the stack
        INC C
        LD A,(HL)
        CP ','
        JR NZ,_last
        CALL check_stack
        JR _subscript
_last:
        RST 08h
        DEFB ')'
        LD (FIND_TEXT),HL
        LD A,B
        AND TYPE_MASK
        LD (NUMBER_TYPE),A
        LD IYL,A
        LD IX,(FREE_SPACE)
        LD HL,(ARRAYS)
        JR _end
_array:
        LD A,(HL)
        INC HL
        CP IYL
        JR NZ,_type
        LD A,(HL)
        INC HL
        CP E
        JR NZ,_second
        LD A,(HL)
        CP D
        JR Z,array_found
        JR _second
_type:
        INC HL
_second:
        INC HL
        PUSH DE
        LD E,(HL)
        INC HL
        LD D,(HL)
        INC HL
        ADD HL,DE
        POP DE
_end:
        LD A,L
        CP IXL
        JR NZ,_array
        LD A,H
        CP IXH
        JR NZ,_array
; In:   HL = FREE_SPACE, D, E name, B DIM_FLAG, C dimensions, the subscripts on the stack
make_array:
        LD A,(NUMBER_TYPE)
        LD (HL),A               ; there is room for a few sizes, and those of DIM leave the stack
        INC HL
        LD (HL),E
        INC HL
        LD (HL),D
        INC HL
        PUSH HL
        POP IX                  ; where the length comes
        INC HL
        INC HL
        LD (HL),C
        INC HL
        LD IYH,B
        LD D,0
        LD E,A
        LD A,C
        LD IYL,A
_size:
        LD BC,AUTO_ELEMENTS
        LD A,IYH
        ADD A,A                 ; DIM_FLAG
        JR NC,_automatic
        POP BC
        INC BC
_automatic:
        LD (HL),C
        INC HL
        LD (HL),B
        INC HL
        CALL multiply_words
        DEC IYL
        JR NZ,_size
        PUSH HL
        ADD HL,DE
        JR C,too_large
        CALL check_room
        LD (FREE_SPACE),HL
        PUSH IX
        POP BC
        OR A
        SBC HL,BC
        DEC HL
        DEC HL
        LD (IX + 0),L
        LD (IX + 1),H
        POP HL
        LD B,D
        LD C,E
        XOR A
        CALL fill_memory
        LD A,IYH
        ADD A,A
        LD HL,(FIND_TEXT)
        RET C
        PUSH IX
        POP HL
        INC HL
        INC HL
        LD C,(HL)
        INC HL
        JR element_address

array_found:
        BIT DIM_FLAG,B
        JP NZ,error_dd
        INC HL
        INC HL
        INC HL
        LD A,(HL)
        CP C
        JP NZ,error_bs
        INC HL
; In:   HL sizes, C dimensions, the subscripts on the stack, the last one on top
element_address:
        LD A,C
        LD IXL,A
        LD DE,0
_dimension:
        LD C,(HL)
        INC HL
        LD B,(HL)
        INC HL
        LD A,D
        OR E
        CALL NZ,multiply_words
        EX (SP),HL
        OR A
        SBC HL,BC
        JP NC,error_bs
        ADD HL,BC
        ADD HL,DE
        EX DE,HL
        POP HL
        DEC IXL
        JR NZ,_dimension
        LD A,(NUMBER_TYPE)
        LD B,A                  ; also the size
_element:
        ADD HL,DE
        DEC A
        JR NZ,_element
        EX DE,HL
        LD HL,(FIND_TEXT)
        RET

; Out:  DE = DE * BC, OM error above 65535; HL, BC kept
; Uses: AF
multiply_words:
        PUSH HL
        LD HL,0
        LD A,16
_bit:
        ADD HL,HL
        JR C,too_large
        EX DE,HL
        ADD HL,HL
        EX DE,HL
        JR NC,_zero
        ADD HL,BC
        JR C,too_large
_zero:
        DEC A
        JR NZ,_bit
        EX DE,HL
        POP HL
        RET
too_large:
        JP error_om

; DIM name (sizes), ...
stmt_dim:
        CALL variable_name
        CP '('
        JR Z,_array
        CALL search_simple
        CALL NZ,make_simple
        JR _next
_array:
        SET DIM_FLAG,B
        CALL find_element
_next:
        LD A,(HL)
        CP ','
        RET NZ
        RST 10h
        JR stmt_dim
