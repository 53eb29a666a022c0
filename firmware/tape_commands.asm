; SYSTEM, CLOAD, CSAVE and VERIFY, and what the cassette routines need outside their fixed places.
;
; Machine-code tape, behind the sync byte: 55, six characters of name, blocks (3C, number of bytes
; with 0 for 256, address, bytes, checksum over address and bytes), at last 78 and the entry.
; BASIC tape: one character of name, then the program as it stands in memory. A tokenized file made
; into a tape has A5 D3 D3 D3 and the name in place of sync byte and name.
; Any time between two bytes must stay below 550 T states, or a fast tape runs away.

MACHINE_CODE    EQU 55h
DATA_BLOCK      EQU 3Ch
ENTRY_BLOCK     EQU 78h
NAME_LENGTH     EQU 6
FILE_SYNC       EQU 0A5h
FILE_MARK       EQU 0D3h
MEMORY_LIMIT    EQU 0C000h
PRINT_TOKEN     EQU 0B2h        ; what a tokenizer makes of ?
LOAD_MARKS      EQU TEXT_SCREEN + COLUMNS - 2
STACK_ROOM      EQU 100         ; left free below the stack

; The level changes when the carry is set; then half a bit passes.
; In:   HL address of LATCH_COPY
; Uses: AF
write_half:
        SBC A,A
        AND LATCH_CASSETTE
        XOR (HL)
        LD (HL),A
        OUT (LATCH),A
        LD A,HALF_BIT
_wait:
        DEC A
        JR NZ,_wait
        RET

; Waits for the start of a bit, for as long as it takes.
; In:   A port FF
; Out:  C level, in bit 0
; Uses: AF, B
await_start:
        LD BC,(TAPE_LEVEL)
        LD B,0
        CALL look_for_change
        RET C
_silence:
        CALL check_break
        CALL await_change
        JR NC,_silence
        RET

; Waits for a change of level. One that does not last is none.
; In:   B looks, 0 for 256; C level
; Out:  carry if it came: C new level, B looks that were left; else B = 0
; Uses: AF
await_change:
        IN A,(LATCH)
; In:   A port FF
look_for_change:
        XOR C
        RRA
        JR C,_changed
_count:
        JR _pause               ; 12 T states
_pause:
        DJNZ await_change
_late:
        OR A
        RET
_changed:
        PUSH BC
        LD B,CONFIRMING
_confirm:
        IN A,(LATCH)
        XOR C
        RRA
        JR NC,_disturbed
        JR _again
_again:
        DJNZ _confirm
        POP BC
        INC C
        SCF
        RET
_disturbed:
        POP BC
        DEC B                   ; what the looks have cost
        JR NZ,_count
        JR _late

; Looks from the start of a bit to the moment that tells a one from a zero.
; Out:  A
; Uses: F
decision_time:
        LD A,(TAPE_SPEED)
        RRCA
        RRCA
        AND 3Fh
        RET

; Follows the speed of the tape: a quarter of the way at each one.
; In:   B looks left when the middle of the bit came
; Out:  carry set
; Uses: AF, B
follow_speed:
        PUSH DE
        CALL decision_time
        LD E,A
        SUB B
        CP SHORTEST_HALF
        JR C,_end
        CP LONGEST_HALF
        JR NC,_end
        LD B,A
        SRL A
        ADD A,B
        ADD A,3                 ; three halves of the looks and of those before the first one
        SUB E
        LD E,A
        LD A,(TAPE_SPEED)
        ADD A,E
        LD (TAPE_SPEED),A
_end:
        POP DE
        SCF
        RET

; The BREAK key leads to the prompt.
; Uses: AF
check_break:
        LD A,(BREAK_ROW)
        AND 1 SHL BREAK_BIT
        RET Z
        LD (KEY_ROWS + 6),A     ; the prompt shall not see it again
        JP ready

; Byte from the cassette, for loops that a tape may keep going for ever.
; Out:  A
; Uses: F
next_byte:
        CALL check_break
        JP read_byte

; Out:  HL, low byte first
; Uses: AF
read_word:
        CALL read_byte
        LD L,A
        CALL read_byte
        LD H,A
        RET

; Two asterisks: the tape is being loaded.
; Uses: AF
show_marks:
        LD A,'*'
        LD (LOAD_MARKS),A
        LD (LOAD_MARKS + 1),A
        RET
; The second one goes and comes.
; Uses: AF
flash_mark:
        LD A,(LOAD_MARKS + 1)
        XOR '*' XOR ' '
        LD (LOAD_MARKS + 1),A
        RET

