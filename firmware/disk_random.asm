; Random files: OPEN "R", FIELD, GET, PUT. The buffer of such a file is its record; sectors go
; through the sector buffer, and nothing waits in the memory to be written.

; The rest of OPEN, for "R", number, "name", length of a record.
; In:   IX file, A mode, FILE_NAME, DISK_DRIVE; text on the stack
open_random:
        CP 'R'
        JP NZ,fail_mode
        POP HL
        LD DE,SECTOR_SIZE
        LD A,(HL)
        CP ','
        JR NZ,_length
        LD A,(DISK_DRIVE)
        PUSH AF
        PUSH IX
        RST 10h
        CALL get_integer
        DEC DE
        LD A,D
        OR A
        JP NZ,error_fc          ; not 1 to 256
        INC DE
        POP IX
        POP AF
        LD (DISK_DRIVE),A
_length:
        PUSH HL
        PUSH DE
        CALL mount_disk
        CALL find_file
        JR NZ,_new
        CALL open_text
        CALL prepare_writing
        JR _count
_new:
        LD A,TYPE_TEXT
        CALL open_output
        LD (IX + FILE_MODE),0
_count:
        LD A,(IX + FILE_FIRST)
        CALL count_sectors
        JP C,fail_damaged
        LD (IX + FILE_LENGTH),L
        LD (IX + FILE_LENGTH + 1),H
        POP DE
        LD (IX + FILE_RECORD),E
        LD (IX + FILE_MODE),MODE_RANDOM
        POP HL
        RET

; Number of a random file, # before it or not.
; In:   HL text
; Out:  IX file, HL behind
; Uses: all
random_file:
        CALL file_number
        OR A
        JP Z,fail_not_open
        CP MODE_RANDOM
        RET Z
        JP fail_mode

; FIELD number, width AS variable, ...
word_field:
        CALL random_file
        CALL record_size
        PUSH HL
        CALL file_buffer
        EX (SP),HL
        PUSH BC                 ; what is left of the record, and where it is
_field:
        RST 08h
        DEFB ','
        CALL get_byte
        EX (SP),HL
        OR A
        SBC HL,DE
        JP C,fail_field
        EX (SP),HL
        PUSH DE
        RST 08h
        DEFB 'A'
        RST 08h
        DEFB 'S'
        CALL find_string
        POP BC
        POP IX
        EX (SP),HL
        EX DE,HL
        LD (HL),C
        INC HL
        LD (HL),E
        INC HL
        LD (HL),D
        EX DE,HL
        ADD HL,BC
        EX (SP),HL
        PUSH IX
        LD A,(HL)
        CP ','
        JR Z,_field
        POP BC
        POP BC
        RET

; In:   IX file
; Out:  BC length of a record
; Uses: AF
record_size:
        LD C,(IX + FILE_RECORD)
        LD A,C
        SUB 1
        SBC A,A
        AND 1
        LD B,A
        RET

; GET number, record: the record to the buffer, zeros behind the end of the file.
word_get:
        CALL begin_record
        CALL position
        CALL inside_file
        JP NC,fail_end
_part:
        CALL use_disk
        CALL read_map_of_file
        JP NZ,fail_changed
        CALL read_part
        CALL part_places
        LDIR
        CALL next_part
        JR NZ,_part
; The record becomes the one of LOC.
end_record:
        POP HL                  ; text
        POP DE
        LD (IX + FILE_COUNT),E
        LD (IX + FILE_COUNT + 1),D
        RET

; Number of a file and a record, the next one if none is given.
; Out:  IX file, RECORD_SECTOR to PART_SIZE; number and text on the stack
; Uses: all
begin_record:
        CALL random_file
        LD E,(IX + FILE_COUNT)
        LD D,(IX + FILE_COUNT + 1)
        INC DE
        LD A,(HL)
        CP ','
        JR NZ,_record
        PUSH IX
        RST 10h
        CALL get_integer
        POP IX
_record:
        LD A,D
        OR E
        JP Z,fail_record
        BIT 7,D
        JP NZ,fail_record
        POP BC
        PUSH DE
        PUSH HL
        PUSH BC
        CALL record_place
        LD (RECORD_SECTOR),DE
        LD A,C
        LD (RECORD_OFFSET),A
        CALL record_size
        LD (RECORD_LEFT),BC
        CALL file_buffer
        LD (RECORD_BUFFER),HL
; The part of the record in one sector.
; Out:  NZ
; Uses: AF, BC, HL
set_part:
        LD A,(RECORD_OFFSET)
        NEG
        LD C,A
        SUB 1
        SBC A,A
        AND 1
        LD B,A                  ; BC to the end of the sector
        LD HL,(RECORD_LEFT)
        SBC HL,BC
        JR NC,_end
        ADD HL,BC
        LD B,H
        LD C,L
        LD HL,0
_end:
        LD (RECORD_LEFT),HL
        LD (PART_SIZE),BC
        LD A,B
        OR C
        RET
