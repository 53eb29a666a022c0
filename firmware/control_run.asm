; Running: from statement to statement, from line to line.

; Between two statements: the BREAK key, the end of the statement and of the line.
; In:   HL end of the statement before: ':' or 0
new_statement:
        LD (STATEMENT),HL
        LD A,(BREAK_ROW)
        AND 1 << BREAK_BIT
        JR NZ,break_pressed
        LD A,(HL)
        CP ':'
        JR Z,begin_statement
        OR A
        JP NZ,error_sn
        INC HL
; Runs a line.
; In:   HL its link
run_line:
        LD A,(HL)
        INC HL
        OR (HL)
        JR Z,end_of_program
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        LD (CURRENT_LINE),DE
        LD A,(TRACE)
        OR A
        CALL NZ,print_trace
begin_statement:
        LD DE,new_statement
        PUSH DE
        CALL next_character
; Runs a statement.
; In:   HL first character, A with the flags of next_character; return address new_statement
execute:
        RET Z
        SUB FIRST_TOKEN
        JP C,stmt_let
        CP STATEMENT_TOKENS
        JR NC,extended_word
        LD DE,statement_table
; Goes to the routine of a word.
; In:   A number in the table DE, HL the word's last byte
dispatch_word:
        EX DE,HL
        ADD A,A
        LD C,A
        LD B,0
        ADD HL,BC
        LD C,(HL)
        INC HL
        LD B,(HL)
        PUSH BC
        EX DE,HL
        JP next_character
extended_word:
        INC A                   ; FF - 80 + 1
        JP P,error_sn
        INC HL
        LD A,(HL)
        SUB FIRST_TOKEN
        CP EXTENDED_WORDS
        JP NC,error_sn
        LD DE,extended_statement_table
        JR dispatch_word

; The text ends: of a program, or of a direct statement.
end_of_program:
        CALL direct_mode
        JR Z,_ready
        LD A,(IN_HANDLER)
        OR A
        LD E,ERR_NR
        JP NZ,raise_error
_ready:
        JP ready

; Out:  Z in direct mode
; Uses: AF, BC
direct_mode:
        LD BC,(CURRENT_LINE)
        LD A,B
        AND C
        INC A
        RET

; END. CONT goes on behind it, as behind STOP.
stmt_end:
        RET NZ
        CALL remember_position
        JP ready
break_pressed:
        CALL test_break
; Stops the run with the message for BREAK.
; In:   HL text where CONT goes on
stop_run:
        CALL remember_position
        CALL text_screen_row
        LD HL,break_text
        JP end_with_text
remember_position:
        CALL direct_mode
        RET Z
        LD (CONT_TEXT),HL
        LD (STOP_LINE),BC
        RET

; Tests the BREAK key. When it is down it is taken as reported, lest the prompt sees it, too.
; Out:  NZ if it is down
; Uses: AF
test_break:
        LD A,(BREAK_ROW)
        AND 1 << BREAK_BIT
        RET Z
        LD (KEY_ROWS + 6),A
        RET

; CONT
stmt_cont:
        RET NZ
        LD HL,(CONT_TEXT)
        LD A,H
        OR A
        JP Z,error_cn
        LD DE,(STOP_LINE)
        LD (CURRENT_LINE),DE
        RET

; TRON and TROFF
stmt_tron:
        DEFB 3Eh                ; LD A, with the next byte: not 0
stmt_troff:
        XOR A
        LD (TRACE),A
        RET

; In:   DE line number; HL kept
print_trace:
        PUSH HL
        EX DE,HL
        LD A,'<'
        CALL put_character
        CALL print_line_number
        LD A,'>'
        CALL put_character
        POP HL
        RET

; RUN, RUN line
stmt_run:
        CALL hook_run
        CALL clear_variables
        DEC HL
        RST 10h
        JR NZ,stmt_goto
        LD HL,(DATA_POINTER)    ; before the first line
        RET

; NEW
stmt_new:
        RET NZ
        LD HL,ready
        PUSH HL
; Takes the program away.
; Uses: AF, BC, DE, HL
empty_program:
        LD HL,(PROGRAM_START)
        XOR A
        LD (TRACE),A
        LD (HL),A               ; link 0000
        INC HL
        LD (HL),A
        INC HL
        LD (PROGRAM_END),HL
        JP clear_variables

; GOTO line
; In:   HL text
; Out:  HL before the link of the line
stmt_goto:
        CALL line_number
