; The boot sector of a floppy disk. With the disk ROM in the machine and this disk in drive 0, it
; greets at power-on, without MEM SIZE?, and leaves the prompt of BASIC below: the disk around it
; (disklayout.asm) is an empty one that programs can be saved to.
;
; The disk ROM loads the sector to 5700h and calls 5710h.

        include "machine.asm"

TRACKS  equ     18              ; as in disklayout.asm
SECTORS equ     10

BLOCK   equ     0BFh            ; the firmware makes it a full one
RETURN  equ     0Dh

CLEAR_SCREEN    equ     01C9h
PRINT           equ     0033h

        org     5700h

; What the disk ROM knows the disk by.
        db      1               ; there is something to start
        db      0FEh
        db      TRACKS/2        ; the track of the directory
        db      TRACKS,SECTORS
        db      "TDOS1"
        ds      5710h-$

boot:   call    CLEAR_SCREEN
        ld      hl,SCREEN
        call    stripe
        ld      hl,greeting
        ld      de,SCREEN+2*COLUMNS
        ld      bc,2*COLUMNS
        ldir
        ld      hl,SCREEN+2*COLUMNS
        call    paint
        ld      hl,SCREEN+3*COLUMNS
        call    paint
        ld      hl,SCREEN+5*COLUMNS
        call    stripe
        ld      b,7             ; the prompt comes below
new_line:
        ld      a,RETURN
        call    PRINT
        djnz    new_line
        ret                     ; to BASIC

; Fills the row of the screen at HL with blocks of all colours.
stripe: push    hl
        ld      b,COLUMNS
block:  ld      (hl),BLOCK
        inc     hl
        djnz    block
        pop     hl
                                ; falls into the colours

; Colours the row of the screen at HL from left to right.
paint:  ld      de,COLOUR-SCREEN
        add     hl,de
        ld      de,rainbow
        ld      b,8
next_colour:
        ld      a,(de)
        inc     de
        ld      c,COLUMNS/8
cell:   ld      (hl),a
        inc     hl
        dec     c
        jr      nz,cell
        djnz    next_colour
        ret

rainbow:
        db      6,4,5,13,1,11,10,2

greeting:
        db      "   HELLO FROM THE BOOT SECTOR OF A DISK "
        db      "   SAVE YOUR PROGRAMS HERE, LIST: DIR   "

        ds      5800h-$
