; Names, the directory, the map.

; A file name in a text: NAME/EXT:drive
; In:   HL text
; Out:  FILE_NAME, DISK_DRIVE (0 unless given), HL behind it
; Uses: all
parse_name:
        CALL eval_string
        PUSH HL
        EX DE,HL
        LD B,A
        PUSH BC
        LD DE,FILE_NAME
        LD B,NAME_SIZE
        LD A,' '
_blank:
        LD (DE),A
        INC DE
        DJNZ _blank
        POP BC
        XOR A
        LD (DISK_DRIVE),A
        LD DE,FILE_NAME
        LD C,NAME_PART
        INC B
        JR _count
_next:
        LD A,(HL)
        INC HL
        CALL capital
        CP '/'
        JR Z,_extension
        CP ':'
        JR Z,_drive
        CP ' ' + 1
        JR C,_bad
        DEC C
        JP M,_bad
        LD (DE),A
        INC DE
_count:
        DJNZ _next
_end:
        POP HL
        LD A,(FILE_NAME)
        CP ' '
        RET NZ
_bad:
        JP fail_name
_extension:
        LD DE,FILE_NAME + NAME_PART
        LD C,NAME_SIZE - NAME_PART
        JR _count
_drive:
        DEC B
        DEC B
        JR NZ,_bad
        LD A,(HL)
        SUB '0'
        CP 4
        JR NC,_bad
        LD (DISK_DRIVE),A
        JR _end

; In:   HL boot sector
; Out:  Z if it is one of this system, HL at its D
; Uses: AF, BC, DE
known_disk:
        INC HL
        LD A,(HL)
        CP BOOT_MARK
        RET NZ
        INC HL
        PUSH HL
        INC HL
        INC HL
        INC HL
        LD DE,disk_signature
        LD B,5
_letter:
        LD A,(DE)
        CP (HL)
        INC DE
        INC HL
        JR NZ,_end
        DJNZ _letter
_end:
        POP HL
        RET
disk_signature:
        DEFM "TDOS1"

; Sector of the directory to or from the sector buffer.
; In:   E sector
; Out:  HL the buffer; DE
; Uses: AF, BC
read_directory:
        CALL directory_place
        JP read_sector
write_directory:
        CALL directory_place
        JP write_sector
directory_place:
        LD A,(DIRECTORY)
        LD D,A
        LD HL,(DISK_AREA)
        RET

; Byte of the map, in the sector buffer.
; In:   A block
; Out:  HL place
; Uses: DE
map_place:
        LD HL,(DISK_AREA)
        LD E,A
        LD D,0
        ADD HL,DE
        RET

; Where a block is.
; In:   A block, C number of the sector in it
; Out:  D track, E sector
; Uses: AF
block_place:
        LD E,C
        SRL A
        LD D,A
        RET NC
        LD A,(BLOCK_SECTORS)
        ADD A,E
        LD E,A
        RET

; Looks for FILE_NAME.
; Out:  Z if it is there: HL its entry in the sector buffer, ENTRY_OFFSET, ENTRY_SECTOR, FILE_TYPE,
;       FIRST_BLOCK; else FREE_OFFSET and FREE_SECTOR, which is 0 in a full directory
; Uses: AF, BC, DE
find_file:
        LD HL,0
        LD (FREE_OFFSET),HL
        LD E,1
_sector:
        CALL poll_break
        PUSH DE
        CALL read_directory
        POP DE
        LD D,0                  ; offset
_entry:
        LD A,(HL)
        CP ENTRY_DELETED
        JR Z,_free
        OR A
        JR Z,_free
        PUSH HL
        PUSH DE
        LD DE,FILE_NAME
        LD B,NAME_SIZE
_compare:
        LD A,(DE)
        CP (HL)
        INC DE
        INC HL
        JR NZ,_other
        DJNZ _compare
        LD A,(HL)
        LD (FILE_TYPE),A
        INC HL
        LD A,(HL)
        LD (FIRST_BLOCK),A
        XOR A
_other:
        POP DE
        POP HL
        JR Z,_found
_next:
        LD BC,ENTRY_SIZE
        ADD HL,BC
        LD A,D
        ADD A,C
        LD D,A
        JR NZ,_entry
        INC E
        LD A,(DISK_SECTORS)
        CP E
        JR NZ,_sector
        OR A
        RET
_free:
        LD B,A
        LD A,(FREE_SECTOR)
        OR A
        JR NZ,_first_known
        LD A,D
        LD (FREE_OFFSET),A
        LD A,E
        LD (FREE_SECTOR),A
_first_known:
        LD A,B
        OR A
        JR NZ,_next
        INC A                   ; never used: no more entries behind it
        RET
_found:
        LD A,D
        LD D,E
        LD E,A
        LD (ENTRY_OFFSET),DE
        RET

; The same, and the file must be there, and not be open.
find_closed_file:
        CALL find_existing_file
; The file at ENTRY_OFFSET must not be open.
; Uses: AF, BC, DE, IX
check_not_open:
        PUSH HL
        LD IX,(DISK_AREA)
        LD BC,SECTOR_SIZE
        ADD IX,BC
        LD DE,FILE_SIZE
        LD B,FILES
_file:
        LD A,(IX + FILE_MODE)
        OR A
        JR Z,_next
        LD HL,(ENTRY_OFFSET)
        LD A,(IX + FILE_OFFSET)
        CP L
        JR NZ,_next
        LD A,(IX + FILE_SECTOR)
        CP H
        JR NZ,_next
        LD A,(DISK_DRIVE)
        CP (IX + FILE_DRIVE)
        JP Z,fail_open
