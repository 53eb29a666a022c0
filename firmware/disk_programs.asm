; Programs: LOAD, RUN, MERGE, SAVE. They close all files and use the first one.

RECORD_DATA     EQU 1           ; of machine code; the other kinds but the entry are skipped
RECORD_ENTRY    EQU 2

; Out:  IX
; Uses: AF, DE
first_file:
        XOR A
        JP file_of_index

; RUN: closes the files; RUN "name" loads first.
; In:   HL text
; Out:  HL kept unless there is a name
        fill_to 0CA4Ch
serve_run:
        DEC HL
        RST 10h
        JP Z,close_files
        JP C,close_files
        POP BC                  ; BASIC's part of the word
        LD A,1
        JR load_file

; LOAD "name", LOAD "name",R
        fill_to 0CA59h
word_load:
        XOR A
load_file:
        LD (RUN_WANTED),A
        CALL close_files
        CALL parse_name
        LD A,(HL)
        CP ','
        JR NZ,_end
        RST 10h
        LD (RUN_WANTED),A
        RST 08h
        DEFB 'R'
_end:
        CALL open_program
        LD A,(FILE_TYPE)
        CP TYPE_MACHINE
        JR Z,load_machine
        JR NC,load_text
        LD A,LOADING_ALL
        LD (LOADING),A
        CALL empty_program
        CALL first_file
        LD HL,(PROGRAM_START)
_byte:
        CALL get_char
        JR C,_whole
        LD (HL),A
        INC HL
        CALL check_room
        JR _byte
_whole:
        LD B,8                  ; ends a program that is cut short anywhere
_zero:
        LD (HL),0
        INC HL
        DJNZ _zero
        CALL relink_program
program_loaded:
        CALL first_file
        LD (IX + FILE_MODE),0
        XOR A
        LD (LOADING),A
        CALL clear_variables
        LD A,(RUN_WANTED)
        OR A
        JP Z,ready
        LD HL,(PROGRAM_START)
        JP run_line

load_text:
        CP TYPE_TEXT
        JP NZ,fail_type
        LD A,LOADING_ALL
        LD (LOADING),A
        CALL empty_program
        JR merge_text

; Opens the program named, the end of the statement behind it.
; In:   HL text behind the name
; Out:  IX
open_program:
        DEC HL
        RST 10h
        JP NZ,error_sn
        CALL mount_disk
        CALL find_existing_file
        CALL first_file
        JP open_program_file

; Machine code: records with a kind, a length, and for data an address.
load_machine:
        CALL _byte
        LD C,A
        CALL _byte
        LD B,A
        LD A,C
        CP RECORD_ENTRY
        JR Z,_entry
        CP RECORD_DATA
        JR NZ,_skip
        CALL _word
        DEC B
        DEC B
_data:
        CALL _byte
        LD (HL),A
        INC HL
        DJNZ _data
        JR load_machine
_skip:
        CALL _byte
        DJNZ _skip
        JR load_machine
_entry:
        CALL _word
        LD (IX + FILE_MODE),0
        LD A,(RUN_WANTED)
        OR A
        JP Z,ready
        LD DE,ready
        PUSH DE
        JP (HL)
_word:
        CALL _byte
        LD L,A
        CALL _byte
        LD H,A
        RET
_byte:
        CALL get_char
        RET NC
        JP ready                ; no entry in it

; MERGE "name"
        fill_to 0CB22h
word_merge:
        XOR A
        LD (RUN_WANTED),A
        CALL close_files
        CALL parse_name
        CALL open_program
        CALL begin_merging
        LD A,(FILE_TYPE)
        OR A
        JR Z,merge_tokens
        CP TYPE_TEXT
        JP NZ,fail_type
merge_text:
        CALL poll_break         ; the words of a long line take their time
        CALL first_file
        CALL read_text_line
        JP C,program_loaded
        LD A,H
        CP HIGH TEXT_SCREEN
        LD HL,LINE_BUFFER
        CALL NC,text_behind_program
        DEC HL
        RST 10h
        JR NC,merge_text        ; no number, no line of a program
        CALL line_number
_blanks:
        DEC HL
        LD A,(HL)
        CP ' '
        JR Z,_blanks
        INC HL
        LD A,(HL)
        CP ' '
        JR NZ,_text
        INC HL
_text:
        PUSH DE
        LD D,H
        LD E,L
        DEC DE
        DEC DE
        PUSH DE
        CALL tokenize_to
        POP HL
        PUSH HL
        LD DE,TOKEN_BUFFER
        OR A
        SBC HL,DE
        LD A,C
        SUB L
        LD C,A
        LD A,B
        SBC A,H
        LD B,A
        POP HL
        LD A,H
        CP HIGH TEXT_SCREEN
        CALL NC,move_up
        POP DE
        CALL insert_line
        JR merge_text

merge_tokens:
        CALL first_file
        CALL get_char
        JR C,_end
        LD L,A
        CALL get_char
        JR C,_end
        OR L
_end:
        JP Z,program_loaded
        JP C,program_loaded
        CALL get_char
        LD E,A
        CALL get_char
        LD D,A
        LD HL,TOKEN_BUFFER
        LD B,0                  ; 256 with the 0
_character:
        CALL get_char
        JR NC,_store
        XOR A
_store:
        LD (HL),A
        INC HL
        OR A
        JR Z,_whole
        DJNZ _character
        JP error_ls
_whole:
        LD BC,LINE_HEAD - TOKEN_BUFFER
        ADD HL,BC
        LD B,H
        LD C,L
        LD HL,TOKEN_BUFFER
        CALL insert_line
        JR merge_tokens

; SAVE "name", SAVE "name",A for a text
        fill_to 0CC0Ah
word_save:
        CALL close_files
        CALL parse_name
        LD B,TYPE_PROGRAM
        LD A,(HL)
        CP ','
        JR NZ,_kind
        RST 10h
        RST 08h
        DEFB 'A'
        LD B,TYPE_TEXT
_kind:
        PUSH HL
        PUSH BC
        CALL mount_disk
        CALL first_file
        POP AF                  ; B
        PUSH AF
        CALL open_output
        LD (IX + FILE_PROGRAM),1
        POP AF
        OR A
        JR NZ,_text
        LD HL,(PROGRAM_START)
_byte:
        LD A,(HL)
        CALL put_char
        INC HL
        LD DE,(PROGRAM_END)
        RST 18h
        JR C,_byte
        CALL close_file
        POP HL
        RET
_text:
        CALL begin_redirection
        LD HL,(PROGRAM_START)
_line:
        INC HL
        LD A,(HL)
        OR A
        JR Z,_end
        INC HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        INC HL
        PUSH HL
        EX DE,HL
        CALL list_number
        POP HL
        LD B,0                  ; words in full
        LD D,B                  ; to the device
        CALL detokenize
        CALL new_row
        JR _line
_end:
        CALL end_redirection
        CALL first_file
        CALL close_file
        POP HL
        CALL direct_mode
        RET NZ
        JP ready                ; the direct line is gone
