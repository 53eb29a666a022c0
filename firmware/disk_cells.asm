; Memory of the disk ROM, the layout of the disks, its errors. No code.

; Fixed cells, between BASIC's hooks and its line buffer.
DISK_AREA       EQU 41B8h       ; address of the sector buffer, below the top of the memory
DISK_DRIVE      EQU 41BAh       ; drive in use
HEADS           EQU 41BBh       ; track of each drive's head, FF unknown; four bytes
DISK_TRACKS     EQU 41BFh       ; T, S, D of the disk in use, and sectors per block
DISK_SECTORS    EQU 41C0h
DIRECTORY       EQU 41C1h
BLOCK_SECTORS   EQU 41C2h
FILE_NAME       EQU 41C3h       ; 11 characters
ENTRY_OFFSET    EQU 41CEh       ; place of a directory entry, as a word with the next one
ENTRY_SECTOR    EQU 41CFh
FREE_OFFSET     EQU 41D0h       ; the first entry that is free, sector 0 for none
FREE_SECTOR     EQU 41D1h
PRINT_FILE      EQU 41D2h       ; file that PRINT writes to, 0 for none
PRINTER_KEPT    EQU 41D4h       ; the printer's driver meanwhile
COLUMN_KEPT     EQU 41D6h       ; and column
LOADING         EQU 41D7h       ; what is being done to the program in memory, 0 nothing
RUN_WANTED      EQU 41D8h       ; not 0: LOAD shall run the program
INPUT_FILE      EQU 41D9h       ; file that INPUT reads
DISK_WORK       EQU 41DBh       ; a word, of short use
FILE_TYPE       EQU 41DDh       ; of the entry found
FIRST_BLOCK     EQU 41DEh
MAP_SUM         EQU 41DFh       ; of the map last read or written; a word
QUIET_SECTORS   EQU 41E1h       ; sectors to be read before BREAK is looked at
FN_CHAIN        EQU DISK_CELL   ; frame of the function that is worked out, 0 for none

; Of GET and PUT, where OPEN has a name.
RECORD_SECTOR   EQU FILE_NAME       ; place of the part in the file; a word and a byte
RECORD_OFFSET   EQU FILE_NAME + 2
RECORD_LEFT     EQU FILE_NAME + 3   ; bytes of the record behind the part; a word
RECORD_BUFFER   EQU FILE_NAME + 5   ; place of the part in the record; a word
PART_SIZE       EQU FILE_NAME + 7   ; a word

; Below the top of the memory: the sector buffer, the files, each with a buffer behind it, and the
; addresses of USR1 to USR9.
FILES           EQU 3
SECTOR_SIZE     EQU 256
FILE_SIZE       EQU 24 + SECTOR_SIZE
USR_TABLE       EQU SECTOR_SIZE + FILES * FILE_SIZE
AREA_SIZE       EQU USR_TABLE + 2 * 9
AREA_ROOM       EQU 512         ; that must be left below it

; A file, at IX.
FILE_MODE       EQU 0           ; 0 closed
FILE_DRIVE      EQU 1
FILE_OFFSET     EQU 2           ; of its entry
FILE_SECTOR     EQU 3
FILE_TRACKS     EQU 4           ; as DISK_TRACKS to BLOCK_SECTORS
FILE_SECTORS    EQU 5
FILE_DIRECTORY  EQU 6
FILE_HALF       EQU 7
FILE_BLOCK      EQU 8           ; block of the next sector, NO_BLOCK at the end
FILE_INDEX      EQU 9           ; and its place in the block
FILE_PLACE      EQU 10          ; in the buffer
FILE_LEFT       EQU 11          ; reading: bytes left in the buffer; a word
FILE_LINK       EQU 13          ; reading: the block's byte in the map
FILE_COUNT      EQU 14          ; sectors read or written; a word
FILE_FIRST      EQU 16          ; first block
FILE_LAST       EQU 17          ; bytes used in the last sector
FILE_COLUMN     EQU 18          ; of PRINT
FILE_PROGRAM    EQU 19          ; not 0: of LOAD, MERGE or SAVE
FILE_MAP_SUM    EQU 20          ; what the disk's map must add up to; a word
FILE_ENTRY_SUM  EQU 22          ; writing: and the file's entry
FILE_BUFFER     EQU 24
; Of a random file:
FILE_RECORD     EQU FILE_PLACE  ; length of a record, 0 for 256
FILE_LENGTH     EQU FILE_LEFT   ; sectors; FILE_COUNT is the last record read or written

MODE_INPUT      EQU 1
MODE_OUTPUT     EQU 2
MODE_RANDOM     EQU 4

LOADING_ALL     EQU 1           ; it is in pieces
LOADING_LINES   EQU 2           ; lines of MERGE are put in

; Bytes of the map.
MAP_LAST        EQU 0C0h        ; and sectors in use
MAP_RESERVED    EQU 0FEh
MAP_FREE        EQU 0FFh
NO_BLOCK        EQU 0FFh
BLOCK_LIMIT     EQU 0A0h

; A directory entry: name, type, first block, bytes used in the last sector. A first byte 0 was
; never used: no more entries behind it.
ENTRY_BLOCK     EQU 12
ENTRY_SIZE      EQU 16
NAME_SIZE       EQU 11
NAME_PART       EQU 8
ENTRY_DELETED   EQU 0E5h
TYPE_PROGRAM    EQU 0
TYPE_MACHINE    EQU 1
TYPE_TEXT       EQU 2

; The boot sector: 1 if it is to be started, BOOT_MARK, D, T, S, disk_signature, code.
BOOT_MARK       EQU 0FEh
BOOT_CODE       EQU 10h
BOOT_ADDRESS    EQU 5700h

; Errors, behind BASIC's; the order of messages.
ERR_NO_DISK     EQU ERR_LAST + 2
ERR_FORMAT      EQU ERR_LAST + 4
ERR_DISK        EQU ERR_LAST + 6
ERR_PROTECTED   EQU ERR_LAST + 8
ERR_FULL        EQU ERR_LAST + 10
ERR_DIRECTORY   EQU ERR_LAST + 12
ERR_NOT_FOUND   EQU ERR_LAST + 14
ERR_EXISTS      EQU ERR_LAST + 16
ERR_NAME        EQU ERR_LAST + 18
ERR_NUMBER      EQU ERR_LAST + 20
ERR_NOT_OPEN    EQU ERR_LAST + 22
ERR_OPEN        EQU ERR_LAST + 24
ERR_MODE        EQU ERR_LAST + 26
ERR_END         EQU ERR_LAST + 28
ERR_TYPE        EQU ERR_LAST + 30
ERR_DAMAGED     EQU ERR_LAST + 32
ERR_CHANGED     EQU ERR_LAST + 34
ERR_FUNCTION    EQU ERR_LAST + 36
ERR_FIELD       EQU ERR_LAST + 38
ERR_RECORD      EQU ERR_LAST + 40
ERR_DISK_LAST   EQU ERR_RECORD