; In:   HL text
; Out:  HL at the first character that is no blank, A character
; Uses: F
skip_blanks:
        LD A,(HL)
        CP ' '
        RET NZ
        INC HL
        JR skip_blanks

; SYSTEM: loads machine code by its name and starts it.
cmd_system:
        LD HL,system_prompt
        CALL print_text
        CALL take_line
        CALL skip_blanks
        CP '/'
        JR Z,start_code
        CALL load_code
        JR cmd_system
system_prompt:
        DEFM "*? "
        DEFB 0

; "/" starts where the tape says, "/n" at n. A RET of the program ends at the prompt.
; In:   HL text at the stroke
start_code:
        INC HL
        CALL skip_blanks
        LD DE,(TAPE_ENTRY)
        OR A
        CALL NZ,read_number
        LD SP,(STRING_SPACE)
        LD HL,ready
        PUSH HL
        LD A,D
        OR E
        RET Z                   ; no tape was loaded
        EX DE,HL
        JP (HL)

; Decimal number that ends the text.
; In:   HL text
; Out:  DE number
; Uses: AF, B, HL
read_number:
        LD DE,0
_digit:
        LD A,(HL)
        INC HL
        OR A
        RET Z
        SUB '0'
        CP 10
        JR NC,syntax_error
        PUSH HL
        LD L,A
        LD H,0
        LD B,10
_times:
        ADD HL,DE
        JR C,syntax_error
        DJNZ _times
        EX DE,HL
        POP HL
        JR _digit

syntax_error:
        LD DE,'N' * 256 + 'S'
        JR report_error
missing_operand:
        LD DE,'O' * 256 + 'M'
        JR report_error
out_of_memory:
        LD DE,'M' * 256 + 'O'
; Reports an error and ends at the prompt.
; In:   E and D its two letters
report_error:
        LD A,'?'
        CALL print_letter
        LD A,E
        CALL print_letter
        LD A,D
        CALL print_letter
        LD HL,error_text
print_and_end:
        CALL print_text
        JP ready
print_letter:
        PUSH DE
        CALL print_entry
        POP DE
        RET
error_text:
        DEFM " ERROR"
        DEFB RETURN, 0
mismatch:
        LD HL,mismatch_text
        JR print_and_end
mismatch_text:
        DEFM "BAD"
        DEFB RETURN, 0

; Loads the machine-code tape whose name begins with the characters given.
; In:   HL name, ended by 0
; Uses: AF, BC, DE, HL
load_code:
        CALL find_sync
        CALL next_byte
        CP MACHINE_CODE
        JR NZ,load_code
        LD D,H
        LD E,L
        LD B,NAME_LENGTH
_name:
        CALL read_byte
        LD C,A
        LD A,(DE)
        OR A
        JR Z,_same
        INC DE
        CP C
        JR NZ,load_code
_same:
        DJNZ _name
        CALL show_marks
_block:
        CALL next_byte
        CP ENTRY_BLOCK
        JR Z,_entry
        CP DATA_BLOCK
        JR NZ,_block
        CALL flash_mark
        CALL read_byte
        LD B,A
        CALL read_word
        LD A,H
        ADD A,L
        LD C,A
_data:
        CALL next_byte
        LD (HL),A
        INC HL
        ADD A,C
        LD C,A
        DJNZ _data
        CALL read_byte
        CP C
        JR Z,_block
        LD A,'C'                ; a checksum that is wrong
        LD (LOAD_MARKS),A
        JR _block
_entry:
        CALL read_word
        LD (TAPE_ENTRY),HL
        RET

; Name of a BASIC tape: one character, with quotes or without.
; In:   HL text
; Out:  C character, 0 without a name
; Uses: AF, HL
tape_name:
        CALL skip_blanks
        CP '"'
        JR NZ,_plain
        INC HL
        LD A,(HL)
_plain:
        LD C,0
        OR A
        RET Z
        CP '"'
        RET Z
        CP ':'
        RET Z
        LD C,A
        RET

; CSAVE "name": the program to a tape.
; In:   HL text behind the word
cmd_csave:
        CALL tape_name
        LD A,C
        OR A
        JP Z,missing_operand
        CALL write_leader
        LD A,C
        CALL write_byte
        LD HL,(PROGRAM_START)
_byte:
        LD A,(HL)
        CALL write_byte
        INC HL
        CALL check_break
        LD DE,(PROGRAM_END)
        CALL compare_words
        JR C,_byte
        JP ready

