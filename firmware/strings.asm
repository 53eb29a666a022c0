; Strings: their descriptors, their space, garbage collection.
;
; A descriptor is a length and the address of the characters. Those of variables stand in the
; variables, those of values that are still being worked on on a small stack of temporaries. The
; characters are in the string space, which fills from MEMORY_TOP down to STRING_POINTER, or in
; the program text. No two descriptors share characters in the string space, so garbage is what
; none points at.

; No temporaries.
; Uses: HL
reset_temporaries:
        LD HL,TEMPORARIES
        LD (TEMP_POINTER),HL
        RET

; Room for a new string.
; In:   A length
; Out:  DE first character, BC length; STRING_WORK describes it; OS error if there is no room
; Uses: all but IY
make_string:
        LD (STRING_WORK),A
        LD C,A
        XOR A
        LD B,A
        CALL _take
        PUSH BC
        CALL collect_garbage
        POP BC
        CALL _take
        JP error_os
; Goes back to the caller of make_string unless there is no room.
; In:   no carry
_take:
        LD HL,(STRING_POINTER)
        SBC HL,BC
        RET C
        LD DE,(STRING_SPACE)
        RST 18h
        RET C
        POP DE
        LD (STRING_POINTER),HL
        INC HL
        LD (STRING_WORK + 1),HL
        EX DE,HL
        RET

; Two strings made one.
; In:   LEFT + 4 and ACCUMULATOR the addresses of their descriptors
; Out:  accumulator
; Uses: all but IY
join_strings:
        LD HL,(LEFT + 4)
        LD DE,(ACCUMULATOR)
        LD A,(DE)
        ADD A,(HL)
        JP C,error_ls
        PUSH HL
        PUSH DE
        PUSH HL
        CALL make_string
        POP HL
        CALL copy_string
        POP HL
        CALL move_string
        POP HL
        PUSH HL
        CALL release
; STRING_WORK as the value, and HL from the stack.
string_made:
        POP HL
; STRING_WORK becomes a temporary and the value.
; Out:  accumulator, HL kept; ST error if there are too many
; Uses: AF, BC, DE
push_string:
        PUSH HL
        LD DE,(TEMP_POINTER)
        LD HL,STRING_WORK       ; also the end of the temporaries
        RST 18h
        JP Z,error_st
        LD (ACCUMULATOR),DE
        LD BC,3
        LDIR
        LD (TEMP_POINTER),DE
        LD A,TYPE_STRING
        LD (NUMBER_TYPE),A
        POP HL
        RET

; A string between quotes, not copied.
; In:   HL opening quote
; Out:  accumulator, HL behind the closing quote
literal_string:
        INC HL
        LD BC,256 * STRING_QUOTE + STRING_QUOTE
        CALL text_string
        CP STRING_QUOTE
        RET NZ
        INC HL
        RET
; A text where it stands.
; In:   HL first character, B and C characters that end it besides 0
; Out:  accumulator, HL and A the character that ended it
; Uses: all but IY
text_string:
        LD (STRING_WORK + 1),HL
        LD E,-1
        DEC HL
_next:
        INC E
        INC HL
        LD A,(HL)
        OR A
        JR Z,_end
        CP B
        JR Z,_end
        CP C
        JR NZ,_next
_end:
        LD A,E
        LD (STRING_WORK),A
        CALL push_string
        LD A,(HL)
        RET

; The string in the accumulator, given up. If it was a temporary at the end of the string space
; its room is free again, so the characters stay only until the next string is made.
; Out:  A length, DE first character; BC, HL kept; TM error for a number
take_string:
        CALL check_string
        PUSH HL
        PUSH BC
        LD HL,(ACCUMULATOR)
        CALL release
        LD C,(HL)
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        JR NZ,_end
        LD HL,(STRING_POINTER)
        INC HL
        RST 18h
        JR NZ,_end
        DEC HL
        LD B,0
        ADD HL,BC
        LD (STRING_POINTER),HL
_end:
        LD A,C
        POP BC
        POP HL
        RET

; A copy of a string, which is given up.
; In:   HL descriptor
; Out:  STRING_WORK describes the copy
; Uses: all but IY
duplicate_string:
        PUSH HL
        LD A,(HL)
        CALL make_string
        POP HL