; Out:  Z if there is none more
; Uses: AF, BC, DE, HL
next_part:
        LD HL,(RECORD_BUFFER)
        LD BC,(PART_SIZE)
        ADD HL,BC
        LD (RECORD_BUFFER),HL
        LD HL,(RECORD_SECTOR)
        INC HL
        LD (RECORD_SECTOR),HL
        XOR A
        LD (RECORD_OFFSET),A
        JR set_part

; Where a record begins.
; In:   IX file, DE number from 1
; Out:  DE sector of the file, C offset
; Uses: AF, B, HL
record_place:
        DEC DE
        LD C,0
        LD A,(IX + FILE_RECORD)
        OR A
        RET Z                   ; 256
        LD HL,0
        LD B,8
_bit:
        ADD HL,HL
        RL C
        RLCA
        JR NC,_next
        ADD HL,DE
        JR NC,_next
        INC C
_next:
        DJNZ _bit
        LD D,C
        LD E,H
        LD C,L
        RET

; Out:  DE = RECORD_SECTOR, C = RECORD_OFFSET
position:
        LD DE,(RECORD_SECTOR)
        LD A,(RECORD_OFFSET)
        LD C,A
        RET
; In:   IX file, DE sector, C offset
; Out:  carry if that is a byte of the file
; Uses: AF, DE, HL
inside_file:
        CALL file_end
        EX DE,HL
        RST 18h
        RET NZ
        LD A,C
        CP (IX + FILE_LAST)
        RET
; The first byte behind a file.
; In:   IX file
; Out:  HL sector, A offset
; Uses: F
file_end:
        LD L,(IX + FILE_LENGTH)
        LD H,(IX + FILE_LENGTH + 1)
        LD A,(IX + FILE_LAST)
        OR A
        RET Z
        DEC HL
        RET

; Out:  HL part of the record in the sector buffer, DE in the record, BC size
; Uses: AF
part_places:
        LD HL,(DISK_AREA)
        LD A,(RECORD_OFFSET)
        LD E,A
        LD D,0
        ADD HL,DE
        LD DE,(RECORD_BUFFER)
        LD BC,(PART_SIZE)
        RET

; The sector of the part to the sector buffer.
; In:   IX file, its disk in use and its map in the sector buffer
; Out:  D track, E sector, HL sector buffer, where the file has it
; Uses: AF, BC
read_part:
        LD BC,(RECORD_SECTOR)
        LD L,(IX + FILE_LENGTH)
        LD H,(IX + FILE_LENGTH + 1)
        SCF
        SBC HL,BC
        JR NC,read_sector_of_file
        XOR A
        JP fill_sector
; A sector of a file to the sector buffer, zeros behind the end of the file.
; In:   IX file, BC number of a sector that it has, the map in the sector buffer
; Out:  as above
read_sector_of_file:
        PUSH BC
        LD A,(IX + FILE_FIRST)
_block:
        LD L,A
        LD A,C
        SUB (IX + FILE_HALF)
        JR NC,_link
        DEC B
        JP M,_here
_link:
        LD C,A
        LD A,L
        CALL block_link
        JR NC,_block
        JP fail_damaged
_here:
        LD A,L
        CALL block_place
        LD HL,(DISK_AREA)
        CALL read_sector
        POP BC
        PUSH DE
        CALL file_end
        LD D,B
        LD E,C
        RST 18h
        JR NZ,_whole
        LD HL,(DISK_AREA)
        LD E,(IX + FILE_LAST)
        LD D,0
        ADD HL,DE
_zero:
        LD (HL),D
        INC HL
        INC E
        JR NZ,_zero
_whole:
        POP DE
        LD HL,(DISK_AREA)
        RET

; PUT number, record: the buffer becomes the record, the file grows up to it.
word_put:
        CALL begin_record
        CALL use_disk
        CALL check_same_disk
        CALL check_growth
_part:
        LD E,(IX + FILE_LENGTH)
        LD D,(IX + FILE_LENGTH + 1)
        LD HL,(RECORD_SECTOR)
        RST 18h
        JR NC,_grow
        CALL read_map
        CALL read_part
        PUSH DE
        CALL put_part
        POP DE
        LD HL,(DISK_AREA)
        CALL write_sector
        CALL position           ; does the file end in it?
        CALL file_end
        RST 18h
        JR NZ,_next
        LD HL,(PART_SIZE)
        LD B,0
        ADD HL,BC
        DEC H
        JR Z,_last
        LD A,L
        CP (IX + FILE_LAST)
        JR C,_next
        JR Z,_next
        JR _last
_grow:
        CALL fill_last_sector
_zeros:
        LD HL,(RECORD_SECTOR)
        LD E,(IX + FILE_LENGTH)
        LD D,(IX + FILE_LENGTH + 1)
        RST 18h
        JR Z,_append
        CALL poll_break
        LD A,1
        CALL append_sector
        JR _zeros
_append:
        XOR A
        CALL append_sector
        LD HL,(PART_SIZE)
        LD A,(RECORD_OFFSET)
        ADD A,L
        LD L,A
