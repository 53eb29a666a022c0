; FORMAT: the tracks of a disk, boot sector, map, directory.

WAIT_FOR_KEY    EQU 0049h
FILL_BYTE       EQU 0E5h
ID_MARK         EQU 0FEh
DATA_MARK       EQU 0FBh
WRITE_CRC       EQU 0F7h
LENGTH_256      EQU 1           ; in an ID field
GAP_BYTE        EQU 0FFh

; In:   DISK_DRIVE
word_format:
        CALL text_screen_row
        LD HL,_ask_text
        CALL print_text
        LD A,(DISK_DRIVE)
        ADD A,'0'
        CALL print_entry
        LD HL,_answer_text
        CALL print_text
        CALL WAIT_FOR_KEY
        CP ' '
        JR C,_answer
        PUSH AF
        CALL print_entry
        POP AF
_answer:
        PUSH AF
        LD A,RETURN
        CALL print_entry
        POP AF
        CALL capital
        CP 'Y'
        RET NZ
        CALL forget_files_of_drive
        CALL ready_drive
        JP C,no_disk
        CALL measure_disk
        LD D,0
_track:
        CALL poll_break
        CALL ready_drive
        JP C,no_disk
        CALL seek_track
        CALL format_track
        INC D
        LD A,(DISK_TRACKS)
        CP D
        JR NZ,_track
        XOR A
        CALL fill_sector
        LD A,(DISK_SECTORS)
        LD E,A
_sector:
        DEC E
        JR Z,_map
        CALL write_directory
        JR _sector
_map:
        LD A,MAP_FREE
        CALL fill_sector
        LD (HL),MAP_RESERVED    ; the boot sector
        LD A,(DIRECTORY)
        ADD A,A
        CALL map_place
        LD (HL),MAP_RESERVED
        INC HL
        LD (HL),MAP_RESERVED
        CALL write_map
        XOR A
        CALL fill_sector
        INC HL
        LD (HL),BOOT_MARK
        INC HL
        LD A,(DIRECTORY)
        LD (HL),A
        INC HL
        LD DE,(DISK_TRACKS)
        LD (HL),E
        INC HL
        LD (HL),D
        INC HL
        EX DE,HL
        LD HL,disk_signature
        LD BC,5
        LDIR
        LD DE,0
        LD HL,(DISK_AREA)
        CALL write_sector
        JP word_dir
_ask_text:
        DEFM "FORMAT :"
        DEFB 0
_answer_text:
        DEFM " (Y/N)?"
        DEFB 0

; Fills the sector buffer.
; In:   A byte
; Out:  HL buffer
; Uses: AF, BC, DE
fill_sector:
        LD HL,(DISK_AREA)
        LD B,0
_byte:
        LD (HL),A
        INC HL
        DJNZ _byte
        DEC H
        RET

; Files of a disk that goes are open no more.
; Uses: AF, BC, DE, IX
forget_files_of_drive:
        LD B,FILES
_file:
        LD A,B
        CALL file_of_number
        LD A,(DISK_DRIVE)
        CP (IX + FILE_DRIVE)
        JR NZ,_next
        LD (IX + FILE_MODE),0
_next:
        DJNZ _file
        RET

; Which sectors are there? A disk without any gets 40 tracks of 10.
; Out:  DISK_TRACKS to BLOCK_SECTORS
; Uses: AF, BC, DE, HL
measure_disk:
        LD HL,40 + 10 * 256
        LD (DISK_TRACKS),HL
        LD HL,(DISK_AREA)
        LD DE,17                ; the last sector of a long track
        CALL try_read
        JR C,_short
        LD A,18
        LD (DISK_SECTORS),A
_short:
        LD E,0
        LD D,80
        CALL _last_track
        LD D,40
        CALL C,_last_track
        LD D,35
        CALL C,_last_track
        LD A,(DISK_TRACKS)
        SRL A
        LD (DIRECTORY),A
        LD A,(DISK_SECTORS)
        SRL A
        LD (BLOCK_SECTORS),A
        RET
; In:   D tracks
_last_track:
        DEC D
        CALL try_read
        RET C
        INC D
        LD A,D
        LD (DISK_TRACKS),A
        RET

; Writes a track of sectors.
; In:   D track
; Uses: AF, BC, E, HL
format_track:
        LD A,COMMAND_FORMAT
        CALL send_command
        LD A,(FDC_STATUS)
        BIT STATUS_PROTECTED_BIT,A
        JP NZ,protected
        BIT STATUS_REQUEST_BIT,A
        JR NZ,_start
        RRCA
        JP NC,disk_failed
_start:
        LD BC,16 * 256 + GAP_BYTE
        CALL _bytes
        LD A,(DISK_SECTORS)
        LD L,A
        LD E,0
_sector:
        LD BC,6 * 256
        CALL _bytes
        LD C,ID_MARK
        CALL _byte
        LD C,D
        CALL _byte
        LD C,0
        CALL _byte
        LD C,E
        CALL _byte
        LD C,LENGTH_256
        CALL _byte
        LD C,WRITE_CRC
        CALL _byte
        LD BC,11 * 256 + GAP_BYTE
        CALL _bytes
        LD BC,6 * 256
        CALL _bytes
        LD C,DATA_MARK
        CALL _byte
        LD BC,FILL_BYTE
        CALL _bytes
        LD C,WRITE_CRC
        CALL _byte
        LD BC,12 * 256 + GAP_BYTE
        CALL _bytes
        CALL next_sector
        DEC L
        JR NZ,_sector
_rest:
        LD C,GAP_BYTE           ; until the index hole comes again
        CALL _byte
        JR NC,_rest
        LD A,(FDC_STATUS)
        AND WRITE_ERRORS
        RET Z
        JP disk_failed
; In:   B count, 0 for 256, C byte
_bytes:
        CALL _byte
        DJNZ _bytes
        RET
; In:   C byte
; Out:  carry if the controller has ended
_byte:
        LD A,(FDC_STATUS)
        BIT STATUS_REQUEST_BIT,A
        JR NZ,_send
        RRCA
        JR C,_byte
        SCF
        RET
_send:
        LD A,C
        LD (FDC_DATA),A
        OR A
        RET

; Sectors of a track follow each other as the controller's time allows: 0, 5, 1, 6 ... with 10.
; In:   E sector
; Out:  E the one behind it
; Uses: AF
next_sector:
        INC E
        LD A,(DISK_SECTORS)
        CP 10
        RET NZ
        LD A,E
        ADD A,4                 ; s + 5
        CP 10
        LD E,A
        RET C
        SUB 9                   ; s - 4
        LD E,A
        RET
