; SYSTEM, CLOAD, CSAVE, VERIFY, PRINT#-1 and INPUT#-1, and what the cassette routines need outside
; their fixed places.
;
; Machine-code tape, behind the sync byte: 55, six characters of name, blocks (3C, number of bytes
; with 0 for 256, address, bytes, checksum over address and bytes), at last 78 and the entry.
; BASIC tape: one character of name, then the program as it stands in memory. A tokenized file made
; into a tape has A5 D3 D3 D3 and the name in place of sync byte and name.
; Record of data: text, ended by RETURN.
; Any time between two bytes must stay below 550 T states, or a fast tape runs away.

MACHINE_CODE    EQU 55h
DATA_BLOCK      EQU 3Ch
ENTRY_BLOCK     EQU 78h
NAME_LENGTH     EQU 6
FILE_SYNC       EQU 0A5h
FILE_MARK       EQU 0D3h
MEMORY_LIMIT    EQU 0C000h
LOAD_MARKS      EQU TEXT_SCREEN + COLUMNS - 2

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

; "-1," behind the # of PRINT and INPUT.
; In:   HL text at the #
; Out:  Z and HL behind it; NZ and HL kept without the minus
; Uses: AF
tape_number:
        PUSH HL
        RST 10h
        CP TOKEN_MINUS
        JR NZ,_other
        POP AF
        RST 10h
        RST 08h
        DEFB '1'
        RST 08h
        DEFB ','
        CP A
        RET
_other:
        POP HL
        RET

; PRINT#-1,list: a record, the values as PRINT shows them with the commas of the list between them.
; It ends with RETURN.
print_to_tape:
        LD DE,TAPE_OPEN
        LD A,(DE)
        OR A
        LD B,LEADER_BYTES
        LD A,B
        LD (DE),A
        CALL Z,write_leader     ; keeps the flags
        CALL NZ,write_record_leader
        LD DE,80h + (LINE_LENGTH + 1) * 256
        LD (OUTPUT_DEVICE),DE   ; and TAPE_ROOM
        CALL print_list
        LD A,RETURN
        JP write_byte
; In:   A character, DE of the caller on the stack
; Out:  BC, DE, HL kept; LS error when the record is full
put_on_tape:
        POP DE
        PUSH HL
        LD HL,TAPE_ROOM
        DEC (HL)
        POP HL
        JP NZ,write_byte
        JP error_ls

; INPUT#-1,variable,variable ...: values from the next record.
input_from_tape:
        CALL direct_mode
        JP Z,error_id           ; the line buffer holds the statement
        XOR A
        LD (TAPE_OPEN),A
        CALL find_sync
        EX DE,HL
        LD HL,LINE_BUFFER
        LD B,LINE_LENGTH + 1
_byte:
        CALL next_byte
        LD (HL),A
        CP RETURN
        JR Z,_end
        INC HL
        DJNZ _byte
        JP error_fd
_end:
        LD (HL),0
        EX DE,HL
        JP input_values

; The second asterisk goes and comes.
; Uses: AF
flash_mark:
        LD A,(LOAD_MARKS + 1)
        XOR '*' XOR ' '
        LD (LOAD_MARKS + 1),A
        RET

; SYSTEM: loads machine code by its name and starts it.
cmd_system:
        RET NZ
_question:
        LD A,'*'
        CALL print_entry
        CALL ask_line
        CALL next_line_character
        CP '/'
        JR Z,start_code
        CALL load_code
        JR _question

; "/" starts where the tape says, "/n" at n. A RET of the program ends at the prompt.
; In:   HL text at the stroke
start_code:
        LD DE,(TAPE_ENTRY)
        RST 10h
        CALL NZ,get_address
        LD A,(HL)
        OR A
        JP NZ,error_sn
        LD HL,ready
        EX (SP),HL
        LD A,D
        OR E
        RET Z                   ; no tape was loaded
        EX DE,HL
        JP (HL)

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
        LD HL,'*' * 257         ; two asterisks: the tape is being loaded
        LD (LOAD_MARKS),HL
_block:
        CALL next_byte
        CP ENTRY_BLOCK
        JR Z,_entry
        CP DATA_BLOCK
        JR NZ,_block
        CALL flash_mark
        CALL read_byte
        LD B,A
        CALL _word
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
        CALL _word
        LD (TAPE_ENTRY),HL
        RET
; Out:  HL, low byte first; A = H
_word:
        CALL read_byte
        LD L,A
        CALL read_byte
        LD H,A
        RET

; Name of a BASIC tape: one character, with quotes or without.
; In:   HL text, flags of its first character A
; Out:  C character, 0 without a name
; Uses: AF, HL
tape_name:
        LD C,0
        RET Z
        CP STRING_QUOTE
        JR NZ,_plain
        RST 10h
        RET Z
        CP STRING_QUOTE
        RET Z
_plain:
        LD C,A
        RET

; CSAVE "name": the program to a tape.
cmd_csave:
        PUSH HL
        CALL tape_name
        LD A,C
        OR A
        JP Z,error_mo
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
        RST 18h
        JR C,_byte
        POP HL
        JP skip_statement

; CLOAD "name" loads the program of that name, without a name the next one; CLOAD? and VERIFY
; compare it with the one in memory.
cmd_cload:
        CP TOKEN_PRINT          ; what the tokenizer makes of ?
        JR Z,compare_program
        CALL clear_variables
        LD DE,0FFFFh
        LD (CURRENT_LINE),DE    ; no program that CONT could go on with
        LD B,0
        DEC HL
        JR find_program
cmd_verify:
        DEC HL
compare_program:
        LD B,1
; In:   HL before the name in the text, bit 0 of B set to compare
find_program:
        RST 10h
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
        LD HL,'*' * 257         ; two asterisks: the tape is being loaded
        LD (LOAD_MARKS),HL
        LD HL,(PROGRAM_START)
        XOR A
        BIT 0,B
        CALL Z,_end_program

; One line after the other. The links of the tape hold for the place it was saved from, so they are
; made anew; what the memory holds is a complete program behind every line.
; HL place of the line, bit 0 of B set to compare.
_line:
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
        JR Z,_mismatch          ; the program in memory ends here
_number:
        INC HL
        CALL _take
        CALL _take
        CALL flash_mark
_text:
        CALL _take
        JR NZ,_text
        POP DE
        BIT 0,B
        JR NZ,_line
        CALL _end_program
        EX DE,HL
        LD (HL),E
        INC HL
        LD (HL),D
        EX DE,HL
        JR _line
_end:
        POP HL
        INC HL
        LD A,(HL)               ; when comparing, the other one ends here, too
        OR A
        JP Z,ready
_mismatch:
        LD HL,mismatch_text
        JP end_with_text

; In:   DE and BC for search_sync to take back from the stack
_sync:
        PUSH DE
        PUSH BC
        LD E,FILE_SYNC
        JP search_sync

; Byte from the tape to memory. When comparing it is there already.
; In:   HL place, bit 0 of B set to compare
; Out:  HL next place, A byte, Z for 0
_take:
        CALL check_room
        CALL next_byte
        BIT 0,B
        JR Z,_store
        CP (HL)
        JR NZ,_mismatch
_store:
        LD (HL),A
        INC HL
        OR A
        RET

; The program ends here, the variables begin.
; In:   HL place of the next line, A = 0
_end_program:
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
