; Chains of blocks, and whether map and directory are what they should be.

BLOCK_SET       EQU BLOCK_LIMIT / 8     ; bytes of a set of blocks, a bit for each
LONG_TRACK      EQU 18          ; sectors of a track, the other number is SHORT_TRACK
SHORT_TRACK     EQU 10
MOST_TRACKS     EQU BLOCK_LIMIT / 2
MOST_SECTORS    EQU 8           ; of a file, in units of 256: more than a disk has

; Reads what the boot sector tells about the disk. D, T and S must go together.
; Out:  DISK_TRACKS to BLOCK_SECTORS
; Uses: AF, BC, DE, HL
mount_disk:
        LD DE,0
        LD HL,(DISK_AREA)
        CALL read_sector
        CALL known_disk
        JP NZ,fail_format
        LD C,(HL)               ; D
        INC HL
        LD E,(HL)               ; T
        INC HL
        LD D,(HL)               ; S
        LD A,E
        CP MOST_TRACKS + 1
        JR NC,_damaged
        SRL A
        JR Z,_damaged
        CP C
        JR NZ,_damaged
        LD A,D
        CP LONG_TRACK
        JR Z,_sectors
        CP SHORT_TRACK
        JR NZ,_damaged
_sectors:
        LD (DISK_TRACKS),DE     ; and DISK_SECTORS
        SRL A
        LD B,A
        LD (DIRECTORY),BC       ; and BLOCK_SECTORS
        RET
_damaged:
        JP fail_damaged

; Is it a block for files?
; In:   A block
; Out:  A kept, carry if not
; Uses: F, DE
usable_block:
        CP 1
        RET C                   ; the boot sector's
        LD E,A
        LD A,(DISK_TRACKS)
        ADD A,A
        DEC A
        CP E
        LD A,E
        RET C                   ; behind the last one
        LD A,(DIRECTORY)
        LD D,A
        LD A,E
        SRL A
        CP D
        LD A,E
        SCF
        RET Z                   ; the directory's
        CCF
        RET

; What the map, in the sector buffer, has for a block of a file.
; In:   A block
; Out:  A next block, or MAP_LAST and the sectors in use; carry if it is neither
; Uses: F, DE, HL
block_link:
        CALL usable_block
        RET C
        CALL map_place
        LD A,(HL)
        CP MAP_LAST
        JR C,usable_block
        LD E,A
        LD A,(BLOCK_SECTORS)
        ADD A,MAP_LAST
        CP E
        LD A,E
        RET C
        CP MAP_LAST + 1
        RET

; Length of a file.
; In:   A first block
; Out:  HL sectors, carry if its chain is damaged
; Uses: AF, BC, DE
count_sectors:
        PUSH AF
        CALL read_map
        POP AF
        LD BC,0
        CP NO_BLOCK
        JR Z,_end
_block:
        CALL block_link
        RET C
        CP MAP_LAST
        JR NC,_last
        LD E,A
        LD A,(BLOCK_SECTORS)
        ADD A,C
        LD C,A
        LD A,E
        JR NC,_block
        INC B
        LD A,B
        CP MOST_SECTORS
        LD A,E
        JR C,_block
        SCF                     ; a circle
        RET
_last:
        AND 1Fh
        ADD A,C
        LD C,A
        JR NC,_end
        INC B
_end:
        LD H,B
        LD L,C
        OR A
        RET

; The next block of a file that is read, whose disk is in use and has its map in the sector buffer.
; Behind a damage nothing is read, and no block is read twice.
; In:   IX file, at the first sector of a block
; Out:  FILE_LINK
; Uses: AF, BC, DE, HL
follow_chain:
        LD C,(IX + FILE_COUNT)
        LD B,(IX + FILE_COUNT + 1)
        LD A,(IX + FILE_FIRST)
_read:
        LD L,A
        LD A,B
        OR C
        JR Z,_new
        LD A,C
        SUB (IX + FILE_HALF)
        LD C,A
        LD A,L
        JR NC,_counted
        DEC B
_counted:
        CP (IX + FILE_BLOCK)
        JP Z,fail_damaged       ; a circle
        CALL map_place
        LD A,(HL)
        JR _read
_new:
        LD A,(IX + FILE_BLOCK)
        CALL block_link
        LD (IX + FILE_LINK),A
        RET NC
        JP fail_damaged