; Copies the characters of a string and gives it up.
; In:   HL descriptor, DE where the characters go
; Out:  DE behind them
; Uses: AF, BC, HL
move_string:
        PUSH HL
        CALL copy_string
        POP HL
; Gives up a descriptor if it is the newest temporary.
; In:   HL descriptor
; Out:  Z if so
; Uses: AF
release:
        PUSH DE
        LD DE,(TEMP_POINTER)
        DEC DE
        DEC DE
        DEC DE
        RST 18h
        JR NZ,_other
        LD (TEMP_POINTER),HL
_other:
        POP DE
        RET

; The characters of a string.
; In:   HL descriptor, DE where the characters go
; Out:  DE behind them
; Uses: AF, BC, HL
copy_string:
        LD C,(HL)
        LD B,0
        CALL following_word
; LDIR that also moves nothing.
copy_bytes:
        LD A,B
        OR C
        RET Z
        LDIR
        RET

; A string as a variable may own it: characters in the program text stay there, those of a temporary
; change hands, others are copied.
; In:   ACCUMULATOR descriptor
; Out:  ACCUMULATOR descriptor, given up; DE kept
; Uses: AF, BC, HL
own_string:
        PUSH DE
        LD HL,(ACCUMULATOR)
        PUSH HL
        LD A,(HL)
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        OR A
        JR Z,_own               ; nothing to copy
        LD HL,(PROGRAM_START)
        RST 18h
        JR NC,_copy
        LD HL,(PROGRAM_END)
        RST 18h
        JR NC,_own
        POP HL
        PUSH HL
        CALL release
        JR Z,_own
_copy:
        POP HL
        CALL duplicate_string
        LD HL,STRING_WORK
        LD (ACCUMULATOR),HL
        PUSH HL
_own:
        POP HL
        CALL release
        POP DE
        RET

; Two strings compared.
; In:   LEFT + 4 and ACCUMULATOR the addresses of their descriptors
; Out:  A = FF, 0, 1: left one less, equal, greater
; Uses: all
compare_strings:
        CALL take_string
        LD C,A
        PUSH DE
        LD HL,(LEFT + 4)
        CALL release
        LD B,(HL)
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        POP HL
        INC B
        INC C
_next:
        DEC B
        JR Z,_ended
        DEC C
        JR Z,_greater
        LD A,(DE)
        CP (HL)
        INC HL
        INC DE
        JR Z,_next
        SBC A,A
        RET C
_greater:
        LD A,1
        RET
_ended:
        XOR A
        DEC C
        RET Z                   ; both at their end
        DEC A
        RET

; Stops the statement that is being worked on if BREAK is down. CONT begins it again, so it must not
; have done anything yet that it may not do twice.
; Uses: AF
poll_statement:
        CALL test_break
        RET Z
        LD SP,(SAVED_STACK)
        CALL auto_off           ; the message is for the screen
        LD HL,(STATEMENT)
        JP stop_run

; Brings all strings in use together at the top of the string space, from the highest one down. The
; string space is worked on in windows, each with a table that has a word for each of its bytes: the
; address of the descriptor of the string that begins there, or 0. The table lies in the free memory
; or in the gap that has come about in the string space, with 255 bytes on both sides for strings
; that begin within the window or are moved before their place in the table was looked at. BREAK ends
; it between two strings: what has been moved stays, and the space below it is not given back yet.
; Out:  HL STRING_POINTER, no carry
; Uses: all but IY; OM error if there is next to no stack
collect_garbage:
        LD HL,(MEMORY_TOP)
        LD (COLLECT_TOP),HL
        LD (COLLECT_NEXT),HL
_window:
        LD HL,-COLLECT_STACK
        ADD HL,SP
        LD BC,(FREE_SPACE)
        SBC HL,BC
        JP C,error_om
        PUSH BC
        EX DE,HL
        LD BC,(COLLECT_TOP)
        INC B
        INC B
        LD HL,(COLLECT_NEXT)
        SBC HL,BC
        JR C,_free
        RST 18h
        JR C,_free
        EX DE,HL                ; the gap is larger
        POP AF
        DEC B
        PUSH BC
