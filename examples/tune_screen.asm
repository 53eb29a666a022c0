; The screen of the tune: labels, notes as they run by, levels.

        include "text_screen.asm"

define_characters:
        ld      hl,characters
        ld      de,CHARS
        ld      bc,characters_end-characters
        ldir
        ret

        include "labels.asm"

; The levels warn towards their end.
colour_levels:
        ld      de,COLOUR+21*COLUMNS+8
        call    colour_level
        ld      de,COLOUR+22*COLUMNS+8
        call    colour_level
        ld      de,COLOUR+23*COLUMNS+8
colour_level:
        ld      hl,level_colours
        ld      bc,LEVEL_CELLS
        ldir
        ret

level_colours:
        db      5,5,5,5,5,5,5,5,5,5,5,5,5,5,5,5,5,5
        db      4,4,4,4,4,4,6,6,6,6,6,6

label_places:
        dw      SCREEN
        db      "A DANCE FOR THREE VOICES",0
        dw      SCREEN+COLUMNS-6
        db      "BAR",0
        dw      SCREEN+2*COLUMNS
        db      "MELODY",0
        dw      SCREEN+12*COLUMNS
        db      "CHORDS",0
        dw      SCREEN+19*COLUMNS
        db      "DRUMS",0
        dw      SCREEN+21*COLUMNS
        db      "LEVEL A",0
        dw      SCREEN+22*COLUMNS
        db      "LEVEL B",0
        dw      SCREEN+23*COLUMNS
        db      "LEVEL C",0
        dw      0

; The name of the melody's note, and its octave.
print_note:
        ld      de,SCREEN+3*COLUMNS
        ld      a,(melody_note)
        cp      REST
        jr      z,no_note
        ld      c,'2'-1
octave: inc     c
        sub     12
        jr      nc,octave
        add     a,12
        call    print_name
        ld      a,c
        ld      (de),a
        inc     de
        ld      a,' '
        ld      (de),a
        ret
no_note:
        ld      hl,blank
        jp      print

blank:  db      "   ",0

print_chord:
        ld      de,SCREEN+13*COLUMNS
        ld      a,(chord)
        and     15
        call    print_name
        ld      a,(chord)
        rla
        ld      a,' '
        jr      nc,major
        ld      a,'m'
major:  ld      (de),a
        inc     de
        ld      a,' '
        ld      (de),a
        ret

; The name of semitone A, one or two letters, to DE, which goes on.
print_name:
        ld      hl,names
        add     a,a
        call    entry
        ld      a,(hl)
        ld      (de),a
        inc     hl
        inc     de
        ld      a,(hl)
        cp      ' '
        ret     z
        ld      (de),a
        inc     de
        ret

names:  db      "C C#D D#E F F#G G#A A#B "

; ---- notes on the screen -------------------------------------------------------------------------

column_top:                     ; of this step, in the first row
        dw      0

draw_step:
        ld      a,(step)
        and     ROLL_COLUMNS-1
        push    af
        inc     a
        and     ROLL_COLUMNS-1
        ld      c,HEAD
        call    fill_column
        pop     af
        ld      c,' '
        ld      b,a
        and     3
        jr      nz,off_beat
        ld      c,DOT
off_beat:
        ld      a,b
        call    fill_column
        call    draw_note
        call    draw_chord
        ld      a,(drum_begins)
        or      a
        ret     z
        ld      bc,(drum_code)  ; and its colour
        ld      a,DRUM_ROW
        jr      put

; Fills column A of the roll with code C, and notes its place.
fill_column:
        ld      hl,ROLL
        call    entry
        ld      (column_top),hl
        ld      de,COLUMNS
        ld      b,ROLL_ROWS
fill_cell:
        ld      (hl),c
        push    hl
        ld      a,h             ; the colour of the same cell
        add     a,(COLOUR-SCREEN)/256
        ld      h,a
        ld      (hl),DIM
        pop     hl
        add     hl,de
        djnz    fill_cell
        ret