_last:
        LD (IX + FILE_LAST),L
        CALL write_entry_ends
_next:
        CALL next_part
        JR NZ,_part
        JP end_record

; The part of the record into the sector buffer.
put_part:
        CALL part_places
        EX DE,HL
        LDIR
        RET

; Has the disk room for the record and what is missing before it?
; In:   IX file, its disk in use; RECORD_SECTOR, RECORD_LEFT
; Uses: AF, BC, DE, HL
check_growth:
        LD HL,(RECORD_LEFT)
        LD A,H
        OR L
        LD HL,(RECORD_SECTOR)
        JR Z,_last
        INC HL
_last:
        LD E,(IX + FILE_LENGTH)
        LD D,(IX + FILE_LENGTH + 1)
        OR A
        SBC HL,DE
        RET C
        PUSH HL                 ; sectors missing, less 1
        CALL free_sectors
        LD A,(IX + FILE_FIRST)
        CP NO_BLOCK
        JR Z,_room
        PUSH DE
        CALL last_block
        POP DE
        CPL
        ADD A,(IX + FILE_HALF)
        INC A                   ; left in the last block
        ADD A,E
        LD E,A
        JR NC,_room
        INC D
_room:
        POP HL
        RST 18h
        RET C
        JP fail_full

; Before a file grows: its last sector counts as whole.
; In:   IX file, its disk in use
; Uses: AF, BC, DE, HL
fill_last_sector:
        LD A,(IX + FILE_LAST)
        OR A
        RET Z
        CALL read_map
        CALL file_end
        LD B,H
        LD C,L
        CALL read_sector_of_file
        CALL write_sector
        LD (IX + FILE_LAST),0
        JP write_entry_ends

; A new sector at the end of a file. The map has it when it is written.
; In:   IX file, its disk in use; A 0 for the part of the record and zeros around, else zeros only
; Uses: AF, BC, DE, HL
append_sector:
        PUSH AF
        CALL read_map
        LD A,(IX + FILE_FIRST)
        CP NO_BLOCK
        JR Z,_new
        CALL last_block
        CP (IX + FILE_HALF)
        JR C,_known
_new:
        LD HL,(DISK_AREA)
        CALL find_free_block
        JP NZ,fail_full
        XOR A
_known:
        LD (IX + FILE_INDEX),A
        LD (IX + FILE_BLOCK),C
        XOR A
        CALL fill_sector
        POP AF
        OR A
        CALL Z,put_part
        CALL sector_of_file
        LD HL,(DISK_AREA)
        CALL write_sector
        CALL read_map
        LD A,(IX + FILE_INDEX)
        OR A
        JR NZ,_count
        LD A,(IX + FILE_FIRST)
        CP NO_BLOCK
        JR Z,_count
        CALL last_block
        LD A,(IX + FILE_BLOCK)
        LD (HL),A
_count:
        LD A,(IX + FILE_BLOCK)
        CALL map_place
        LD A,(IX + FILE_INDEX)
        ADD A,MAP_LAST + 1
        LD (HL),A
        CALL write_map
        INC (IX + FILE_LENGTH)
        JR NZ,_first
        INC (IX + FILE_LENGTH + 1)
_first:
        LD A,(IX + FILE_FIRST)
        CP NO_BLOCK
        RET NZ
        LD A,(IX + FILE_BLOCK)
        LD (IX + FILE_FIRST),A
        JP write_entry_ends

; The last block of a file.
; In:   IX file, the map in the sector buffer
; Out:  C block, A sectors in use, HL its byte of the map
; Uses: F, DE
last_block:
        LD A,(IX + FILE_FIRST)
_block:
        LD C,A
        CALL block_link
        JP C,fail_damaged
        CP MAP_LAST
        JR C,_block
        SUB MAP_LAST
        RET

; EOF of a random file: is there no record behind the one of LOC?
; In:   IX file, A mode
random_eof:
        CP MODE_RANDOM
        JP NZ,fail_mode
        LD E,(IX + FILE_COUNT)
        LD D,(IX + FILE_COUNT + 1)
        INC DE
        CALL record_place
        CALL inside_file
        CCF
        SBC HL,HL
        JP set_integer
; LOF of a random file: its records.
; In:   IX file
random_lof:
        CALL file_end
        LD C,(IX + FILE_RECORD)
        LD D,A
        INC C
        DEC C
        JR Z,_rest              ; 256
        LD D,0                  ; HL and A divided by C, rest in D
        LD B,24
_bit:
        ADD A,A
        ADC HL,HL
        RL D
        LD E,A
        LD A,D
        JR C,_subtract
        CP C
        JR C,_zero
_subtract:
        SUB C
        LD D,A
        INC E
_zero:
        LD A,E
        DJNZ _bit
        LD H,L
        LD L,A
_rest:
        LD A,D
        OR A
        JR Z,_whole
        INC HL
_whole:
        JP set_word
