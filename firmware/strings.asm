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
; Out:  DE first character; STRING_WORK describes it; OS error if there is no room
; Uses: all but IX, IY
make_string:
        LD (STRING_WORK),A
        LD C,A
        LD B,0
        CALL _take
        RET NC
        PUSH BC
        CALL collect_garbage
        POP BC
        CALL _take
        RET NC
        JP error_os
_take:
        LD HL,(STRING_POINTER)
        OR A
        SBC HL,BC
        RET C
        LD DE,(STRING_SPACE)
        RST 18h
        RET C
        LD (STRING_POINTER),HL
        INC HL
        LD (STRING_WORK + 1),HL
        EX DE,HL
        RET

; A string of one character, as the value.
; In:   A character
; Out:  HL kept
character_string:
        PUSH HL
        PUSH AF
        LD A,1
        CALL make_string
        POP AF
        LD (DE),A
        JR string_made

; A copy of a text, as the value.
; In:   HL text outside the string space, B characters
; Out:  accumulator, HL kept
copy_text:
        PUSH HL
        PUSH BC
        LD A,B
        PUSH HL
        CALL make_string
        POP HL
        POP BC
        LD C,B
        LD B,0
        CALL copy_bytes
string_made:
        POP HL
; STRING_WORK becomes a temporary and the value.
; Out:  accumulator, HL kept; ST error if there are too many
; Uses: AF, BC, DE
push_string:
        PUSH HL
        LD DE,(TEMP_POINTER)
        LD A,E
        CP LOW TEMP_END
        JP Z,error_st
        LD (ACCUMULATOR),DE
        LD HL,STRING_WORK
        LD BC,3
        LDIR
        LD (TEMP_POINTER),DE
        LD A,TYPE_STRING
        LD (NUMBER_TYPE),A
        POP HL
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
; Uses: all but IX, IY
text_string:
        LD (STRING_WORK + 1),HL
        LD E,0
        DEC HL
_next:
        INC HL
        LD A,(HL)
        OR A
        JR Z,_end
        CP B
        JR Z,_end
        CP C
        JR Z,_end
        INC E
        JR _next
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
        LD (TEMP_POINTER),DE
_other:
        POP DE
        RET

; The string in the accumulator into a variable. Characters in the program text stay there, those
; of a temporary change hands, others are copied.
; In:   DE variable
; Uses: all but IX, IY
assign_string:
        PUSH DE
        LD HL,(ACCUMULATOR)
        PUSH HL
        LD A,(HL)
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        OR A
        JR Z,_take              ; nothing to copy
        LD HL,(PROGRAM_END)
        RST 18h
        JR C,_outside
        LD HL,(PROGRAM_START)
        RST 18h
        JR C,_take
        JR Z,_take
_copy:
        POP HL
        PUSH HL
        LD A,(HL)
        CALL make_string
        POP HL
        PUSH HL
        CALL copy_string
        POP HL
        CALL release
        LD HL,STRING_WORK
        JR _store
_outside:
        POP HL
        PUSH HL
        CALL release
        JR NZ,_copy
_take:
        POP HL
        CALL release
_store:
        POP DE
        LD BC,3
        LDIR
        RET

; Two strings made one.
; In:   LEFT + 4 and ACCUMULATOR the addresses of their descriptors
; Out:  accumulator
; Uses: all
join_strings:
        LD HL,(LEFT + 4)
        LD DE,(ACCUMULATOR)
        LD A,(DE)
        ADD A,(HL)
        JP C,error_ls
        PUSH DE
        PUSH HL
        CALL make_string
        POP HL
        PUSH HL
        CALL copy_string
        POP BC
        POP HL
        PUSH BC
        PUSH HL
        CALL copy_string
        POP HL
        CALL release
        POP HL
        CALL release
        JP push_string

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
_next:
        LD A,B
        OR A
        JR Z,_ended
        LD A,C
        OR A
        JR Z,_greater
        LD A,(DE)
        SUB (HL)
        JR NZ,_differ
        INC HL
        INC DE
        DEC B
        DEC C
        JR _next
_ended:
        SUB C
        RET Z                   ; both at their end
_differ:
        SBC A,A
        RET C
_greater:
        LD A,1
        RET

; Brings all strings in use together at the top of the string space: again and again the highest
; one that has not been moved yet.
; Uses: all but IX, IY
collect_garbage:
        LD HL,(MEMORY_TOP)
_next:
        LD (STRING_POINTER),HL
        LD HL,(STRING_SPACE)
        LD (COLLECT_BEST),HL
        LD HL,0
        LD (COLLECT_OWNER),HL
        LD HL,TEMPORARIES
_temporary:
        LD DE,(TEMP_POINTER)
        RST 18h
        JR Z,_simple
        CALL _look
        JR _temporary
_simple:
        LD HL,(PROGRAM_END)
_variable:
        LD DE,(ARRAYS)
        RST 18h
        JR Z,_array
        LD A,(HL)
        INC HL
        INC HL
        INC HL
        CP TYPE_STRING
        JR NZ,_number
        CALL _look
        JR _variable
_number:
        LD E,A
        LD D,0
        ADD HL,DE
        JR _variable
_array:
        LD DE,(FREE_SPACE)
        RST 18h
        JR Z,_found
        LD A,(HL)
        INC HL
        INC HL
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        INC HL
        PUSH HL
        ADD HL,DE
        EX (SP),HL
        POP DE                  ; end of the array
        CP TYPE_STRING
        JR Z,_sizes
        EX DE,HL
        JR _array
_sizes:
        LD C,(HL)
        LD B,0
        INC HL
        ADD HL,BC
        ADD HL,BC
_element:
        RST 18h
        JR Z,_array
        PUSH DE
        CALL _look
        POP DE
        JR _element
_found:
        LD HL,(COLLECT_OWNER)
        LD A,H
        OR L
        RET Z
        PUSH HL
        LD C,(HL)
        LD B,0
        LD HL,(COLLECT_BEST)
        ADD HL,BC
        DEC HL
        LD DE,(STRING_POINTER)
        LDDR
        POP HL
        INC HL
        INC DE
        LD (HL),E
        INC HL
        LD (HL),D
        EX DE,HL
        DEC HL
        JP _next
; Takes the string as the highest if it lies between COLLECT_BEST and STRING_POINTER.
; In:   HL descriptor
; Out:  HL behind it
; Uses: AF, DE
_look:
        LD A,(HL)
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        INC HL
        OR A
        RET Z
        PUSH HL
        LD HL,(STRING_POINTER)
        RST 18h
        JR C,_not
        LD HL,(COLLECT_BEST)
        RST 18h
        JR NC,_not
        LD (COLLECT_BEST),DE
        POP HL
        PUSH HL
        DEC HL
        DEC HL
        DEC HL
        LD (COLLECT_OWNER),HL
_not:
        POP HL
        RET
