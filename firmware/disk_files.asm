; Files: opening, bytes one after the other, closing.

; In:   A number
; Out:  IX file
; Uses: AF, DE
file_of_number:
        DEC A
        CP FILES
        JP NC,fail_number
; In:   A number - 1
file_of_index:
        PUSH BC
        LD IX,(DISK_AREA)
        LD BC,SECTOR_SIZE
        ADD IX,BC
        LD DE,FILE_SIZE
        INC A
        LD B,A
        JR _count
_next:
        ADD IX,DE
_count:
        DJNZ _next
        POP BC
        RET

; No file is open, whatever was.
; Uses: AF, BC, DE, IX
forget_files:
        LD B,FILES
_file:
        LD A,B
        CALL file_of_number
        LD (IX + FILE_MODE),0
        DJNZ _file
        RET

; Closes all files.
; Uses: all but HL
close_files:
        PUSH HL
        LD B,FILES
_file:
        PUSH BC
        LD A,B
        CALL file_of_number
        CALL close_file
        POP BC
        DJNZ _file
        POP HL
        RET

; In:   IX file
; Out:  HL its buffer
; Uses: DE
file_buffer:
        PUSH IX
        POP HL
        LD DE,FILE_BUFFER
        ADD HL,DE
        RET

; The disk of a file becomes the one in use.
; In:   IX file
; Uses: AF, HL
use_disk:
        LD A,(IX + FILE_DRIVE)
        LD (DISK_DRIVE),A
        LD L,(IX + FILE_TRACKS)
        LD H,(IX + FILE_SECTORS)
        LD (DISK_TRACKS),HL
        LD L,(IX + FILE_DIRECTORY)
        LD H,(IX + FILE_HALF)
        LD (DIRECTORY),HL
        LD L,(IX + FILE_OFFSET)
        LD H,(IX + FILE_SECTOR)
        LD (ENTRY_OFFSET),HL
        RET
; The other way round; nothing read or written yet.
; In:   IX file
; Uses: AF, HL
start_file:
        LD A,(DISK_DRIVE)
        LD (IX + FILE_DRIVE),A
        LD HL,(DISK_TRACKS)
        LD (IX + FILE_TRACKS),L
        LD (IX + FILE_SECTORS),H
        LD HL,(DIRECTORY)
        LD (IX + FILE_DIRECTORY),L
        LD (IX + FILE_HALF),H
        LD HL,(ENTRY_OFFSET)
        LD (IX + FILE_OFFSET),L
        LD (IX + FILE_SECTOR),H
        XOR A
        LD (IX + FILE_INDEX),A
        LD (IX + FILE_PLACE),A
        LD (IX + FILE_LEFT),A
        LD (IX + FILE_LEFT + 1),A
        LD (IX + FILE_COUNT),A
        LD (IX + FILE_COUNT + 1),A
        LD (IX + FILE_LAST),A
        LD (IX + FILE_COLUMN),A
        LD (IX + FILE_PROGRAM),A
        RET

; Opens a file that was found for reading.
; In:   IX file, HL its entry
; Uses: AF, BC, DE, HL
open_input:
        PUSH HL
        CALL start_file
        POP HL
        LD DE,ENTRY_BLOCK
        ADD HL,DE
        LD A,(HL)
        LD (IX + FILE_FIRST),A
        LD (IX + FILE_BLOCK),A
        INC HL
        LD A,(HL)
        LD (IX + FILE_LAST),A
        LD (IX + FILE_MODE),MODE_INPUT
        RET

; Opens FILE_NAME for writing; a file of the same name and kind is replaced.
; In:   IX file, A type
; Uses: AF, BC, DE, HL
open_output:
        PUSH IX
        PUSH AF
        CALL find_file
        LD A,NO_BLOCK
        JR NZ,_new
        CALL check_not_open
        POP AF
        PUSH AF
        LD HL,FILE_TYPE
        CP (HL)
        JP NZ,fail_exists
        LD A,(FIRST_BLOCK)
        JR _entry
_new:
        LD HL,(FREE_OFFSET)
        LD (ENTRY_OFFSET),HL
        INC H
        DEC H
        JP Z,fail_directory
