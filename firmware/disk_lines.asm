; Lines of a program that LOAD and MERGE read. A text may be longer than LINE_BUFFER: SAVE writes
; the words in full.

; Room for a character behind the 255th.
long_line:
        INC B                   ; and for the next one
        PUSH AF
        LD A,(LOADING)
        OR A
        JP Z,error_ls
        LD A,H
        CP HIGH TEXT_SCREEN
        JR NC,_room
        CALL text_behind_program
        PUSH BC
        EX DE,HL
        LD HL,LINE_BUFFER
        LD BC,255
        LDIR
        EX DE,HL
        POP BC
_room:
        CALL check_room
        POP AF
        RET

; The place of a line too long for LINE_BUFFER.
; Out:  HL
text_behind_program:
        LD HL,(PROGRAM_END)
        INC HL
        RET
; Makes room for a line between the program and its text, OM error if there is none.
; In:   HL text, BC size of the line
; Out:  HL the text's new place
; Uses: AF, DE
move_up:
        ADD HL,BC
        PUSH HL
        ADD HL,BC
        CALL check_room
        EX DE,HL
        POP HL
        PUSH BC
        INC BC
        LDDR
        POP BC
        EX DE,HL
        INC HL
        RET

; Puts a line into the program.
; In:   DE number, HL text, ended by 0, BC size of the line
; Uses: all
insert_line:
        LD (LINE_SIZE),BC
        LD (EDIT_LINE),DE
        PUSH HL
        CALL find_line
        CALL Z,close_gap
        POP DE
        LD A,(DE)
        OR A
        JR Z,_ends
        PUSH DE
        LD BC,(LINE_SIZE)
        CALL open_gap
        POP DE
        PUSH HL
        INC HL
        LD (HL),H               ; a link that is not 0
        INC HL
        LD BC,(EDIT_LINE)
        LD (HL),C
        INC HL
        LD (HL),B
_text:
        INC HL
        LD A,(DE)
        LD (HL),A
        INC DE
        OR A
        JR NZ,_text
        POP HL
_ends:
        CALL relink
        LD HL,(PROGRAM_END)
        LD (ARRAYS),HL
        LD (FREE_SPACE),HL
        RET
