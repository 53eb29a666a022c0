; The firmware of the machine: one source, three 16 KB images.
;
; Built with --equ VERSION=1, 2 or 3:
;   1  the first ROM, 24 rows of text
;   2  25 rows, for the machines of the north
;   3  25 rows, for those of the south
;
; Where things stand is fixed by what published programs call. The vectors and the entries at the
; bottom, 0A7F, 0A9A, 1A19, 28A7, 3852 and 38A9 keep their addresses. The cassette follows the entries
; at the bottom; the code behind the others lives above the graphics entries, so that the space up to
; 3851 stays in few and large pieces. Unused bytes are FF, which an erased EPROM holds and which runs
; as RST 38, a harmless one.

        IF VERSION = 1
ROWS            EQU 24
        ELSE
ROWS            EQU 25
        ENDIF

; Text colours as the colour RAM counts them. White is colour 16 of the northern palette and
; colour 1 of the southern one, where colour 16 is nearly black.
        IF VERSION = 2
DEFAULT_COLOUR  EQU 15
        ELSE
DEFAULT_COLOUR  EQU 0
        ENDIF

; Fills up to a fixed address and stops the build when the code before it has grown too long.
fill_to MACRO address
        IF $ > address
        .ERROR code runs into a fixed address
        ENDIF
        DEFS address - $, 0FFh
        ENDM

        INCLUDE system.asm

        ORG 0000h
        INCLUDE vectors.asm
        INCLUDE cassette.asm
        INCLUDE tape_commands.asm
        INCLUDE entries.asm
        INCLUDE graphics.asm
        INCLUDE screen.asm
        INCLUDE keyboard.asm
        INCLUDE lineio.asm
        INCLUDE printer.asm
        INCLUDE start.asm
        fill_to 4000h
