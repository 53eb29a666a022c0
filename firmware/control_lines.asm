; The prompt, lines typed in, words to tokens.

; 1A19: The prompt. Takes the text screen and begins a new row.
ready:
        LD SP,(SAVED_STACK)
        CALL reset_devices
        CALL text_screen_row
        CALL hook_ready
        LD HL,ready_text
        CALL print_text
; Takes a line: a direct statement, or one for the program.
prompt:
        LD SP,(SAVED_STACK)
        LD HL,0FFFFh
        LD (CURRENT_LINE),HL
        LD A,(AUTO_ON)
        OR A
        JP NZ,auto_line
        LD A,'>'
        CALL print_entry
        CALL read_buffer
        JR C,ready
        CALL next_line_character
        JR C,_numbered
        OR A
        JR Z,prompt
        CALL hook_line
        CALL tokenize
        LD HL,TOKEN_BUFFER - 1
        LD (HL),':'
        JP new_statement
_numbered:
        CALL line_number
_blanks:
        DEC HL
        LD A,(HL)
        CP ' '
        JR Z,_blanks
        INC HL
        LD A,(HL)
        CP ' '
        JR NZ,store_line
        INC HL                  ; one is not kept, LIST shows it anyway
; Puts a line into the program, in place of one with its number; a line without text takes that
; one away.
; In:   DE line number, HL text, in LINE_BUFFER, ended by 0
store_line:
        LD (EDIT_LINE),DE
        LD (TOKEN_BUFFER - 2),DE
        CALL tokenize
        LD (LINE_SIZE),BC
        CALL clear_variables
        LD DE,(EDIT_LINE)
        CALL find_line
        CALL Z,close_gap
        LD A,(TOKEN_BUFFER)
        OR A
        JR Z,_changed
        LD BC,(LINE_SIZE)
        CALL open_gap
        PUSH HL
        EX DE,HL
        LD HL,TOKEN_BUFFER - LINE_HEAD
        LD BC,(LINE_SIZE)
        LDIR
        POP HL
        INC HL
        LD (HL),H               ; a link that is not 0
        DEC HL
_changed:
        CALL relink
        CALL clear_variables
        JP prompt

; The screen is the device again, AUTO is off, strings in work are given up.
; Uses: AF, HL
reset_devices:
        CALL reset_temporaries
; The screen is the device again, and AUTO is off.
auto_off:
        XOR A
        LD (OUTPUT_DEVICE),A
        LD (AUTO_ON),A
        RET

; First character of the line read.
; Out:  as next_character
next_line_character:
        LD HL,LINE_BUFFER - 1
        JP next_character

; Takes the text screen, the cursor at the begin of a row.
; Uses: AF, C, DE, HL
text_screen_row:
        LD A,(LATCH_COPY)
        BIT LATCH_GRAPHICS_BIT,A
        CALL NZ,show_text
        LD HL,(CURSOR)
        CALL column_of
        RET Z
new_screen_row:
        LD A,RETURN
        JP print_entry

; AUTO: the line gets its number.
auto_line:
        LD HL,(AUTO_NUMBER)
        PUSH HL
        CALL print_line_number
        POP DE
        PUSH DE
        CALL find_line
        LD A,'*'
        JR Z,_exists
        LD A,' '
_exists:
        CALL print_entry
        CALL read_buffer
        JP C,ready
        POP DE
        LD HL,(AUTO_STEP)
        ADD HL,DE
        LD (AUTO_NUMBER),HL
        CALL C,auto_off
        LD BC,65536 - LAST_NUMBER - 1
        ADD HL,BC
        CALL C,auto_off         ; numbers end
        LD HL,LINE_BUFFER
        LD A,(HL)
        OR A
        JP Z,prompt
        JP store_line

; Makes room in the program.
; In:   HL place, BC bytes
; Out:  HL kept; OM error if there is no room
; Uses: AF, BC, DE
open_gap:
        PUSH HL
        EX DE,HL
        LD HL,(PROGRAM_END)
        CALL move_up
        LD (PROGRAM_END),HL
        POP HL
        RET
; Moves memory up, with one byte behind it, for it may be empty.
; In:   DE start, HL end, BC by how many bytes
; Out:  HL new end; OM error if there is no room
; Uses: AF, BC, DE
move_up:
        PUSH HL
        ADD HL,BC
        CALL check_room
        EX (SP),HL
        PUSH HL
        OR A
        SBC HL,DE
        LD B,H
        LD C,L
        POP HL
        POP DE
        PUSH DE
        INC BC
        LDDR
        POP HL
        RET

; Takes bytes out of the program; the links have to be set afterwards.
; In:   HL first, BC the one behind the last
; Out:  HL kept
; Uses: AF, BC, DE
close_gap:
        PUSH HL
        EX DE,HL
        LD HL,(PROGRAM_END)
        OR A
        SBC HL,BC
        PUSH BC
        LD B,H
        LD C,L
        POP HL
        LDIR
        LD (PROGRAM_END),DE
        POP HL
        RET

; Sets the links of the lines anew, and the end of the program.
; In:   HL line from which on
; Uses: AF, BC, DE, HL
relink_program:
        LD HL,(PROGRAM_START)
