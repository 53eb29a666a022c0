; The machine as the firmware sees it: memory, ports, the cells that programs know, the codes; and
; fixed places.

; Memory
VECTORS         EQU 4000h       ; seven JPs for RST 08 to RST 38
KEYBOARD_DRIVER EQU 4016h       ; in the device control blocks: address of the device's driver
SCREEN_DRIVER   EQU 401Eh
CURSOR          EQU 4020h       ; address of the cursor in screen memory
CURSOR_SHAPE    EQU 4022h       ; 0 while the cursor is switched off
PRINTER_DRIVER  EQU 4026h
KEY_ROWS        EQU 4036h       ; one byte per row of the keyboard: the keys already reported
USR_ADDRESS     EQU 408Eh
STRING_SPACE    EQU 40A0h       ; bottom of the string space, where the stack begins
CURRENT_LINE    EQU 40A2h       ; FFFF in direct mode
PROGRAM_START   EQU 40A4h
RANDOM_SEED     EQU 40AAh
NUMBER_TYPE     EQU 40AFh       ; type of the accumulator: 2, 3, 4 or 8
MEMORY_TOP      EQU 40B1h
STRING_POINTER  EQU 40D6h
TAPE_ENTRY      EQU 40E4h       ; where the machine-code tape last loaded starts, 0 = none
SAVED_STACK     EQU 40E8h
PROGRAM_END     EQU 40F9h       ; also start of the simple variables
ARRAYS          EQU 40FBh
FREE_SPACE      EQU 40FDh
DATA_POINTER    EQU 40FFh
LETTER_TYPES    EQU 4101h       ; default type of A to Z
ACCUMULATOR     EQU 4121h       ; integer value of the accumulator
LINE_BUFFER     EQU 41E8h
LINE_LENGTH     EQU 240
ROW_COUNT       EQU 42F9h       ; read by programs that serve 24 and 25 rows
TEXT_COLOUR     EQU 4300h       ; colour nibble that new characters take
KEY_HELD_ROW    EQU 4301h       ; row select bit of the key that repeats, 0 = none
KEY_HELD_BIT    EQU 4302h
KEY_HELD_CODE   EQU 4303h
KEY_REPEAT      EQU 4304h       ; scans until the key repeats
WARM_MARK       EQU 4306h       ; two bytes that a cold start writes last
TAPE_LEVEL      EQU 4308h       ; level of the cassette input when last looked at, in bit 0
TAPE_SPEED      EQU 4309h
LATCH_COPY      EQU 431Ch       ; last byte written to port FF
START_STACK     EQU 4400h       ; until the size of the memory is known
TEXT_SCREEN     EQU 4400h
GRAPHICS_SCREEN EQU 4800h
GRAPHICS_END    EQU 5800h
FIRST_PROGRAM   EQU 5801h       ; the byte before a program is 0
DISK_ROM        EQU 0C000h      ; begins with "DR" and its entries
DISK_START      EQU 0C002h
DISK_PROBE      EQU 0C005h      ; Z: there is a disk to start from
COLOUR_RAM      EQU 0F000h
CHARACTER_RAM   EQU 0F400h
KEYBOARD        EQU 0F800h      ; the low address byte selects the row

COLUMNS         EQU 40
SCREEN_END      EQU TEXT_SCREEN + COLUMNS * ROWS
LAST_ROW        EQU SCREEN_END - COLUMNS
TO_COLOUR       EQU (COLOUR_RAM - TEXT_SCREEN) / 256    ; from a cell to its colour, high byte

MARK            EQU 0C39Ch
DISK_MARK       EQU 5244h       ; "DR"

; Ports
SOUND_REGISTER  EQU 0F8h
SOUND_DATA      EQU 0F9h
CRTC_REGISTER   EQU 0FAh
CRTC_DATA       EQU 0FBh
LATCH           EQU 0FFh
LATCH_CASSETTE  EQU 01h
LATCH_GRAPHICS  EQU 20h         ; graphics mode; the other bits: cassette, character set, background
LATCH_GRAPHICS_BIT EQU 5

; Registers of the CRT controller that change while it runs
CRTC_CURSOR_START EQU 10
CRTC_CURSOR_HIGH  EQU 14
CRTC_CURSOR_LOW   EQU 15
CURSOR_BLINKS   EQU 40h         ; with cursor line 0: a blinking block
CURSOR_HIDDEN   EQU 20h

; Characters
BREAK           EQU 01h
BACKSPACE       EQU 08h
TAB             EQU 09h
LINE_FEED       EQU 0Ah
RETURN          EQU 0Dh
ERASE_LINE      EQU 18h         ; SHIFT and cursor left
ESCAPE          EQU 1Bh         ; SHIFT and cursor up
HOME            EQU 1Ch
CLEAR_TO_END    EQU 1Fh         ; also the code of the CLEAR key
FIRST_FKEY      EQU 0F1h        ; F1 to F4, with SHIFT F5 to F8

; Fills up to a fixed address and stops the build when the code before it has grown too long.
fill_to MACRO address
        IF $ > address
        .ERROR code runs into a fixed address
        ENDIF
        DEFS address - $, 0FFh
        ENDM
