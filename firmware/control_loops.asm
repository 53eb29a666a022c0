; FOR and NEXT.

; FOR variable = value TO limit STEP step
stmt_for:
        PUSH HL
        CALL stmt_let
        EX (SP),HL
        CALL find_variable
        LD (FOR_VARIABLE),DE
        LD HL,(ARRAYS)
        RST 18h
        JP C,error_sn           ; an element of an array
        POP HL
        LD A,B
        LD (FOR_TYPE),A
        AND 9                   ; no loops of double precision, or of strings
        JP NZ,error_tm
        POP BC                  ; new_statement
        RST 08h
        DEFB TOKEN_TO
        CALL eval_number
        CALL _convert
        PUSH HL
        LD HL,ACCUMULATOR
        LD DE,FOR_LIMIT
        CALL copy_four
        LD HL,1
        CALL set_integer
        POP HL
        LD A,(HL)
        CP TOKEN_STEP
        JR NZ,_frame
        RST 10h
        CALL eval_number
; A loop of the same variable ends, with those in it.
_frame:
        CALL _convert
        LD (NEXT_TEXT),HL
        LD DE,(FOR_VARIABLE)
        CALL first_loop
        JR NZ,_build
        LD BC,FRAME_SIZE
        ADD HL,BC
        LD SP,HL
_build:
        LD HL,(NEXT_TEXT)
        PUSH HL
        LD HL,(CURRENT_LINE)
        PUSH HL
        LD HL,(FOR_LIMIT + 2)
        PUSH HL
        LD HL,(FOR_LIMIT)
        PUSH HL
        LD HL,(ACCUMULATOR + 2)
        PUSH HL
        LD HL,(ACCUMULATOR)
        PUSH HL
        PUSH DE
        CALL num_sign
        NEG
        LD D,A
        LD A,(FOR_TYPE)
        RRCA
        DEC A
        OR FRAME_INTEGER        ; or FRAME_SINGLE
        LD E,A
        PUSH DE
        LD HL,(NEXT_TEXT)
        JP opened
; The accumulator as the variable's type.
_convert:
        PUSH HL
        LD BC,(FOR_TYPE - 1)
        CALL convert_type
        POP HL
        RET

; Finds the loop of a variable among those that are open.
; In:   DE variable, 0 for any; the innermost frame on top of the stack
; Out:  HL its frame, Z; NZ if there is none: HL the frame of another kind that ended the search,
;       A its kind
; Uses: AF, BC
first_loop:
        LD HL,2
        ADD HL,SP
_frame:
        LD A,(HL)
        AND FRAME_KIND
        CP FRAME_INTEGER
        LD A,(HL)
        RET NZ
        LD A,D
        OR E
        RET Z
        INC HL
        INC HL
        LD A,(HL)
        INC HL
        SUB E
        LD B,A
        LD A,(HL)
        SUB D
        DEC HL
        DEC HL
        DEC HL
        OR B
        RET Z
        LD BC,FRAME_SIZE
        ADD HL,BC
        JR _frame

; NEXT, NEXT variable, NEXT variable,variable ...
stmt_next:
        POP BC                  ; new_statement
_variable:
        LD DE,0
        CALL NZ,find_variable
        LD (NEXT_TEXT),HL
        CALL first_loop
        LD E,ERR_NF
        JP NZ,raise_error
        LD SP,HL
        LD (SAVED_STACK),HL
        LD A,(HL)
        INC HL
        LD B,(HL)               ; sign of the step, negated
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        INC HL
        RRCA
        PUSH BC
        JR C,_single
; Integers.
        LD A,(DE)
        ADD A,(HL)
        LD C,A
        LD (DE),A
        INC HL
        INC DE
        LD A,(DE)
        ADC A,(HL)
        JP PE,error_ov
        LD (DE),A
        LD B,A
        INC HL
        INC HL
        INC HL
        LD A,C
        SUB (HL)
        LD E,A
        INC HL
        LD A,B
        SBC A,(HL)
        JP PE,_overflow
        LD C,A
        OR E
        LD A,C
        JR Z,_compared
_sign:
        RLA
        CCF
        SBC A,A                 ; FF above the limit
        OR 1
        JR _compared
_overflow:
        CPL
        JR _sign
_single:
        PUSH DE
        EX DE,HL
        PUSH DE
        LD DE,LEFT_SINGLE       ; the moves in line: each loop passes here
        LDI
        LDI
        LDI
        LDI
        POP HL
        LD DE,ACCUMULATOR
        LDI
        LDI
        LDI
        LDI
        PUSH HL
        CALL single_add
        POP HL
        POP DE
        PUSH HL
        LD HL,ACCUMULATOR
        LDI
        LDI
        LDI
        LDI
        POP HL
        LD DE,LEFT_SINGLE
        LDI
        LDI
        LDI
        LDI
        CALL compare_single
_compared:
        POP BC
        LD HL,(SAVED_STACK)
        CP B
        JR Z,_done              ; beyond the limit, in the direction of the step
        LD BC,FRAME_SIZE - 4
        ADD HL,BC
        LD E,(HL)
        INC HL
        LD D,(HL)
        LD (CURRENT_LINE),DE
        INC HL
        LD A,(HL)
        INC HL
        LD H,(HL)
        LD L,A
        JP new_statement
_done:
        LD BC,FRAME_SIZE
        ADD HL,BC
        LD SP,HL
        LD (SAVED_STACK),HL
        LD HL,(NEXT_TEXT)
        LD A,(HL)
        CP ','
        JP NZ,new_statement
        RST 10h
        JP _variable