relink:
        LD D,H
        LD E,L
        LD A,(HL)
        INC HL
        OR (HL)
        INC HL
        JR Z,_end
        INC HL
        INC HL
        CALL skip_line
        INC HL
        EX DE,HL
        LD (HL),E
        INC HL
        LD (HL),D
        EX DE,HL
        JR relink
_end:
        LD (PROGRAM_END),HL
        RET

; Makes tokens of the words of a line: below LINE_BUFFER, with three bytes 0 behind.
; In:   HL text in LINE_BUFFER, ended by 0; for tokenize_to, DE place two bytes or more before it
; Out:  TOKEN_BUFFER, BC the size of the line with its head and the first 0; for tokenize_to, HL
;       place + BC - TOKEN_BUFFER
; Uses: AF, DE, HL
tokenize:
        LD DE,TOKEN_BUFFER
tokenize_to:
_next:
        LD A,(HL)
        CP STRING_QUOTE
        JR Z,_string
        CALL capital
        OR A
        JR Z,_end
        CP '?'
        JR Z,_print
        CP "'"
        JR Z,_quote
        CP '&'
        JR Z,_hexadecimal
        CP '*'                  ; signs and letters may begin a word
        JR C,_store
        CP '0'
        JR C,_letter
        CP '<'
        JR C,_store
        CP '[' + 1
        JR C,_letter
_store:
        LD (DE),A
        INC DE
        INC HL
        JR _next
_print:
        LD A,TOKEN_PRINT
        JR _store
_string:
        CALL _copy
_copied_part:
        JR NZ,_next             ; at 0 the line ends, too
_end:
        EX DE,HL
        LD (HL),A
        INC HL
        LD (HL),A
        INC HL
        LD (HL),A
        LD DE,LINE_HEAD - TOKEN_BUFFER - 1
        ADD HL,DE
        LD B,H
        LD C,L
        RET
; ' is a REM that LIST shows otherwise.
_quote:
        LD A,':'
        LD (DE),A
        INC DE
        LD A,TOKEN_REM
        LD (DE),A
        INC DE
        LD A,TOKEN_QUOTE
        JR _remark
; Hexadecimal digits are no words.
_hexadecimal:
        CALL _put
        CP 'H'
        JR NZ,_next
_digit:
        CALL _put
        LD C,A
        SUB '0'
        CP 10
        JR C,_hexadecimal_digit
        SUB 'A' - '0'
        CP 6
        JP NC,_next
_hexadecimal_digit:
        LD A,C
        JR _digit
_letter:
        PUSH DE
        PUSH HL
        LD DE,keyword_table
        LD B,FIRST_TOKEN - EXTENDED_WORDS - 1
_word:
        POP HL
        PUSH HL
        INC B
        LD A,(DE)
        OR A
        JR Z,_no_word
        DEC HL
_compare:
        CALL next_capital
        LD C,A
        LD A,(DE)
        INC DE
        XOR C
        JR Z,_compare
        ADD A,A                 ; 80: the last letter
        JR Z,_found
        DEC DE
_skip:
        LD A,(DE)
        INC DE
        RLA
        JR NC,_skip
        JR _word
_no_word:
        POP HL
        POP DE
        LD A,(HL)
        CALL capital
        JR _store
_found:
        LD A,B
        POP DE
        POP DE
        CP FIRST_TOKEN
        JR C,_two_bytes
        CP TOKEN_ELSE
        LD BC,':' * 256 + STRING_QUOTE
        JR Z,_prefix
        CP TOKEN_DATA
        JR Z,_data
        CP TOKEN_REM
        JP NZ,_store
_remark:
        LD BC,0                 ; all of the line
_data:
        CALL _rest
        JP _copied_part
_two_bytes:
        ADD A,EXTENDED_WORDS
        LD B,EXTENDED
_prefix:
        EX DE,HL
        LD (HL),B
        INC HL
        EX DE,HL
        JP _store
; In:   A byte of the line made
; Out:  A next character as a capital
_put:
        LD (DE),A
        INC DE
        JR next_capital
; Copies up to a second character like the first; _rest up to one like B, and strings whole where C
; is a quote.
; Out:  A = 0 and Z at the end of the line
_copy:
        LD B,A
        LD C,0
_rest:
        LD (DE),A
_copied:
        INC DE
        INC HL
_copied_to:
        LD A,(HL)
        OR A
        RET Z
        CP C
        JR Z,_inner
        LD (DE),A
        CP B
        JR NZ,_copied
        INC DE
        INC HL
        OR A
        RET
_inner:
        PUSH BC
        CALL _copy
        POP BC
        JR NZ,_copied_to
        RET

; The next character of a text as a capital.
; In:   HL text
; Out:  HL at the character, A
next_capital:
        INC HL
        LD A,(HL)
; In:   A character
; Out:  A capital if it is a small letter
capital:
        CP 'a'
        RET C
        CP 'z' + 1
        RET NC
        SUB 'a' - 'A'
        RET

; AUTO number,step
stmt_auto:
        LD DE,10
        LD (AUTO_STEP),DE
        JR Z,_first
        CP ','
        CALL NZ,number_or_dot
_first:
        LD (AUTO_NUMBER),DE
        CP ','
        JR NZ,_start
        INC HL
        CALL line_number
        LD (AUTO_STEP),DE
_start:
        OR A
        RET NZ
        DEC A
        LD (AUTO_ON),A
        JP prompt
