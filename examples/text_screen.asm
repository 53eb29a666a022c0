; A text screen of 40 columns by 24 rows, cleared, and text on it. The program says which colour
; the first row has, HEADING, and which the others, LABELS.

; The latch: text, black background, and both halves of the upper codes programmable.
; Bit 3 would give codes C0h to FFh back to the built-in set, bit 4 codes 80h to BFh.
TEXT_MODE       equ     00h

set_up_video:
        ld      a,TEXT_MODE
        out     (LATCH),a
        include "crtc.asm"
        ret

crtc_values:
        db      70,40,52,0F5h   ; a line of 71 characters, 40 of them shown, sync
        db      38,0,24,29      ; 38 rows, 24 of them shown, sync at row 30
        db      0,7             ; no interlace, 8 lines a row
        db      20h,0           ; no cursor
        db      04h,00h         ; the picture starts at 4400h
        db      0,0

clear:  ld      hl,SCREEN
        ld      de,SCREEN+1
        ld      bc,CELLS-1
        ld      (hl),' '
        ldir
        ld      hl,COLOUR
        ld      de,COLOUR+1
        ld      bc,CELLS-1
        ld      (hl),LABELS
        ldir
        if      HEADING != LABELS
        ld      hl,COLOUR
        ld      de,COLOUR+1
        ld      bc,COLUMNS-1
        ld      (hl),HEADING
        ldir
        endif
        ret

; Prints the text at HL up to its zero to the screen at DE.
print:  ld      a,(hl)
        inc     hl
        or      a
        ret     z
        ld      (de),a
        inc     de
        jr      print