; CLOAD "name" loads the program of that name, without a name the next one; CLOAD? and VERIFY
; compare it with the one in memory.
; In:   HL text behind the word
cmd_cload:
        LD B,0
        CALL skip_blanks
        CP '?'
        JR Z,_compare
        CP PRINT_TOKEN
        JR NZ,find_program
_compare:
        INC HL
cmd_verify:
        LD B,1
; In:   HL name in the text, bit 0 of B set to compare
find_program:
        CALL tape_name
_search:
        CALL _sync
        CP SYNC
        JR NZ,_file
        CALL next_byte
        INC C
        DEC C
        JR NZ,_name
        CP MACHINE_CODE
        JR Z,_search
        JR _found
_file:
        LD E,3
_mark:
        CALL next_byte
        CP FILE_MARK
        JR NZ,_search
        DEC E
        JR NZ,_mark
        CALL read_byte
        INC C
        DEC C
        JR Z,_found
_name:
        CP C
        JR NZ,_search
_found:
        CALL show_marks
        LD HL,(PROGRAM_START)
        BIT 0,B
        JR NZ,take_line_of_program
        XOR A
        CALL end_program
        JR take_line_of_program
_sync:
        PUSH DE                 ; as at find_sync
        PUSH BC
        LD E,FILE_SYNC
        JP search_sync

; One line after the other. The links of the tape hold for the place it was saved from, so they are
; made anew; what the memory holds is a complete program behind every line.
; In:   HL place of the line, bit 0 of B set to compare
take_line_of_program:
        PUSH HL
        CALL next_byte
        CALL next_byte          ; high byte of the link: 0 ends the program
        DEC A
        CP HIGH MEMORY_LIMIT - 1
        JR NC,_end              ; so does a place without memory, in a file cut short
        INC HL
        BIT 0,B
        JR Z,_number
        LD A,(HL)
        OR A
        JP Z,mismatch           ; the program in memory ends here
_number:
        INC HL
        CALL take_byte
        CALL take_byte
        CALL flash_mark
_text:
        CALL take_byte
        JR NZ,_text
        POP DE
        BIT 0,B
        JR NZ,take_line_of_program
        CALL end_program
        EX DE,HL
        LD (HL),E
        INC HL
        LD (HL),D
        EX DE,HL
        JR take_line_of_program
_end:
        POP HL
        BIT 0,B
        JP Z,ready
        INC HL
        LD A,(HL)
        OR A
        JP Z,ready
        JP mismatch

; Byte from the tape to memory. When comparing it is there already.
; In:   HL place, bit 0 of B set to compare
; Out:  HL next place, A byte, Z for 0
; Uses: DE
take_byte:
        CALL next_byte
        BIT 0,B
        JR Z,_store
        CP (HL)
        JP NZ,mismatch
_store:
        LD (HL),A
        INC HL
        EX DE,HL
        LD HL,STACK_ROOM
        ADD HL,DE
        SBC HL,SP
        EX DE,HL
        JP NC,out_of_memory
        OR A
        RET

; The program ends here, the variables begin.
; In:   HL place of the next line, A = 0
end_program:
        LD (HL),A
        INC HL
        LD (HL),A
        INC HL
        LD (PROGRAM_END),HL
        LD (ARRAYS),HL
        LD (FREE_SPACE),HL
        DEC HL
        DEC HL
        RET

; Obeys a line of the prompt.
; In:   HL line, ended by 0
obey_line:
        CALL skip_blanks
        OR A
        RET Z
        LD DE,command_words
_word:
        LD A,(DE)
        OR A
        JP Z,syntax_error
        PUSH HL
_letter:
        LD A,(DE)
        INC DE
        OR A
        JR Z,_found
        CP (HL)
        INC HL
        JR Z,_letter
        POP HL
_skip:
        LD A,(DE)
        INC DE
        OR A
        JR NZ,_skip
        INC DE
        INC DE
        JR _word
_found:
        EX DE,HL
        LD A,(HL)
        INC HL
        LD H,(HL)
        LD L,A
        EX (SP),HL              ; the command in place of the line
        EX DE,HL
        RET
command_words:
        DEFM "SYSTEM"
        DEFB 0
        DEFW cmd_system
        DEFM "CLOAD"
        DEFB 0
        DEFW cmd_cload
        DEFM "CSAVE"
        DEFB 0
        DEFW cmd_csave
        DEFM "VERIFY"
        DEFB 0
        DEFW cmd_verify
        DEFB 0