; In:   DE line number, HL text of the current line
; Out:  HL before the link of the line
go_to_line:
        LD BC,(CURRENT_LINE)
        LD A,C
        SUB E
        LD A,B
        SBC A,D
        JR NC,before_line
        CALL skip_line          ; it comes later: search from here
        INC HL
        CALL find_line_from
        JR line_found
; In:   DE line number
; Out:  HL before the link of the line; UL error if there is none
; Uses: AF, BC
before_line:
        CALL find_line
line_found:
        JP NZ,error_ul
        DEC HL
        RET

; Finds a line.
; In:   DE line number
; Out:  HL the first line with this or a greater number, Z if it is this one; BC the line behind
; Uses: AF
find_line:
        LD HL,(PROGRAM_START)
; In:   HL line from which to search
find_line_from:
        LD C,(HL)
        INC HL
        LD B,(HL)
        INC HL
        LD A,B
        OR C
        JR Z,_end
        LD A,(HL)
        INC HL
        SUB E
        LD A,(HL)
        JR Z,_low_equal
        SBC A,D
        JR NC,_greater
_next:
        LD H,B
        LD L,C
        JP find_line_from
_low_equal:
        SUB D
        JR C,_next
        JR _found
_greater:
        OR 1                    ; NZ
_found:
        DEC HL
        DEC HL
        DEC HL
        RET
_end:
        DEC HL
        DEC HL
        INC A                   ; NZ
        RET

; Reads a line number.
; In:   HL text
; Out:  DE number, HL first character behind it, A and flags as next_character
; Uses: AF, DE
line_number:
        LD DE,0
        DEC HL
_next:
        RST 10h
        RET NC
        PUSH AF
        PUSH HL
        LD HL,6552              ; times ten and nine: the greatest number
        RST 18h
        JP C,error_sn
        LD H,D
        LD L,E
        ADD HL,HL
        ADD HL,HL
        ADD HL,DE
        ADD HL,HL
        EX DE,HL
        POP HL
        POP AF
        SUB '0'
        ADD A,E
        LD E,A
        JR NC,_next
        INC D
        JR _next

; IF value THEN line or statements ELSE line or statements
stmt_if:
        CALL eval
        PUSH HL
        CALL num_sign
        POP HL
        JR Z,_false
        LD A,(HL)
        CP TOKEN_THEN
        JR Z,_branch
        CP ','
        JR Z,_branch
        DEC HL                  ; GOTO, or a statement at once
_branch:
        RST 10h
        JP C,stmt_goto
        JP execute
; Looks for the ELSE of this IF; each IF on the way has its own.
_false:
        LD D,1
_skip:
        CALL skip_statement
        OR A
        RET Z
        RST 10h
        CP TOKEN_ELSE
        JR NZ,_skip
        DEC D
        JR NZ,_skip
        JR _branch

; DATA: skipped.
stmt_data:
; Goes to the end of a statement.
; In:   HL text
; Out:  HL end, A = (HL); D raised by one for each IF
; Uses: AF
skip_statement:
        LD A,(HL)
        OR A
        RET Z
        CP ':'
        RET Z
        INC HL
        CP STRING_QUOTE
        CALL Z,skip_string
        CP EXTENDED
        JR Z,_two_bytes
        CP TOKEN_IF
        JR NZ,skip_statement
        INC D
        JR skip_statement
_two_bytes:
        INC HL
        JR skip_statement

; Goes to the end of a string.
; In:   HL behind the opening quote
; Out:  HL behind the closing one, A quote; or HL the end of the line, A = 0
; Uses: F
skip_string:
        LD A,(HL)
        OR A
        RET Z
        INC HL
        CP STRING_QUOTE
        JR NZ,skip_string
        RET

; REM, and an ELSE that is met at the end of what came behind THEN: the rest of the line.
stmt_rem:
stmt_else:
; Goes to the end of a line.
; Out:  HL the 0, A = 0
; Uses: AF, BC
skip_line:
        XOR A
        LD B,A
        LD C,A
        CPIR
        DEC HL
        RET

; ON value GOTO or GOSUB lines; ON ERROR GOTO line
stmt_on:
        CP TOKEN_ERROR
        JR Z,_error
        CALL get_byte
        LD C,E
        LD A,(HL)
        CP TOKEN_GOTO
        JR Z,_lines
        CP TOKEN_GOSUB
        JP NZ,error_sn