_free:
        POP BC
        LD (COLLECT_TABLE),BC
        SRL D
        RR E
        INC DE                  ; bytes for which there is room
        LD A,COLLECT_PAGES
        CP D
        JR NC,_fits
        LD D,A
_fits:
        LD HL,(COLLECT_TOP)
        LD BC,(STRING_POINTER)
        OR A
        SBC HL,BC               ; bytes left
        JP Z,_end
        RST 18h
        JR C,_last
        EX DE,HL
_last:
        PUSH HL
        POP IX
        EX DE,HL
        LD HL,(COLLECT_TOP)
        OR A
        SBC HL,DE
        LD (COLLECT_TOP),HL     ; now the byte below the window
        PUSH HL
        EX DE,HL
        ADD HL,HL
        LD B,H
        LD C,L
        LD HL,(COLLECT_TABLE)
        XOR A
        CALL fill_memory
        POP BC
        INC BC
        LD HL,TEMPORARIES
        LD DE,(TEMP_POINTER)
        CALL _descriptors
        LD HL,(PROGRAM_END)
_variable:
        LD DE,(FREE_SPACE)
        RST 18h
        JR Z,_move
        LD DE,(ARRAYS)
        RST 18h
        LD A,(HL)
        INC HL
        INC HL
        INC HL
        LD E,A
        LD D,0
        JR C,_simple
        LD E,(HL)
        INC HL
        LD D,(HL)
        INC HL
        PUSH BC
        LD C,(HL)
        LD B,0
        EX DE,HL
        ADD HL,DE
        EX DE,HL
        INC HL
        ADD HL,BC
        ADD HL,BC
        POP BC
        JR _type
_simple:
        EX DE,HL
        ADD HL,DE
        EX DE,HL
_type:
        CP TYPE_STRING
        CALL Z,_descriptors
        EX DE,HL
        JR _variable
_move:
        PUSH IX
        POP HL
        ADD HL,HL
        LD DE,(COLLECT_TABLE)
        ADD HL,DE               ; from the end of the table down
_entry:
        DEC HL
        LD D,(HL)
        DEC HL
        LD A,D
        OR A
        JR Z,_empty
        LD E,(HL)
        PUSH HL
        EX DE,HL
        LD D,(HL)
        DEC HL
        LD E,(HL)
        DEC HL
        LD C,(HL)
        LD B,0
        PUSH HL
        EX DE,HL
        ADD HL,BC
        DEC HL
        LD DE,(COLLECT_NEXT)
        LDDR
        LD (COLLECT_NEXT),DE
        POP HL
        INC DE
        INC HL
        LD (HL),E
        INC HL
        LD (HL),D
        POP HL
_empty:
        LD A,(COLLECT_TABLE)
        CP L
        JR NZ,_entry
        CALL poll_statement
        LD A,(COLLECT_TABLE + 1)
        CP H
        JR NZ,_entry
        JP _window
_end:
        LD HL,(COLLECT_NEXT)
        LD (STRING_POINTER),HL
        RET

; Puts descriptors of strings that begin in the window into the table.
; In:   HL first one, DE end; BC first byte of the window, IX its size
; Out:  HL and DE end, BC kept
; Uses: AF
_descriptors:
        LD (COLLECT_END),DE
        JR _next
_descriptor:
        LD A,(HL)
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        EX DE,HL
        OR A
        JR Z,_skip
        SBC HL,BC
        JR C,_skip
        LD A,L
        SUB IXL
        LD A,H
        SBC A,IXH
        JR NC,_skip
        ADD HL,HL
        PUSH BC
        LD BC,(COLLECT_TABLE)
        ADD HL,BC
        POP BC
        LD (HL),E
        INC HL
        LD (HL),D               ; where the address in the descriptor ends
_skip:
        EX DE,HL
        INC HL
_next:
        LD A,(COLLECT_END)
        CP L
        JR NZ,_descriptor
        CALL poll_statement        ; each 256 descriptors, or more often
        LD A,(COLLECT_END + 1)
        CP H
        JR NZ,_descriptor
        LD D,H
        LD E,L
        RET
