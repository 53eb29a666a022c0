; Files: numbers, bytes one after the other.

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