_entry:
        LD C,A
        POP AF
        POP IX
        PUSH BC
        PUSH AF
        CALL read_entry
        EX DE,HL
        LD HL,FILE_NAME
        LD BC,NAME_SIZE
        LDIR
        EX DE,HL
        POP AF
        LD (HL),A
        INC HL
        LD (HL),NO_BLOCK
        INC HL
        LD B,3
_zero:
        LD (HL),0
        INC HL
        DJNZ _zero
        CALL write_entry
        POP BC
        LD A,C
        CALL free_blocks
        CALL start_file
        LD (IX + FILE_BLOCK),NO_BLOCK
        LD (IX + FILE_FIRST),NO_BLOCK
        LD (IX + FILE_MODE),MODE_OUTPUT
        RET

; Goes to the end of a file opened for reading, to write there.
; In:   IX file
; Uses: AF, BC, DE, HL
go_to_end:
        LD A,(IX + FILE_FIRST)
        CP BLOCK_LIMIT
        JR NC,_output           ; empty
        CALL read_map
        LD A,(IX + FILE_FIRST)
_block:
        LD (IX + FILE_BLOCK),A
        CALL map_place
        LD A,(HL)
        CP BLOCK_LIMIT
        JR C,_block
        SUB MAP_LAST
        LD (IX + FILE_INDEX),A
        LD A,(IX + FILE_LAST)
        OR A
        JR Z,_output            ; the last sector is full
        LD (IX + FILE_PLACE),A
        DEC (IX + FILE_INDEX)
        CALL sector_of_file
        CALL file_buffer_kept
        CALL read_sector
_output:
        LD (IX + FILE_MODE),MODE_OUTPUT
        RET

; Where the next sector of a file is.
; In:   IX file
; Out:  D track, E sector
; Uses: AF, BC
sector_of_file:
        LD C,(IX + FILE_INDEX)
        LD A,(IX + FILE_BLOCK)
        JP block_place
; Out:  HL buffer, DE kept
file_buffer_kept:
        PUSH DE
        CALL file_buffer
        POP DE
        RET

; Next byte of a file.
; In:   IX file
; Out:  A, carry at the end of the file
; Uses: F
get_char:
        PUSH HL
        PUSH DE
        PUSH BC
        LD A,(IX + FILE_LEFT)
        OR (IX + FILE_LEFT + 1)
        JR NZ,_there
        CALL load_sector
        JR C,_end
_there:
        CALL file_buffer
        LD E,(IX + FILE_PLACE)
        LD D,0
        ADD HL,DE
        INC (IX + FILE_PLACE)
        LD A,(IX + FILE_LEFT)
        OR A
        JR NZ,_low
        LD (IX + FILE_LEFT + 1),A
_low:
        DEC (IX + FILE_LEFT)
        LD A,(HL)
        OR A
_end:
        POP BC
        POP DE
        POP HL
        RET
; The byte just read comes again.
; In:   IX file
; Uses: F
back_char:
        DEC (IX + FILE_PLACE)
        INC (IX + FILE_LEFT)
        RET NZ
        INC (IX + FILE_LEFT + 1)
        RET

; Reads the next sector of a file.
; In:   IX file
; Out:  carry at the end of the file
; Uses: AF, BC, DE, HL
load_sector:
        LD A,(IX + FILE_BLOCK)
        CP BLOCK_LIMIT
        CCF
        RET C
        CALL use_disk
        LD A,(IX + FILE_INDEX)
        OR A
        JR NZ,_link_known
        CALL read_map
        LD A,(IX + FILE_BLOCK)
        CALL map_place
        LD A,(HL)
        LD (IX + FILE_LINK),A
_link_known:
        CALL sector_of_file
        CALL file_buffer_kept
        CALL read_sector
        INC (IX + FILE_COUNT)
        JR NZ,_counted
        INC (IX + FILE_COUNT + 1)
_counted:
        LD HL,0100h
        INC (IX + FILE_INDEX)
        LD A,(IX + FILE_LINK)
        SUB MAP_LAST
        JR C,_chained
        CP (IX + FILE_INDEX)
        JR Z,_last
        JR NC,_left
_last:
        LD (IX + FILE_BLOCK),NO_BLOCK
        LD A,(IX + FILE_LAST)
        OR A
        JR Z,_left
        LD L,A
        LD H,0
        JR _left
_chained:
        LD A,(IX + FILE_INDEX)
        CP (IX + FILE_HALF)
        JR NZ,_left
        LD A,(IX + FILE_LINK)
        LD (IX + FILE_BLOCK),A
        LD (IX + FILE_INDEX),0
_left:
        LD (IX + FILE_LEFT),L
        LD (IX + FILE_LEFT + 1),H
        LD (IX + FILE_PLACE),0
        OR A
        RET

; Byte to a file.
; In:   IX file, A
; Uses: AF
put_char:
        PUSH HL
        PUSH DE
        PUSH BC
        CALL file_buffer
        LD E,(IX + FILE_PLACE)
        LD D,0
        ADD HL,DE
        LD (HL),A
        INC (IX + FILE_PLACE)
        CALL Z,store_sector
        POP BC
        POP DE
        POP HL
        RET

; Writes the buffer of a file to its next sector.
; In:   IX file
; Uses: AF, BC, DE, HL
store_sector:
        CALL use_disk
        LD A,(IX + FILE_BLOCK)
        CP BLOCK_LIMIT
        JR NC,_block
        LD A,(IX + FILE_INDEX)
        CP (IX + FILE_HALF)
_block:
        CALL NC,take_block
        CALL sector_of_file
        CALL file_buffer_kept
        CALL write_sector
        INC (IX + FILE_INDEX)
        INC (IX + FILE_COUNT)
        RET NZ
        INC (IX + FILE_COUNT + 1)
        RET
; A new block for a file. It counts as full until the file is closed.
take_block:
        CALL read_map
        LD A,(DISK_TRACKS)
        ADD A,A
        LD B,A
        LD C,0
_search:
        LD A,(HL)
        CP MAP_FREE
        JR Z,_found
        INC HL
        INC C
        DJNZ _search
        LD (IX + FILE_MODE),0   ; what was written so far stays, or goes with a program
        LD (IX + FILE_PLACE),0
        LD A,(IX + FILE_PROGRAM)
        OR A
        JR Z,_keep
        CALL read_entry
        LD A,(IX + FILE_FIRST)
        LD (FIRST_BLOCK),A
        CALL delete_file
        JP fail_full
_keep:
        LD (IX + FILE_LAST),0
        CALL finish_file
        JP fail_full
_found:
        LD A,(BLOCK_SECTORS)
        ADD A,MAP_LAST
        LD (HL),A
        LD A,(IX + FILE_BLOCK)
        LD (IX + FILE_BLOCK),C
        LD (IX + FILE_INDEX),0
        CP BLOCK_LIMIT
        JR NC,_first
        CALL map_place
        LD (HL),C
        JP write_map
_first:
        LD (IX + FILE_FIRST),C
        CALL write_map
        CALL read_entry         ; so that the blocks are not lost with the power
        LD DE,ENTRY_BLOCK
        ADD HL,DE
        LD A,(IX + FILE_FIRST)
        LD (HL),A
        JP write_entry

; Closes a file, open or not.
; In:   IX file
; Uses: AF, BC, DE, HL
close_file:
        LD A,(IX + FILE_MODE)
        LD (IX + FILE_MODE),0   ; even when the disk is not there any more
        CP MODE_OUTPUT
        RET NZ
        CALL use_disk
        LD A,(IX + FILE_PLACE)
        OR A
        JR Z,_whole
        PUSH AF
        CALL store_sector
        POP AF
_whole:
        LD (IX + FILE_LAST),A
finish_file:
        LD A,(IX + FILE_BLOCK)
        CP BLOCK_LIMIT
        RET NC                  ; empty
        CALL read_map
        LD A,(IX + FILE_BLOCK)
        CALL map_place
        LD A,(IX + FILE_INDEX)
        ADD A,MAP_LAST
        LD (HL),A
        CALL write_map
        CALL read_entry
        LD DE,ENTRY_BLOCK
        ADD HL,DE
        LD A,(IX + FILE_FIRST)
        LD (HL),A
        INC HL
        LD A,(IX + FILE_LAST)
        LD (HL),A
        JP write_entry