_next:
        ADD IX,DE
        DJNZ _file
        POP HL
        RET
find_existing_file:
        CALL find_file
        RET Z
        JP fail_not_found

; Gives the blocks of a chain back.
; In:   A first block
; Uses: AF, BC, DE, HL
free_blocks:
        CP BLOCK_LIMIT
        RET NC
        PUSH AF
        CALL read_map
        POP AF
_block:
        CALL map_place
        LD A,(HL)
        CP MAP_RESERVED
        JR NC,_end
        LD (HL),MAP_FREE
        CP BLOCK_LIMIT
        JR C,_block
_end:
        JP write_map

; The directory's sector of the entry at ENTRY_OFFSET.
; Out:  HL entry in the sector buffer
; Uses: AF, BC, DE
read_entry:
        LD DE,(ENTRY_OFFSET)
        PUSH DE
        LD E,D
        CALL read_directory
        POP DE
        LD D,0
        ADD HL,DE
        RET
; Writes it back.
write_entry:
        LD A,(ENTRY_SECTOR)
        LD E,A
        JP write_directory

; Deletes a file.
; In:   HL entry in the sector buffer, FIRST_BLOCK
delete_file:
        LD (HL),ENTRY_DELETED
        CALL write_entry
        LD A,(FIRST_BLOCK)
        JR free_blocks

; KILL "name"
        fill_to 0C5D6h
word_kill:
        CALL parse_name
        PUSH HL
        CALL mount_disk
        CALL find_file_to_delete
        CALL delete_file
        POP HL
        RET

; NAME "old" TO "new", also with AS
        fill_to 0C5EFh
word_name:
        CALL parse_name
        PUSH HL
        CALL mount_disk
        CALL find_closed_file
        POP HL
        LD DE,(ENTRY_OFFSET)
        LD A,(DISK_DRIVE)
        LD B,A
        PUSH DE
        PUSH BC
        LD A,(HL)
        CP TOKEN_TO
        JR Z,_name
        RST 08h
        DEFB 'A'
        LD A,(HL)
        CP 'S'
        JP NZ,error_sn
_name:
        INC HL
        CALL parse_name
        POP BC
        LD A,B
        LD (DISK_DRIVE),A
        POP DE
        PUSH HL
        PUSH DE
        CALL find_file
        JP Z,fail_exists
        POP DE
        LD (ENTRY_OFFSET),DE
        CALL read_entry
        EX DE,HL
        LD HL,FILE_NAME
        LD BC,NAME_SIZE
        LDIR
        CALL write_entry
        POP HL
        RET

; DIR: the files of a disk, two in a row: name, kind, sectors.
word_dir:
        CALL mount_disk
        CALL print_new_row
        LD HL,_disk_text
        CALL put_text
        LD A,(DISK_DRIVE)
        ADD A,'0'
        CALL put_character
        CALL new_row
        LD HL,0100h             ; sector 1, offset 0
_entry:
        LD (ENTRY_OFFSET),HL
        CALL test_break
        RET NZ
        CALL read_entry
        LD A,(HL)
        OR A
        JP Z,_end
        CP ENTRY_DELETED
        JR Z,_next
        LD B,NAME_PART
        CALL _letters
        LD A,'/'
        CALL put_character
        LD B,NAME_SIZE - NAME_PART
        CALL _letters
        LD A,' '
        CALL put_character
        LD C,(HL)               ; type
        INC HL
        LD A,(HL)
        PUSH AF
        LD B,0
        LD A,C
        CP 3
        JR C,_known
        LD C,3
_known:
        LD HL,_kinds
        ADD HL,BC
        LD A,(HL)
        CALL put_character
        POP AF
        CALL count_sectors
        JR C,_damaged
        PUSH HL
        LD DE,10
        RST 18h
        JR NC,_tens
        LD A,' '
        CALL put_character
_tens:
        POP HL
        PUSH HL
        LD DE,100
        RST 18h
        JR NC,_hundreds
        LD A,' '
        CALL put_character
_hundreds:
        LD A,' '
        CALL put_character
        POP HL
        CALL print_line_number
_listed:
        CALL get_column
        CP COLUMNS / 2
        JR NC,_row
        LD A,' '
        CALL put_character
        LD A,' '
        CALL put_character
        JR _next
_damaged:
        LD HL,_damaged_text
        CALL put_text
        JR _listed
_row:
        OR A
        CALL NZ,new_row
_next:
        LD HL,(ENTRY_OFFSET)
        LD A,L
        ADD A,ENTRY_SIZE
        LD L,A
        JP NC,_entry
        INC H
        LD A,(DISK_SECTORS)
        CP H
        JP NZ,_entry
_end:
        CALL print_new_row
        CALL free_sectors
        EX DE,HL
        CALL print_line_number
        LD HL,_free_text
        CALL put_text
        JP new_row
_letters:
        LD A,(HL)
        INC HL
        CALL put_character
        DJNZ _letters
        RET
_disk_text:
        DEFM "DISK "
        DEFB 0
_free_text:
        DEFM " SECTORS FREE"
        DEFB 0
_damaged_text:
        DEFM "   ?"
        DEFB 0
_kinds:
        DEFM "BMT?"

; Sectors of the disk in use that no file has.
; Out:  DE, the map in the sector buffer
; Uses: AF, BC, HL
free_sectors:
        CALL read_map
        LD A,(DISK_TRACKS)
        ADD A,A
        LD B,A
        LD DE,0
_block:
        LD A,(HL)
        INC HL
        INC A
        JR NZ,_used
        LD A,(BLOCK_SECTORS)
        ADD A,E
        LD E,A
        JR NC,_used
        INC D
_used:
        DJNZ _block
        RET
