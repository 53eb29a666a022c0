; Functions of a program's own: DEF FN and FN, DEF USR and USR with a digit.

; DEF FN name(variables) = value; DEF USR digit = address
; In:   HL text, A character
word_def:
        CP TOKEN_USR
        JR Z,define_usr
        CP TOKEN_FN
        JP NZ,error_sn
        CALL direct_mode
        JP Z,error_id           ; the text would be gone
        RST 10h
        CALL variable_name
        SET 7,D                 ; a name that no variable has
        CALL make_variable
        CALL definition_place
        EX DE,HL
        LD (HL),E
        INC HL
        LD (HL),D
        EX DE,HL
        LD A,(HL)
        CP '('
        JR NZ,_value
_parameter:
        RST 10h
        CALL variable_name
        CP '('
        JP Z,error_sn
        CALL make_variable
        LD A,(HL)
        CP ','
        JR Z,_parameter
        RST 08h
        DEFB ')'
_value:
        RST 08h
        DEFB TOKEN_EQUAL
        JP skip_statement

; In:   D, E name, B type
; Out:  DE value; B, HL kept
make_variable:
        CALL search_simple
        RET Z
        JP make_simple
; Where a function has the address of its definition: the end of its value, for what the string
; collection sees must be an empty string.
; In:   DE value, B type
; Out:  DE; BC, HL kept
definition_place:
        LD A,B
        SUB 2
        ADD A,E
        LD E,A
        RET NC
        INC D
        RET

; DEF USR digit = address
define_usr:
        RST 10h
        LD A,0
        JR NC,_cell
        LD A,(HL)
        PUSH AF
        RST 10h
        POP AF
        SUB '0'
_cell:
        CALL usr_cell
        PUSH DE
        RST 08h
        DEFB TOKEN_EQUAL
        CALL get_address
        EX (SP),HL
        LD (HL),E
        INC HL
        LD (HL),D
        POP HL
        RET
; In:   A number
; Out:  DE cell of the address
; Uses: F
usr_cell:
        LD DE,USR_ADDRESS
        OR A
        RET Z
        PUSH HL
        LD HL,(DISK_AREA)
        LD DE,USR_TABLE - 2
        ADD HL,DE
        LD E,A
        LD D,0
        ADD HL,DE
        ADD HL,DE
        EX DE,HL
        POP HL
        RET
; No addresses of USR1 to USR9.
; Uses: AF, BC, DE, HL
forget_usr:
        LD A,1
        CALL usr_cell
        LD HL,error_fc
        LD B,9
_cell:
        EX DE,HL
        LD (HL),E
        INC HL
        LD (HL),D
        INC HL
        EX DE,HL
        DJNZ _cell
        RET
; USR digit (value)
; In:   HL behind USR, A and carry as next_character
serve_usr:
        RET NC
        SUB '0'
        JR NZ,_other
        RST 10h
        RET
_other:
        CALL usr_cell
        POP BC                  ; BASIC's address
        EX DE,HL
        LD C,(HL)
        INC HL
        LD B,(HL)
        EX DE,HL
        PUSH BC
        RST 10h
        JP call_function

; FN name(values). On the stack lie meanwhile TEMP_POINTER, a gap, PARAMETER_SIZE bytes for each
; value, the text, number of values and type of the function, and FN_CHAIN as it was, at which
; FN_CHAIN points. The values change places with those of the variables, and again at the end; the
; ones of strings are temporaries, where the string collection finds them. The gap keeps it all
; when a message is printed before the prompt gives the variables their values back.
FN_GAP          EQU 64
PARAMETER_SIZE  EQU 12          ; type, as a word; address of the variable; ACC_LOW to ACC_EXPONENT
function_fn:
        CALL variable_name
        SET 7,D
        CALL search_simple
        JP NZ,fail_function
        CALL definition_place
        CALL check_stack        ; for the gap
        PUSH HL
        LD HL,(TEMP_POINTER)
        EX (SP),HL
        PUSH HL
        POP IX
        LD HL,-FN_GAP
        ADD HL,SP
        LD SP,HL
        EX DE,HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        PUSH IX
        POP HL                  ; HL text, DE definition
        LD C,0                  ; number of values, B type
        CALL check_stack
        LD A,(DE)
        CP '('
        JR NZ,_call
        CP (HL)
        JR NZ,_wrong
_argument:
        PUSH BC
        PUSH DE
        RST 10h
        CALL check_stack
        CALL eval
        EX (SP),HL
        RST 10h
        CALL variable_name
        PUSH HL
        CALL search_simple
        JP NZ,fail_function
        PUSH DE
        PUSH BC
        CALL convert_value
        CP TYPE_STRING
        CALL Z,own_temporary
        EXX
        POP DE                  ; type
        POP BC                  ; variable
        EXX
        POP DE
        POP HL
        POP BC
        EXX
        LD HL,(ACC_HIGH)
        PUSH HL
        LD HL,(ACCUMULATOR)
        PUSH HL
        LD HL,(ACC_LOW + 2)
        PUSH HL
        LD HL,(ACC_LOW)
        PUSH HL
        PUSH BC
        PUSH DE
        EXX
        INC C
        LD A,(DE)
        CP (HL)
        JR NZ,_wrong
        CP ','
        JR Z,_argument
        RST 08h
        DEFB ')'
        EX DE,HL
        RST 10h
        EX DE,HL
