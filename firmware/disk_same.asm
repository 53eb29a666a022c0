; Whether a disk is still the one on which a file was opened; what BREAK and errors leave.

; What bytes add up to, each in another way.
; In:   HL bytes, B count, 0 for 256
; Out:  HL
; Uses: AF, B, DE
sum_bytes:
        EX DE,HL
        LD HL,0
_byte:
        PUSH BC
        LD B,H
        LD C,L
        ADD HL,HL
        ADD HL,HL
        ADD HL,BC               ; times five
        LD A,(DE)
        LD C,A
        LD B,0
        ADD HL,BC
        INC DE
        POP BC
        DJNZ _byte
        RET
; The map's, of the sector buffer.
map_sum:
        LD HL,(DISK_AREA)
        LD B,0
        JR sum_bytes

; The map to the sector buffer.
; Out:  HL the buffer, MAP_SUM
; Uses: AF, BC, DE
read_map:
        LD E,0
        CALL read_directory
        PUSH HL
        CALL map_sum
        LD (MAP_SUM),HL
        POP HL
        RET
; The map back. The files that are open on this disk know it by the new sum.
; Uses: AF, BC, DE, HL
write_map:
        LD E,0
        CALL write_directory
        CALL map_sum
        EX DE,HL
        LD HL,(MAP_SUM)
        LD (MAP_SUM),DE
        PUSH IX
        LD B,FILES
_file:
        PUSH DE
        LD A,B
        CALL file_of_number
        POP DE
        LD A,(DISK_DRIVE)
        CP (IX + FILE_DRIVE)
        JR NZ,_next
        LD A,L
        CP (IX + FILE_MAP_SUM)
        JR NZ,_next
        LD A,H
        CP (IX + FILE_MAP_SUM + 1)
        CALL Z,set_map_sum
_next:
        DJNZ _file
        POP IX
        RET
; In:   IX file, DE
set_map_sum:
        LD (IX + FILE_MAP_SUM),E
        LD (IX + FILE_MAP_SUM + 1),D
        RET

; Is the disk the one on which the file was opened? Reads its map.
; In:   IX file, its disk in use
; Out:  Z if so
; Uses: AF, BC, DE, HL
read_map_of_file:
        CALL read_map
        LD HL,(MAP_SUM)
        LD E,(IX + FILE_MAP_SUM)
        LD D,(IX + FILE_MAP_SUM + 1)
        RST 18h
        RET
; Before something is written to a file: the disk and the entry are as they were left. If not, the
; file is open no more.
; In:   IX file, its disk in use
; Uses: AF, BC, DE, HL
check_same_disk:
        CALL read_map_of_file
        JR NZ,_changed
        CALL read_entry
        LD B,ENTRY_SIZE
        CALL sum_bytes
        LD E,(IX + FILE_ENTRY_SUM)
        LD D,(IX + FILE_ENTRY_SUM + 1)
        RST 18h
        RET Z
_changed:
        LD (IX + FILE_MODE),0
        JP fail_changed
; Writes the entry of a file, in the sector buffer, and keeps its sum.
; In:   IX file
; Uses: AF, BC, DE, HL
write_entry_of_file:
        CALL write_entry
keep_entry_sum:
        LD DE,(ENTRY_OFFSET)
        LD D,0
        LD HL,(DISK_AREA)
        ADD HL,DE
        LD B,ENTRY_SIZE
        CALL sum_bytes
        LD (IX + FILE_ENTRY_SUM),L
        LD (IX + FILE_ENTRY_SUM + 1),H
        RET

; BREAK in the midst of an act ends it as between two statements.
; Out:  all registers kept
poll_break:
        PUSH AF
        CALL test_break
        JR NZ,break_act
        POP AF
        RET
break_act:
        LD SP,(SAVED_STACK)
        CALL end_redirection
        CALL drop_program
        LD HL,(STATEMENT)
        JP stop_run

; What LOAD, MERGE or SAVE had begun goes, when an error or BREAK ends it.
; Uses: AF, BC, DE, HL, IX; the stack is made anew with the program
drop_program:
        CALL first_file
        LD A,(IX + FILE_PROGRAM)
        OR A
        JR Z,_closed
        LD (IX + FILE_MODE),0
_closed:
        LD A,(LOADING)
        OR A
        RET Z
        LD HL,0FFFFh            ; the line may have gone
        LD (CURRENT_LINE),HL
        LD HL,LOADING
        LD (HL),0
        DEC A                   ; LOADING_ALL
        RET NZ
        JP empty_program
