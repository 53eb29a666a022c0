; Power on and the reset key.

SIZE_DIGITS     EQU 5           ; of the greatest address
LEAST_MEMORY    EQU 5A00h       ; for the end of the memory
STRING_BYTES    EQU 50          ; string space until a program asks for another

; Power on: everything from nothing.
cold_start:
        IM 1
        LD SP,START_STACK
        LD HL,VECTORS           ; in line: the stack lies in what is cleared
        LD DE,VECTORS + 1
        LD BC,GRAPHICS_END - VECTORS
        LD (HL),0
        LDIR                    ; with the 0 before the first program
        CALL start_devices
        LD HL,TEXT_SCREEN
        LD BC,GRAPHICS_SCREEN - TEXT_SCREEN
        CALL erase_cells        ; the whole KB and all colours

; The character RAM: 80-BF blocks of two by three, bit 0 upper left, bit 1 upper right, and so on to
; bit 5; C0-FF blank.
        LD HL,CHARACTER_RAM
        LD C,0
_character:
        LD D,C
        LD B,3
        CALL draw_band
        LD B,2
        CALL draw_band
        LD B,3
        CALL draw_band
        INC C
        BIT 6,C
        JR Z,_character
        LD BC,0200h
        XOR A
        CALL fill_memory

; The vectors that a disk ROM replaces.
        LD HL,DISK_VECTORS
        LD DE,error_l3
        LD B,DISK_VECTOR_COUNT
_vector:
        LD (HL),0C3h            ; JP
        INC HL
        LD (HL),E
        INC HL
        LD (HL),D
        INC HL
        DJNZ _vector
        LD C,3 * DISK_HOOK_COUNT
        LD A,0C9h               ; RET
        CALL fill_memory

; The cells of the machine's own words; the others are 0.
        LD HL,first_shape
        LD (SHAPE_TABLE),HL
        LD HL,0155h
        LD (DRAW_COLOUR),HL     ; and SHAPE_SCALE
        LD HL,first_texts
        LD DE,FKEY_TEXTS
        LD BC,first_texts_end - first_texts
        LDIR
        LD HL,error_fc
        LD (USR_ADDRESS),HL
        LD HL,6A93h
        LD (RANDOM_SEED),HL
        CALL ask_memory_size
        LD (MEMORY_TOP),HL
        LD DE,-STRING_BYTES
        ADD HL,DE
        LD (STRING_SPACE),HL
        LD HL,FIRST_PROGRAM
        LD (PROGRAM_START),HL
        CALL empty_program
        LD HL,MARK
        LD (WARM_MARK),HL
        LD HL,sign_on
        CALL print_text
        CALL size_memory
        LD A,H
        RLA
        LD HL,16
        JR NC,_size
        ADD HL,HL
_size:
        CALL print_line_number
        LD HL,size_text
        CALL print_text
        CALL find_disk_rom
        CALL Z,DISK_START
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
        CALL start_devices
        CALL clear_text_screen
        CALL clear_variables
        JP ready

; Vectors, control blocks and devices as after power on.
; Uses: AF, BC, DE, HL
start_devices:
        LD A,DEFAULT_COLOUR
        LD (TEXT_COLOUR),A
        LD HL,first_vectors
        LD DE,VECTORS
        LD BC,first_vectors_end - first_vectors
        LDIR
        EX DE,HL
        LD C,KEY_ROWS + 8 - (VECTORS + first_vectors_end - first_vectors)
        XOR A
        LD (KEY_HELD_ROW),A
        LD (LATCH_COPY),A       ; character RAM for 80-FF, black background
        CALL fill_memory
        LD A,FIRST_SPEED        ; for programs that read bits without a search
        LD (TAPE_SPEED),A
        LD A,ROWS
        LD (ROW_COUNT),A
        CALL show_text
; Silences the sound generator. Its port A drives the printer, port B reads.
        LD A,VOLUMES + CHANNELS - 1
        LD C,0
_volume:
        CALL write_sound
        DEC A
        CP MIXER
        JR NZ,_volume
        LD C,7Fh                ; no tone, no noise
        JP write_sound

; Asks for the end of the memory that BASIC may use.
; Out:  HL its last byte
; Uses: AF, BC, DE
ask_memory_size:
        CALL find_disk_rom
        CALL Z,DISK_PROBE
        JR Z,size_memory        ; a disk starts without a question
_ask:
        LD HL,memory_text
        CALL print_text
        LD B,SIZE_DIGITS
        CALL read_short
        JR C,_ask
        LD A,B
        CP SIZE_DIGITS
        JR NZ,_short
        LD A,(LINE_BUFFER)
        CP '6'
        JR NC,_ask              ; beyond what a line number may be
_short:
        CALL next_line_character
        JR Z,size_memory
        JR NC,_ask
        CALL line_number
        JR NZ,_ask
        LD A,D
        CP HIGH LEAST_MEMORY
        JR C,_ask
        CALL size_memory
        RST 18h
        JR C,_ask
        EX DE,HL
        RET

; Finds the end of the RAM: 32 KB or 16.
; Out:  HL last byte
; Uses: AF
size_memory:
        LD HL,8000h
        LD A,(HL)
        CPL
        LD (HL),A
        CP (HL)
        CPL
        LD (HL),A               ; as it was
        DEC HL
        RET NZ
        LD H,HIGH 0BFFFh
        RET

; Part of a block character.
; In:   D the next two bits, B lines, HL place
; Out:  HL behind it
; Uses: AF, B, D
draw_band:
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
memory_text:
        DEFM "MEM SIZE? "
        DEFB 0
size_text:
        DEFM "K RAM"
        DEFB RETURN, RETURN, 0
ready_text:
        DEFM "READY"
        DEFB RETURN, 0
; All images have their routines at the same addresses, for the disk ROM.
        IF VERSION < 3
        DEFS 4, 0FFh
        ENDIF
