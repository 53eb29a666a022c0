; EDIT: a line of the program is changed by commands of one key.
;
; HL is the place in LINE_BUFFER, C the count typed before a command.

; EDIT line
stmt_edit:
        LD A,(HL)
        CALL number_or_dot
        RET NZ
        POP BC                  ; new_statement
        LD (EDIT_LINE),DE
_again:
        LD DE,(EDIT_LINE)
        CALL before_line
        INC HL
        INC HL
        INC HL
        INC HL
        INC HL
        CALL detokenize
_line:
        LD HL,(EDIT_LINE)
        CALL print_line_number
        LD A,' '
        CALL print_entry
        LD HL,LINE_BUFFER
_command:
        LD C,0
_key:
        CALL wait_for_key
        CALL capital
        LD E,A
        SUB '0'
        CP 10
        JR NC,_letter
        LD B,A                  ; the count, ten times and the digit
        LD A,C
        ADD A,A
        ADD A,A
        ADD A,C
        ADD A,A
        ADD A,B
        LD C,A
        JR _key
_letter:
        LD A,C
        OR A
        JR NZ,_counted
        INC C
_counted:
        LD B,C
        LD A,E
        LD DE,_command
        PUSH DE                 ; where commands return
        PUSH HL
        LD HL,_commands - 1
_next:
        INC HL
        BIT 7,(HL)
        JR NZ,_unknown
        CP (HL)
        INC HL
        JR NZ,_next
        LD E,(HL)
        LD D,0
        LD HL,_forward
        ADD HL,DE
        EX (SP),HL
        RET
_unknown:
        POP HL
        RET
_commands:
        DEFB ' ', _forward - _forward
        DEFB BACKSPACE, _back - _forward
        DEFB RETURN, _enter - _forward
        DEFB 'E', _save - _forward
        DEFB 'Q', _quit - _forward
        DEFB BREAK, _quit - _forward
        DEFB 'L', _list - _forward
        DEFB 'A', _reload - _forward
        DEFB 'X', _extend - _forward
        DEFB 'H', _hack - _forward
        DEFB 'I', _insert - _forward
        DEFB 'D', _delete - _forward
        DEFB 'C', _change - _forward
        DEFB 'S', _search - _forward
        DEFB 'K', _kill - _forward
        DEFB 80h

_forward:
        LD A,(HL)
        OR A
        RET Z
        CALL print_entry
        INC HL
        DJNZ _forward
        RET
_back:
        CALL _step_back
        DJNZ _back
        RET
_step_back:
        LD A,L
        CP LOW LINE_BUFFER
        RET Z                   ; the buffer is shorter than 256
        DEC HL
        LD A,BACKSPACE
        CALL print_entry
        OR H                    ; NZ
        RET
_list:
        CALL print_text
        CALL new_screen_row
        POP DE
        JP _line
_reload:
        CALL new_screen_row
        POP DE
        JP _again
_quit:
        CALL new_screen_row
        JP prompt
_enter:
        CALL print_text
_save:
        CALL new_screen_row
        LD HL,LINE_BUFFER
        LD DE,(EDIT_LINE)
        JP store_line
_extend:
        CALL print_text
        DEC HL
        JR _insert
_hack:
        LD (HL),0
_insert:
        CALL wait_for_key
        CP ESCAPE
        RET Z
        CP RETURN
        JR Z,_enter
        CP BREAK
        JR Z,_quit
        CP BACKSPACE
        JR Z,_rub_out
        CP ' '
        JR C,_insert
        LD E,A
        PUSH HL
        CALL skip_line
        LD A,L
        SUB LOW LINE_BUFFER
        CP LINE_LENGTH
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

; Takes the character at HL out.
; Uses: AF, DE
_take:
        PUSH HL
        LD D,H
        LD E,L
_move:
        INC HL
        LD A,(HL)
        LD (DE),A
        INC DE
        OR A
        JR NZ,_move
        POP HL
        RET

; What is taken out is shown between exclamation marks.
_delete:
        CALL _mark
_one:
        LD A,(HL)
        OR A
        JR Z,_mark
        CALL print_entry
        CALL _take
        DJNZ _one
_mark:
        LD A,'!'
        JP print_entry

_change:
        LD A,(HL)
        OR A
        RET Z
        CALL wait_for_key
        CP BREAK
        RET Z
        CP ' '
        JR C,_change
        LD (HL),A
        INC HL
        CALL print_entry
        DJNZ _change
        RET

; Up to the character that the next key names, which may be found several times.
_search:
        CALL wait_for_key
        LD C,A
_over:
        LD A,(HL)
        OR A
        RET Z
        CALL print_entry
        INC HL
        LD A,(HL)
        CP C
        JR NZ,_over
        DJNZ _over
        RET
_kill:
        CALL wait_for_key
        LD C,A
        CALL _mark
_out:
        LD A,(HL)
        OR A
        JR Z,_mark
        CALL print_entry
        CALL _take
        LD A,(HL)
        CP C
        JR NZ,_out
        DJNZ _out
        JR _mark
