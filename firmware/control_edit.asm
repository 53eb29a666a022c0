; EDIT: a line of the program is changed by commands of one key.
;
; HL is the place in LINE_BUFFER, B the count typed before a command, C 0.

; EDIT line. Where a line is too long with its words in full, PRINT is ?.
stmt_edit:
        CALL number_or_dot
        RET NZ
        LD (EDIT_LINE),DE
_reload:
        POP DE                  ; new_statement, _command
        LD DE,(EDIT_LINE)
        CALL before_line
        LD BC,5
        ADD HL,BC
_words:
        PUSH HL
        LD DE,LINE_BUFFER
        CALL detokenize
        LD (DE),A
        POP HL
        LD A,E
        CP LOW (LINE_BUFFER + LIST_LENGTH - 1)
        JR NZ,_line
        LD A,B
        RES 0,A
        LD B,TOKEN_PRINT
        CP B
        JR NZ,_words
        JP error_ls
_line:
        CALL text_screen_row
        LD HL,(EDIT_LINE)
        CALL list_number
        LD HL,LINE_BUFFER
_command:
        LD BC,0
_key:
        CALL _wait
        CALL capital
        LD E,A
        SUB '0'
        CP 10
        JR NC,_letter
        LD D,A                  ; the count, ten times and the digit
        LD A,B
        ADD A,A
        ADD A,A
        ADD A,B
        ADD A,A
        ADD A,D
        LD B,A
        JR _key
_letter:
        INC B
        DEC B
        JR NZ,_counted
        INC B
_counted:
        LD A,E
        LD DE,_command
        PUSH DE                 ; where commands return
        PUSH HL
        LD HL,_commands - 1
_next:
        INC HL
        BIT 7,(HL)
        JR NZ,_routine
        CP (HL)
        INC HL
        JR NZ,_next
_routine:
        LD E,(HL)
        LD D,0
        LD HL,_enter
        ADD HL,DE
        EX (SP),HL
        RET
_enter:
        CALL print_text
_save:
        CALL new_screen_row
        LD HL,LINE_BUFFER
        LD DE,(EDIT_LINE)
        LD A,(HL)
        OR A
        JP NZ,store_line
_anew:
        JR _reload              ; a line without text would go
_show:
        CALL print_text
        POP DE
        JR _line

; A key; BREAK leaves.
_wait:
        CALL wait_for_key
        CP BREAK
        RET NZ
_quit:
        JP ready

_back:
        CALL _step_back
        DJNZ _back
        RET
_step_back:
        LD A,L
        CP LOW LINE_BUFFER
        JP NZ,step_back         ; the buffer is shorter than 256
        RET
_extend:
        CALL print_text
        DEC HL
        JR _insert
_hack:
        LD (HL),C
_insert:
        CALL _wait
        CP ESCAPE
        RET Z
        CP RETURN
        JR Z,_enter
        CP BACKSPACE
        JR Z,_rub_out
        CP ' '
        JR C,_insert
        LD E,A
        PUSH HL
        CALL skip_line
        LD A,L
        SUB LOW LINE_BUFFER
        CP LIST_LENGTH - 2
        POP HL
        JR NC,_insert           ; full
        PUSH HL
_move_up:
        LD A,(HL)
        LD (HL),E
        LD E,A
        INC HL
        OR A
        JR NZ,_move_up
        LD (HL),A
        POP HL
        LD A,(HL)
        INC HL
        CALL print_entry
        JR _insert
_rub_out:
        CALL _step_back
        CALL NZ,_take
        JR _insert

_change:
        LD A,(HL)
        OR A
        RET Z
        CALL _wait
        CP ' '
        JR C,_change
        LD (HL),A
        INC HL
        CALL print_entry
        DJNZ _change
        RET

; What is taken out is shown between exclamation marks.
_kill:
        CALL _wait
        LD C,A
_delete:
        CALL _mark
        PUSH HL
        CALL _forward
        POP DE
        CALL _take_to
_mark:
        LD A,'!'
        JP print_entry

; Up to the character that the next key names, which may be found several times.
_search:
        CALL _wait
        LD C,A
; In:   C 0: any character
_forward:
        LD A,(HL)
        OR A
        RET Z
        CALL print_entry
        INC HL
        LD A,C
        OR A
        JR Z,_any
        CP (HL)
        JR NZ,_forward
_any:
        DJNZ _forward
_nothing:
        RET

; Takes the character at HL out, or those from DE to HL.
; Out:  HL where they were
; Uses: AF, DE
_take:
        LD D,H
        LD E,L
        INC HL
_take_to:
        PUSH DE
_move:
        LD A,(HL)
        LD (DE),A
        INC HL
        INC DE
        OR A
        JR NZ,_move
        POP HL
        RET
_commands:
        DEFB ' ', _forward - _enter
        DEFB BACKSPACE, _back - _enter
        DEFB RETURN, _enter - _enter
        DEFB 'E', _save - _enter
        DEFB 'Q', _quit - _enter
        DEFB 'L', _show - _enter
        DEFB 'A', _anew - _enter
        DEFB 'X', _extend - _enter
        DEFB 'H', _hack - _enter
        DEFB 'I', _insert - _enter
        DEFB 'D', _delete - _enter
        DEFB 'C', _change - _enter
        DEFB 'S', _search - _enter
        DEFB 'K', _kill - _enter
        DEFB _nothing - _enter  ; 80 or more
