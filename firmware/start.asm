; Power on, the reset key, and the prompt.

STRING_BYTES    EQU 50          ; string space until a program asks for another

; Power on: everything from nothing.
cold_start:
        IM 1
        LD SP,START_STACK
        LD HL,VECTORS           ; in line: the stack lies in what is cleared
        LD DE,VECTORS + 1
        LD BC,START_STACK - VECTORS - 1
        LD (HL),0
        LDIR
        LD HL,GRAPHICS_SCREEN
        LD BC,GRAPHICS_END - GRAPHICS_SCREEN + 1
        XOR A
        CALL fill_memory        ; with the 0 before the first program
        LD A,DEFAULT_COLOUR
        LD (TEXT_COLOUR),A
        LD HL,TEXT_SCREEN
        LD BC,GRAPHICS_SCREEN - TEXT_SCREEN
        CALL erase_cells        ; the whole KB and all colours
        CALL draw_block_characters
        CALL size_memory
        CALL set_program_empty
        CALL start_devices
        LD HL,MARK
        LD (WARM_MARK),HL
        LD HL,sign_on
        CALL print_text
        LD A,(MEMORY_TOP + 1)
        RLA
        LD HL,size_16k
        JR NC,_size
        LD HL,size_32k
_size:
        CALL print_text
        JP ready

; 0066: The reset key. The machine comes back to the prompt with program and memory kept; a hit
; before the first start has finished starts anew.
reset_key:
        DI
        LD SP,START_STACK
        LD HL,(WARM_MARK)
        LD DE,MARK
        OR A
        SBC HL,DE
        JP NZ,cold_start
        LD A,DEFAULT_COLOUR
        LD (TEXT_COLOUR),A
        CALL start_devices
        CALL clear_text_screen
        LD HL,ready
        PUSH HL
        RETN                    ; leaves the interrupt, to the prompt

; Vectors, control blocks and devices as after power on.
; Uses: AF, BC, DE, HL
start_devices:
        LD HL,first_vectors
        LD DE,VECTORS
        LD BC,first_vectors_end - first_vectors
        LDIR
        LD HL,KEY_ROWS
        LD BC,8
        XOR A
        LD (KEY_HELD_ROW),A
        CALL fill_memory
        XOR A
        LD (LATCH_COPY),A       ; character RAM for 80-FF, black background
        LD A,FIRST_SPEED        ; for programs that read bits without a search
        LD (TAPE_SPEED),A
        LD A,ROWS
        LD (ROW_COUNT),A
        CALL show_text
        LD HL,TEXT_SCREEN
        CALL set_cursor
; Silences the sound generator. Its port A drives the printer, port B reads.
silence:
        LD HL,_registers
        LD C,7
_register:
        LD A,C
        OUT (SOUND_REGISTER),A
        LD A,(HL)
        OUT (SOUND_DATA),A
        INC HL
        INC C
        LD A,C
        CP 11
        JR C,_register
        RET
_registers:
        DEFB 7Fh, 0, 0, 0       ; R7: no tone, no noise; R8-R10: volume

; Finds the end of the RAM: 32 KB or 16.
; Uses: AF, HL
size_memory:
        LD HL,8000h
        LD A,(HL)
        CPL
        LD (HL),A
        CP (HL)
        CPL
        LD (HL),A               ; as it was
        LD HL,7FFFh
        JR NZ,_found
        LD HL,0BFFFh
_found:
        LD (MEMORY_TOP),HL
        RET

; An empty program, no variables, the string space below the top of the memory.
; Uses: AF, BC, DE, HL
set_program_empty:
        LD HL,(MEMORY_TOP)
        LD (STRING_POINTER),HL
        LD DE,-STRING_BYTES
        ADD HL,DE
        LD (STRING_SPACE),HL
        LD (SAVED_STACK),HL
        LD HL,FIRST_PROGRAM
        LD (PROGRAM_START),HL
        XOR A
        LD (HL),A               ; link 0000
        INC HL
        LD (HL),A
        INC HL
        LD (PROGRAM_END),HL
        LD (ARRAYS),HL
        LD (FREE_SPACE),HL
        LD HL,FIRST_PROGRAM - 1
        LD (DATA_POINTER),HL
        LD HL,0FFFFh
        LD (CURRENT_LINE),HL
        LD HL,ready
        LD (USR_ADDRESS),HL
        LD HL,6A93h
        LD (RANDOM_SEED),HL
        LD HL,LETTER_TYPES
        LD BC,26
        LD A,4                  ; single precision
        JP fill_memory

; Fills the character RAM: 80-BF blocks of two by three, bit 0 upper left, bit 1 upper right, and
; so on to bit 5; C0-FF blank.
; Uses: AF, BC, DE, HL
draw_block_characters:
        LD HL,CHARACTER_RAM
        LD C,0
_character:
        LD D,C
        LD B,3
        CALL _band
        LD B,2
        CALL _band
        LD B,3
        CALL _band
        INC C
        BIT 6,C
        JR Z,_character
        LD BC,0200h
        XOR A
        JP fill_memory
; In:   D the next two bits, B lines
_band:
        XOR A
        RRC D
        JR NC,_right
        LD A,0F0h
_right:
        RRC D
        JR NC,_line
        OR 0Fh
_line:
        LD (HL),A
        INC HL
        DJNZ _line
        RET

; 1A19: The prompt. Takes the text screen and a new stack, and begins a new row.
ready:
        LD HL,(STRING_SPACE)
        LD SP,HL
        LD A,(LATCH_COPY)
        BIT LATCH_GRAPHICS_BIT,A
        CALL NZ,show_text
        LD HL,(CURSOR)
        CALL column_of
        LD A,RETURN
        CALL NZ,print_entry
        LD HL,ready_text
        CALL print_text
prompt:
        LD A,'>'
        CALL print_entry
        CALL take_line
        CALL obey_line
        JR prompt

; Takes a line into the line buffer. BREAK leads to the prompt.
; Out:  HL line, ended by 0
; Uses: AF, BC, DE
take_line:
        LD HL,LINE_BUFFER
        LD B,LINE_LENGTH
        CALL read_line
        JR C,ready
        PUSH HL
        LD E,B
        LD D,0
        ADD HL,DE
        LD (HL),D
        POP HL
        RET

sign_on:
        IF VERSION = 1
        DEFM "TARVELIN FIRMWARE 1.0"
        ENDIF
        IF VERSION = 2
        DEFM "TARVELIN FIRMWARE 2.0"
        ENDIF
        IF VERSION = 3
        DEFM "TARVELIN FIRMWARE 2.0 S/N"
        ENDIF
        DEFB RETURN
        DEFM "FOR THE COLOUR GENIE"
        DEFB RETURN, 0
size_16k:
        DEFM "16K RAM"
        DEFB RETURN, RETURN, 0
size_32k:
        DEFM "32K RAM"
        DEFB RETURN, RETURN, 0
ready_text:
        DEFM "READY"
        DEFB RETURN, 0