; Two semitones a row, from C down to G.
draw_note:
        ld      a,(melody_note)
        cp      REST
        ret     z
        ld      b,a
        ld      a,48
        sub     b
        ld      b,a
        srl     a
        ld      e,a
        ld      hl,note_colours
        call    entry
        ld      a,(note_begins)
        call    note_code
        ld      b,(hl)
        ld      a,e
        jr      put

note_colours:
        db      2,6,4,5,13,1,9,3,11

; The code of a note in C: half of the cell in bit 0 of B, begun (0) or held (1) in A.
note_code:
        rr      b
        jr      nc,upper_half
        add     a,2
upper_half:
        add     a,NOTE
        ld      c,a
        ret

draw_chord:
        ld      a,(bass_note)
        or      a
        jr      z,draw_notes
        ld      b,a
        ld      a,15
        sub     b
        ld      b,a
        srl     a
        add     a,BASS_ROW
        ld      e,a
        ld      a,(step)
        and     1
        call    note_code
        ld      b,6
        ld      a,e
        jr      put
draw_notes:
        ld      a,(bass_root)
        ld      b,a
        ld      a,15
        sub     b
        srl     a
        add     a,BASS_ROW
        ld      bc,CHORD+4*256
                                ; falls into the output

; Code C in colour B into row A of the step's column.
put:    ld      l,a
        ld      h,0
        add     hl,hl
        add     hl,hl
        add     hl,hl
        ld      d,h
        ld      e,l
        add     hl,hl
        add     hl,hl
        add     hl,de           ; 40 times
        ld      de,(column_top)
        add     hl,de
        ld      (hl),c
        ld      de,COLOUR-SCREEN
        add     hl,de
        ld      (hl),b
        ret

; ---- levels --------------------------------------------------------------------------------------

levels: db      0,0,0           ; 0 to 15

draw_levels:
        ld      a,(levels)
        ld      de,SCREEN+21*COLUMNS+8
        call    draw_level
        ld      a,(levels+1)
        ld      de,SCREEN+22*COLUMNS+8
        call    draw_level
        ld      a,(levels+2)
        ld      de,SCREEN+23*COLUMNS+8

; Copying from the right place between lit and dark cells takes the same time for every level.
draw_level:
        add     a,a
        ld      c,a
        ld      b,0
        ld      hl,segments+LEVEL_CELLS
        or      a
        sbc     hl,bc
        ld      bc,LEVEL_CELLS
        ldir
        ret

segments:
        db      FULL,FULL,FULL,FULL,FULL,FULL,FULL,FULL,FULL,FULL
        db      FULL,FULL,FULL,FULL,FULL,FULL,FULL,FULL,FULL,FULL
        db      FULL,FULL,FULL,FULL,FULL,FULL,FULL,FULL,FULL,FULL
        db      EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY
        db      EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY
        db      EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY,EMPTY

characters:
        db      07Fh,07Fh,07Fh,07Fh,000h,000h,000h,000h        ; upper half, first
        db      0FFh,0FFh,0FFh,0FFh,000h,000h,000h,000h        ; upper half, held
        db      000h,000h,000h,000h,07Fh,07Fh,07Fh,07Fh        ; lower half, first
        db      000h,000h,000h,000h,0FFh,0FFh,0FFh,0FFh        ; lower half, held
        db      000h,07Eh,000h,07Eh,000h,07Eh,000h,000h        ; chord
        db      000h,000h,000h,010h,000h,000h,000h,000h        ; dot
        db      010h,010h,010h,010h,010h,010h,010h,010h        ; head
        db      03Ch,07Eh,0FFh,0FFh,0FFh,0FFh,07Eh,03Ch        ; kick
        db      000h,03Ch,07Eh,066h,066h,07Eh,03Ch,000h        ; snare
        db      000h,000h,042h,024h,018h,024h,042h,000h        ; hat
        db      000h,0FEh,0FEh,0FEh,0FEh,0FEh,0FEh,000h        ; full
        db      000h,000h,000h,010h,010h,000h,000h,000h        ; empty
characters_end:
