; Files: opening, the next sector, closing; values and lines of texts.

; The disk in use, with its map read, becomes the one of a file; nothing read or written yet.
; In:   IX file
; Uses: AF, DE, HL
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
        LD DE,(MAP_SUM)
        CALL set_map_sum
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
        LD DE,ENTRY_BLOCK
        ADD HL,DE
        LD E,(HL)
        INC HL
        LD D,(HL)
        PUSH DE
        CALL read_map
        CALL start_file
        POP DE
        LD (IX + FILE_FIRST),E
        LD (IX + FILE_BLOCK),E
        LD (IX + FILE_LAST),D
        LD (IX + FILE_MODE),MODE_INPUT
        RET
; The same for a program: BREAK ends its reading at any sector.
open_program_file:
        CALL open_input
        LD (IX + FILE_PROGRAM),1
        XOR A
        LD (QUIET_SECTORS),A
        RET
; Begins a value of INPUT #. One that is whole does not cross as many sectors: until then BREAK has
; to wait for the end of the statement, so that CONT loses nothing of the file.
; Out:  all registers kept
begin_value:
        PUSH AF
        LD A,3
        LD (QUIET_SECTORS),A
        POP AF
        RET
; MERGE: the lines move.
begin_merging:
        LD A,LOADING_LINES
        LD (LOADING),A
        JP clear_variables

; Opens FILE_NAME for writing; a file of the same name and kind is replaced.
; In:   IX file, A type
; Uses: AF, BC, DE, HL
open_output:
        PUSH IX
        PUSH AF
        CALL find_file
        JR NZ,_new
        CALL check_not_open
        POP AF
        PUSH AF
        LD HL,FILE_TYPE
        CP (HL)
        JP NZ,fail_exists
        JR _entry
_new:
        LD A,NO_BLOCK
        LD (FIRST_BLOCK),A
        LD HL,(FREE_OFFSET)
        LD (ENTRY_OFFSET),HL
        INC H
        DEC H
        JP Z,fail_directory
_entry:
        CALL check_blocks
        CALL read_entry
        EX DE,HL
        LD HL,FILE_NAME
        LD BC,NAME_SIZE
        LDIR
        EX DE,HL
        POP AF
        POP IX
        LD (HL),A
        INC HL
        LD (HL),NO_BLOCK
        INC HL
        LD B,3
_zero:
        LD (HL),0
        INC HL
        DJNZ _zero
        CALL write_entry_of_file
        LD A,(FIRST_BLOCK)
        CALL free_blocks
        CALL start_file
        LD (IX + FILE_BLOCK),NO_BLOCK
        LD (IX + FILE_FIRST),NO_BLOCK
        LD (IX + FILE_MODE),MODE_OUTPUT
        RET

; A file opened for reading is to be written, too.
; In:   IX file
; Uses: AF, BC, DE, HL
prepare_writing:
        LD (IX + FILE_MODE),0   ; unless all is well
        CALL check_blocks
        CALL read_entry
        JP keep_entry_sum
; Opens the file found: data that no other number has.
; In:   IX file, HL its entry in the sector buffer
; Uses: AF, BC, DE, HL
open_text:
        PUSH IX
        CALL check_not_open
        POP IX
        LD A,(FILE_TYPE)
        CP TYPE_TEXT
        JP NZ,fail_type
        JP open_input
; Goes to the end of a file opened for reading, to write there.
; In:   IX file
; Uses: AF, BC, DE, HL
go_to_end:
        CALL prepare_writing
        LD A,(IX + FILE_FIRST)
        CP NO_BLOCK
        JR Z,_output            ; empty
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

; Reads the next sector of a file.
; In:   IX file
; Out:  carry at the end of the file
; Uses: AF, BC, DE, HL
load_sector:
        LD A,(IX + FILE_BLOCK)
        CP NO_BLOCK
        SCF
        RET Z
        LD HL,QUIET_SECTORS
        LD A,(HL)
        OR A
        CALL Z,poll_break
        JR Z,_polled
        DEC (HL)
_polled:
        CALL use_disk
        LD A,(IX + FILE_INDEX)
        OR A
        JR Z,_map
        LD A,(IX + FILE_PROGRAM)
        OR A
        JR NZ,_link_known       ; nobody changes a disk between two sectors of LOAD
_map:
        CALL read_map_of_file
        JP NZ,fail_changed
        LD A,(IX + FILE_INDEX)
        OR A
        CALL Z,follow_chain
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

; Writes the buffer of a file to its next sector. BREAK ends SAVE, and nothing of the file stays.
; In:   IX file
; Uses: AF, BC, DE, HL
store_sector:
        CALL use_disk
        LD A,(IX + FILE_PROGRAM)
        OR A
        JR Z,_place
        CALL test_break
        JR NZ,_break
_place:
        LD A,(IX + FILE_BLOCK)
        CP BLOCK_LIMIT
        JR NC,_block
        LD A,(IX + FILE_INDEX)
        CP (IX + FILE_HALF)
_block:
        PUSH AF                 ; no carry: a new block is needed
        JR NC,_check
        LD A,(IX + FILE_PROGRAM)
        OR A
        JR NZ,_same             ; nobody changes a disk between two sectors of SAVE
_check:
        CALL check_same_disk
_same:
        POP AF
        CALL NC,take_block
        CALL sector_of_file
        CALL file_buffer_kept
        CALL write_sector
        INC (IX + FILE_INDEX)
        INC (IX + FILE_COUNT)
        RET NZ
        INC (IX + FILE_COUNT + 1)
        RET
_break:
        CALL check_same_disk
        CALL delete_open_file
        JP break_act
; In:   HL the map
; Out:  Z if there is a free block: C its number, HL its byte
; Uses: AF, B
find_free_block:
        LD A,(DISK_TRACKS)
        ADD A,A
        LD B,A
        LD C,0
_search:
        LD A,(HL)
        CP MAP_FREE
        RET Z
        INC HL
        INC C
        DJNZ _search
        RET
; A new block for a file. It counts as full until the file is closed.
take_block:
        CALL read_map
        CALL find_free_block
        JR Z,_found
        LD (IX + FILE_MODE),0   ; what was written so far stays, or goes with a program
        LD (IX + FILE_PLACE),0
        LD A,(IX + FILE_PROGRAM)
        OR A
        JR Z,_keep
        CALL delete_open_file
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
        JP write_entry_of_file
; In:   IX file
; Uses: AF, BC, DE, HL
delete_open_file:
        CALL read_entry
        LD A,(IX + FILE_FIRST)
        LD (FIRST_BLOCK),A
        JP delete_file

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
        LD A,(IX + FILE_BLOCK)
        CP BLOCK_LIMIT
        RET NC                  ; empty
        CALL check_same_disk
finish_file:
        LD A,(IX + FILE_BLOCK)
        CP BLOCK_LIMIT
        RET NC
        CALL read_map
        LD A,(IX + FILE_BLOCK)
        CALL map_place
        LD A,(IX + FILE_INDEX)
        ADD A,MAP_LAST
        LD (HL),A
        CALL write_map
; The entry of a file gets its first block and the bytes in the last sector.
; In:   IX file, its disk in use
; Uses: AF, BC, DE, HL
write_entry_ends:
        CALL read_entry
        LD DE,ENTRY_BLOCK
        ADD HL,DE
        LD A,(IX + FILE_FIRST)
        LD (HL),A
        INC HL
        LD A,(IX + FILE_LAST)
        LD (HL),A
        JP write_entry_of_file

; A value of INPUT to LINE_BUFFER, ended by 0: a number up to a blank, a string in quotes, or
; anything up to a comma or the end of the line.
; In:   IX file, B type
; Uses: AF, BC, HL
read_item:
        LD HL,LINE_BUFFER
        LD C,0                  ; 256 less the characters
_blank:
        CALL get_char
        JP C,fail_end
        CP ' '
        JR Z,_blank
        CP LINE_FEED
        JR Z,_blank
        BIT 0,B
        JR Z,_plain
        CP STRING_QUOTE
        JR NZ,_plain
_quoted:
        CALL get_char
        JR C,_end
        CP STRING_QUOTE
        JR Z,_behind
        CALL _store
        JR _quoted
_behind:
        CALL get_char
        JR C,_end
        CALL _ends
        JR NZ,_behind
        JR _end
_plain:
        CALL _ends
        JR Z,_end
        CP ' '
        JR NZ,_character
        BIT 0,B
        JR Z,_blanks
_character:
        CALL _store
        CALL get_char
        JR NC,_plain
_end:
        LD (HL),0
        RET
_blanks:
        CALL get_char
        JR C,_end
        CP ' '
        JR Z,_blanks
        CALL _ends
        CALL NZ,back_char
        JR _end
; Out:  Z if A ends a value
_ends:
        CP ','
        RET Z
        CP RETURN
        RET
_store:
        DEC C
        JP Z,error_ls
        LD (HL),A
        INC HL
        RET

; A line of a text, ended by 0: up to 255 characters to LINE_BUFFER, a longer line of a program to
; text_behind_program.
; In:   IX file
; Out:  HL end of the line, carry at the end of the file
; Uses: AF, B, DE
read_text_line:
        LD HL,LINE_BUFFER
        LD B,0                  ; 256 less the characters
_character:
        CALL get_char
        JR C,_file_end
        CP RETURN
        JR Z,_end
        CP LINE_FEED
        JR Z,_feed
        DEC B
        CALL Z,long_line
        LD (HL),A
        INC HL
        JR _character
_feed:
        LD A,B                  ; it may follow a return
        OR A
        JR Z,_character
_end:
        LD (HL),0
        OR A
        RET
_file_end:
        LD A,B
        OR A
        JR NZ,_end
        SCF
        RET