_lines:
        PUSH AF
_line:
        INC HL
        CALL line_number
        DEC C
        JR Z,_chosen
        CP ','
        JR Z,_line
        POP AF                  ; no such line in the list
        RET
_chosen:
        POP AF
        CP TOKEN_GOTO
        JP Z,go_to_line
        PUSH DE
        CALL skip_statement
        POP DE
        JR call_line
_error:
        RST 10h
        RST 08h
        DEFB TOKEN_GOTO
        CALL line_number
        PUSH HL
        LD A,D
        OR E
        JR Z,_off
        CALL before_line
        INC HL
        OR H                    ; NZ
        EX DE,HL
_off:
        POP HL
        LD (ON_ERROR),DE
        RET NZ
; ON ERROR GOTO 0 in the handling of an error leaves it to the system.
        LD A,(IN_HANDLER)
        OR A
        RET Z
        CALL error_statement
        LD (STATEMENT),HL
        LD A,(ERROR_CODE)
        LD E,A
        JP raise_error

; RESUME, RESUME NEXT, RESUME line
stmt_resume:
        PUSH AF
        LD A,(IN_HANDLER)
        OR A
        LD E,ERR_RW
        JP Z,raise_error
        XOR A
        LD (IN_HANDLER),A
        POP AF
        JR Z,error_statement
        CP TOKEN_NEXT
        JR NZ,_number
        CALL error_statement
        LD A,(HL)
        OR A
        JR NZ,_same_line
        LD BC,4                 ; over link and number
        ADD HL,BC
_same_line:
        INC HL
        JP skip_statement
_number:
        CALL line_number
        LD A,D
        OR E
        JP NZ,go_to_line
error_statement:
        LD HL,(ERROR_LINE)
        LD (CURRENT_LINE),HL
        LD HL,(ERROR_TEXT)
        RET

; GOSUB line
stmt_gosub:
        CALL line_number
; In:   DE line number, HL end of the statement
call_line:
        POP BC                  ; new_statement
        PUSH HL
        CALL go_to_line
        LD BC,(CURRENT_LINE)
        PUSH BC
        LD C,FRAME_GOSUB
        PUSH BC
; A loop or a call is open.
; In:   HL end of the statement
opened:
        LD (SAVED_STACK),SP
        CALL check_stack
        JP new_statement

; RETURN
stmt_return:
        RET NZ
        POP BC
        LD D,0FFh               ; of no variable
        CALL first_loop
        CP FRAME_GOSUB
        LD E,ERR_RG
        JP NZ,raise_error
        INC HL
        INC HL
        LD SP,HL
        POP HL
        LD (CURRENT_LINE),HL
        POP HL
        LD (SAVED_STACK),SP
        JP new_statement

; Room for the stack.
; Out:  all registers kept, OM error if there is none
check_stack:
        PUSH HL
        LD HL,(FREE_SPACE)
        CALL check_room
        POP HL
        RET

; In:   HL end of what is to lie below the stack
; Out:  all registers but AF kept, OM error if that meets the stack
check_room:
        PUSH HL
        PUSH DE
        LD DE,STACK_ROOM
        ADD HL,DE
        JP C,error_om
        SBC HL,SP
        JP NC,error_om
        POP DE
        POP HL
        RET

; Forgets variables, loops and calls, sets the DATA pointer back, and ends the program's handling
; of errors. For statements, to be called, not jumped at: the stack is made anew and holds
; new_statement and the return address.
; In:   HL kept
; Uses: AF, BC, DE
clear_variables:
        POP BC
        LD SP,(STRING_SPACE)
        LD DE,0
        PUSH DE                 ; ends the frames
        LD (SAVED_STACK),SP
        LD (ON_ERROR),DE
        LD (CONT_TEXT),DE
        LD (IN_HANDLER),DE      ; and TAPE_OPEN
        LD DE,new_statement
        PUSH DE
        PUSH BC
        PUSH HL
        LD A,TYPE_SINGLE
        LD BC,26
        LD HL,LETTER_TYPES
        CALL fill_memory
        LD HL,(MEMORY_TOP)
        LD (STRING_POINTER),HL
        LD HL,(PROGRAM_END)
        LD (ARRAYS),HL
        LD (FREE_SPACE),HL
        CALL reset_temporaries
        CALL restore_data
        POP HL
        JR check_stack
