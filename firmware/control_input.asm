; READ and INPUT, and a few small statements.

; RESTORE, RESTORE line
stmt_restore:
        JR Z,restore_data
        CALL line_number
        PUSH HL
        CALL before_line
        JR set_data_pointer
; Out:  HL kept
restore_data:
        PUSH HL
        LD HL,(PROGRAM_START)
        DEC HL
set_data_pointer:
        LD (DATA_POINTER),HL
        POP HL
        RET

; INPUT "prompt";variable,variable ...; INPUT#-1,variable,variable ...
word_input:
        CP '#'
        CALL Z,tape_number
        JP Z,input_from_tape
stmt_input:
        CALL hook_input
        CALL input_prompt
        CALL ask_line
        OR A
        JP Z,skip_statement     ; Enter alone: the variables keep their values
; In:   LINE_BUFFER values, A not 0: INPUT_SOURCE
input_values:
        LD DE,LINE_BUFFER - 1
        EX DE,HL
        LD (HL),','             ; a value is behind a comma
        EX DE,HL
        JR read_values

; READ variable,variable ...
stmt_read:
        XOR A
        LD DE,(DATA_POINTER)
; In:   HL variables, DE before the values, A INPUT_SOURCE
read_values:
        LD (INPUT_SOURCE),A
        LD (INPUT_TEXT),DE
_variable:
        CALL find_variable
        PUSH HL
        PUSH DE
        PUSH BC
        LD HL,(INPUT_TEXT)
        LD A,(HL)
        CP ','
        JR Z,_value
        LD A,(INPUT_SOURCE)
        OR A
        JR NZ,_more
_data:
        CALL skip_statement
        OR A
        JR NZ,_statement
        INC HL
        LD A,(HL)
        INC HL
        OR (HL)
_out_of_data:
        LD E,ERR_OD
        JP Z,raise_error
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        LD (DATA_LINE),DE
_statement:
        RST 10h
        CP TOKEN_DATA
        JR NZ,_data
_value:
        RST 10h
        POP BC
        PUSH BC
        BIT 0,B
        JR NZ,_string
        CALL parse_number
        JR _taken
_string:
        CP STRING_QUOTE
        JR NZ,_plain
        CALL literal_string
        JR _taken
_plain:
        LD BC,',' * 257
        LD A,(INPUT_SOURCE)
        OR A
        JR NZ,_ends
        LD C,':'
_ends:
        CALL text_string
_taken:
        DEC HL
        RST 10h
        JR Z,_end_of_value
        CP ','
        JR NZ,_bad
_end_of_value:
        LD (INPUT_TEXT),HL
        POP BC
        POP DE
        CALL assign
        POP HL
        DEC HL
        RST 10h
        CP ','
        JR NZ,_last
        RST 10h
        JR _variable
_last:
        LD DE,(INPUT_TEXT)
        LD A,(INPUT_SOURCE)
        OR A
        JR NZ,_extra
        LD (DATA_POINTER),DE
        RET
_extra:
        LD A,(DE)
        OR A
        RET Z
        PUSH HL
        LD HL,extra_text
        CALL print_text
        POP HL
        RET
_more:
        CP RETURN
        JR Z,_out_of_data
        LD A,'?'
        CALL print_entry
        CALL ask_line
        LD HL,LINE_BUFFER - 1
        LD (HL),','
        OR A
        JR NZ,_value
        POP BC
        POP BC
        POP HL
        JP skip_statement
_bad:
        LD A,(INPUT_SOURCE)
        OR A
        JR NZ,_again
        LD HL,(DATA_LINE)
        LD (CURRENT_LINE),HL
        JP error_sn
_again:
        CP RETURN
        JP Z,error_fd
        LD HL,redo_text
        CALL print_text
        LD HL,(STATEMENT)
        LD SP,(SAVED_STACK)
        JP new_statement

; LINE INPUT "prompt";variable
stmt_line:
        RST 08h
        DEFB TOKEN_INPUT
        CALL hook_input
        CALL input_prompt
        CALL find_variable
        BIT 0,B
        JP Z,error_tm
        PUSH HL
        PUSH DE
        PUSH BC
        CALL read_input
        LD HL,LINE_BUFFER
        LD BC,0
        CALL text_string
        POP BC
        POP DE
        POP HL
        JP assign

; Prompt of an INPUT statement, if there is one.
; In:   HL text
; Out:  HL behind it
input_prompt:
        CALL direct_mode
        JP Z,error_id
        LD A,(HL)
        CP '#'
        JP Z,error_l3           ; no disk ROM took it
        CP STRING_QUOTE
        RET NZ
        CALL literal_string
        RST 08h
        DEFB ';'
        CALL take_string
        JP put_string

; Reads a line behind a question mark. BREAK stops the program.
; In:   HL kept
; Out:  A first character of LINE_BUFFER, 0 for none
ask_line:
        LD A,'?'
        CALL print_entry
        LD A,' '
        CALL print_entry
read_input:
        PUSH HL
        CALL read_buffer
        POP HL
        LD A,(LINE_BUFFER)
        RET NC
break_statement:
        LD HL,(STATEMENT)
        JP stop_run

; Reads a line into LINE_BUFFER and ends it by 0.
; Out:  B its length, carry if BREAK ended it
; Uses: AF, BC, DE, HL
read_buffer:
        LD B,LINE_LENGTH
; In:   B greatest length
read_short:
        LD HL,LINE_BUFFER
        CALL read_line
        PUSH AF
        LD E,B
        LD D,0
        ADD HL,DE
        LD (HL),D
        POP AF
        RET

extra_text:
        DEFM "?EXTRA IGNORED"
        DEFB RETURN, 0
redo_text:
        DEFM "?REDO"
        DEFB RETURN, 0

; RANDOM
stmt_random:
        PUSH HL
        CALL randomize
        POP HL
        RET

; CALL address
stmt_call:
        CALL get_address
        PUSH HL
        CALL _call
        POP HL
        RET
_call:
        PUSH DE
        RET