; Before anything is written: the free blocks and the ones of the file must belong to nothing else,
; or other files would be written over.
; In:   FIRST_BLOCK of the file, NO_BLOCK for a new or empty one; ENTRY_OFFSET its entry
; Uses: AF, BC, DE, HL, DISK_WORK
check_blocks:
        LD A,(DIRECTORY)        ; has the disk the sectors that its boot sector tells?
        LD D,A
        LD E,LONG_TRACK - 1
        LD HL,(DISK_AREA)
        CALL try_read
        LD A,LONG_TRACK
        JR NC,_sectors
        LD A,SHORT_TRACK
_sectors:
        LD HL,DISK_SECTORS
        CP (HL)
        JP NZ,fail_damaged
        LD HL,-BLOCK_SET
        ADD HL,SP
        LD SP,HL
        LD (DISK_WORK),HL
        LD B,BLOCK_SET
_clear:
        LD (HL),0
        INC HL
        DJNZ _clear
        CALL read_map
        LD A,MAP_RESERVED
        CP (HL)
        JR NZ,_damaged
        LD A,(DIRECTORY)
        ADD A,A
        CALL map_place
        LD A,MAP_RESERVED
        CP (HL)
        JR NZ,_damaged
        INC HL
        CP (HL)
        JR NZ,_damaged
        LD C,0                  ; the set: what is free
_free:
        LD A,C
        CALL map_place
        LD A,(HL)
        INC A                   ; MAP_FREE
        LD A,C
        CALL Z,take_into_set
        CALL _next_block
        JR NZ,_free
        LD A,(FIRST_BLOCK)      ; and the chain, which meets neither that nor itself
_own:
        CP NO_BLOCK
        JR Z,_others
        LD C,A
        CALL block_link
        JR C,_damaged
        LD B,A
        LD A,C
        CALL take_into_set
        JR NZ,_damaged
        LD A,B
        CP MAP_LAST
        JR C,_own
_others:
        LD C,0                  ; no other block goes on there
_link:
        LD A,C
        CALL map_place
        LD A,(HL)
        CALL in_set
        JR Z,_apart
        LD A,C
        CALL in_set
        JR NZ,_apart
_damaged:
        JP fail_damaged
_apart:
        CALL _next_block
        JR NZ,_link
        LD E,1                  ; and no other file begins there
_sector:
        CALL poll_break
        PUSH DE
        CALL read_directory
        POP DE
        LD D,0                  ; offset
_entry:
        LD A,(HL)
        OR A
        JR Z,_end
        CP ENTRY_DELETED
        JR Z,_next
        LD A,(ENTRY_OFFSET)
        CP D
        JR NZ,_other
        LD A,(ENTRY_SECTOR)
        CP E
        JR Z,_next
_other:
        PUSH HL
        LD BC,ENTRY_BLOCK
        ADD HL,BC
        LD A,(HL)
        CALL in_set
        POP HL
        JP NZ,fail_damaged
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
_end:
        LD HL,BLOCK_SET
        ADD HL,SP
        LD SP,HL
        RET
; Out:  C one more, Z when that is behind the last block
_next_block:
        INC C
        LD A,(DISK_TRACKS)
        ADD A,A
        CP C
        RET

; A block joins the set.
; In:   A block
; Out:  NZ if it was there before
; Uses: AF, E, HL
take_into_set:
        CALL set_place
        LD E,A
        AND (HL)
        LD A,E
        PUSH AF
        OR (HL)
        LD (HL),A
        POP AF
        RET
; In:   A block, or anything else of the map
; Out:  NZ if it is in the set
; Uses: AF, HL
in_set:
        CP BLOCK_LIMIT
        JR NC,_no
        CALL set_place
        AND (HL)
        RET
_no:
        XOR A
        RET
; In:   A block
; Out:  HL byte of the set, A its bit
; Uses: F
set_place:
        PUSH BC
        LD B,A
        SRL A
        SRL A
        SRL A
        LD HL,(DISK_WORK)
        ADD A,L
        LD L,A
        JR NC,_byte
        INC H
_byte:
        LD A,B
        AND 7
        LD B,A
        INC B
        LD A,80h
_bit:
        RLCA
        DJNZ _bit
        POP BC
        RET

; The file of KILL: it is there, not open, and no other file's blocks go with it.
; Out:  HL entry in the sector buffer, FIRST_BLOCK
find_file_to_delete:
        CALL find_closed_file
        CALL check_blocks
        JP read_entry