_call:
        PUSH HL
        PUSH BC
        LD HL,(FN_CHAIN)
        PUSH HL
        LD (FN_CHAIN),SP
        PUSH DE
        CALL exchange_parameters
        POP HL
        RST 08h
        DEFB TOKEN_EQUAL
        CALL eval
        LD A,(HL)
        OR A
        JR Z,_whole
        CP ':'
_wrong:
        JP NZ,error_sn
_whole:
        LD HL,(FN_CHAIN)
        INC HL
        INC HL
        INC HL
        LD B,(HL)
        CALL convert_value
        CP TYPE_STRING
        JR NZ,_restore
        CALL own_temporary
        LD HL,(ACCUMULATOR)
        LD DE,STRING_WORK
        LD BC,3
        LDIR
_restore:
        CALL exchange_back
        POP HL
        LD (FN_CHAIN),HL
        POP BC
        POP DE
        LD HL,FN_GAP
        LD B,0
        LD A,PARAMETER_SIZE
_size:
        ADD HL,BC
        DEC A
        JR NZ,_size
        ADD HL,SP
        LD SP,HL
        POP HL
        LD (TEMP_POINTER),HL
        EX DE,HL
        RST 20h
        RET NZ
        JP push_string

; The string in the accumulator becomes the newest temporary, with characters of its own.
; Uses: all but IY
own_temporary:
        LD HL,(TEMP_POINTER)
        DEC HL
        DEC HL
        DEC HL
        LD DE,(ACCUMULATOR)
        RST 18h
        RET Z
        LD A,(DE)
        PUSH DE
        CALL make_string
        POP HL
        CALL copy_string
        JP push_string

; The parameters and their variables exchange their values: of the frame at FN_CHAIN. Back in the
; opposite order, in case a variable was named twice.
; Uses: AF, BC, DE, HL
exchange_back:
        CALL values_kept
        RET Z
        LD C,A
_last:
        DEC C
        LD DE,-PARAMETER_SIZE
        JR Z,exchange_each
        LD DE,PARAMETER_SIZE
        ADD HL,DE
        JR _last
exchange_parameters:
        CALL values_kept
        RET Z
        LD DE,PARAMETER_SIZE
; In:   HL first one, DE distance of the next one, A number
exchange_each:
        PUSH AF
        PUSH DE
        PUSH HL
        INC HL
        LD B,(HL)
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        INC HL
        PUSH HL
        LD HL,(ARRAYS)          ; is it a variable? after the reset key there is none
        SCF
        SBC HL,DE
        CCF
        JR NC,_none
        LD HL,(PROGRAM_END)
        OR A
        SBC HL,DE
_none:
        POP HL
        JR NC,_next
        LD A,B
        CP TYPE_DOUBLE
        JR Z,_byte
        INC HL
        INC HL
        INC HL
        INC HL
        CP TYPE_STRING
        JR NZ,_byte
        LD A,(HL)
        INC HL
        LD H,(HL)
        LD L,A
_byte:
        LD C,(HL)
        LD A,(DE)
        LD (HL),A
        LD A,C
        LD (DE),A
        INC HL
        INC DE
        DJNZ _byte
_next:
        POP HL
        POP DE
        ADD HL,DE
        POP AF
        DEC A
        JR NZ,exchange_each
        RET
; Out:  HL the lowest one, A their number, Z for 0
values_kept:
        LD HL,(FN_CHAIN)
        INC HL
        INC HL
        LD A,(HL)
        INC HL
        INC HL
        INC HL
        INC HL
        OR A
        RET

; Before the prompt: the reset key may have come while LOAD or MERGE changed the program, and BREAK
; may have ended a statement while strings were collected.
serve_ready:
        LD A,(LOADING)
        OR A
        JR Z,_program_whole
        POP HL
        LD (DISK_WORK),HL
        DEC A                   ; LOADING_ALL
        CALL NZ,relink_program
        CALL drop_program
        CALL clear_variables
        LD HL,(DISK_WORK)
        PUSH HL
_program_whole:
        CALL end_redirection
; What an error or BREAK has left of FN goes: the variables get their values back.
; Out:  all registers kept
restore_parameters:
        PUSH AF
        PUSH BC
        PUSH DE
        PUSH HL
_frame:
        LD HL,(FN_CHAIN)
        LD A,H
        OR L
        JR Z,_end
        PUSH HL
        CALL exchange_back
        POP HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        RST 18h
        JR C,_next
        LD DE,0                 ; written over
_next:
        LD (FN_CHAIN),DE
        JR _frame
_end:
        POP HL
        POP DE
        POP BC
        POP AF
        RET
