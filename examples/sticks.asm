; Sticks: where both joysticks stand, and which keys of their keypads are down.
;
; The machine cannot read a stick, only compare: port A of the sound generator gives a voltage in 64
; levels, and a bit of port B goes low where the level has reached that of the stick. Halving the
; range six times finds the position. The keypads share port A: its three lowest bits, when low,
; select the columns, and the four lowest bits of port B are the keys of these, low when down.
;
; The lines of the fields are programmable characters, made at the start: a field is 16 x 16 cells,
; and with four lines in each of them every level has its own.
;
; The program expects nothing from the firmware and never returns to it.

        include "machine.asm"

STACK   equ     6800h

SET_UP_PORTS    equ     7Fh     ; mixer: no sound, port A put out, port B read
NO_COLUMN       equ     3Fh     ; all bits high
LEVELS          equ     64

; Bits of port B that compare.
STICK_1_X       equ     80h
STICK_1_Y       equ     40h
STICK_2_X       equ     20h
STICK_2_Y       equ     10h

; Programmable characters in use.
GRID    equ     80h             ; the empty field
EDGES   equ     81h             ; top, bottom, left, right, then the four corners
UPRIGHT equ     89h             ; four places of the upright line
LEVEL   equ     8Dh             ; four of the level one
CROSS   equ     91h             ; sixteen of their crossing
KEY_END equ     0A1h            ; left and right of a key
KEYS    equ     0A2h            ; the twelve keys, in the order of the matrix
LIT     equ     13              ; from a key, or the end of one, to the same one lit

HEADING equ     1
LABELS  equ     5
DIM     equ     11
LINES   equ     4

FIELD_CELLS     equ     16
FIELD_1         equ     SCREEN+2*COLUMNS+2
FIELD_2         equ     SCREEN+2*COLUMNS+22
VALUES_1        equ     SCREEN+20*COLUMNS+1
VALUES_2        equ     SCREEN+20*COLUMNS+31
KEYPAD          equ     SCREEN+20*COLUMNS+15

        org     5800h

start:  di
        ld      sp,STACK
        call    set_up_video
        call    clear
        call    define_characters
        call    draw_frames
        call    draw_labels
        ld      e,SET_UP_PORTS
        ld      a,MIXER
        call    put_register

read:   ld      ix,stick_1
        call    read_stick
        ld      ix,stick_2
        call    read_stick
        call    read_keys
        ld      ix,stick_1
        call    show_stick
        ld      ix,stick_2
        call    show_stick
        call    show_keys
        call    delay
        jr      read

; A round takes 31 cycles, the five wait cycles of RAM included: about a third of a frame, which
; leaves the rest of it to the work.
delay:  ld      bc,500
wait:   dec     bc
        ld      a,b
        or      c
        jr      nz,wait
        ret

; ---- ports ---------------------------------------------------------------------------------------

; What belongs to a stick: its bits, its places on the screen, and where it stands and was drawn.
BIT_X           equ     0
BIT_Y           equ     1
FIELD           equ     2
VALUE           equ     4
NOW_X           equ     6
NOW_Y           equ     7       ; from below
DRAWN_X         equ     8
DRAWN_Y         equ     9       ; from above; 255 before the first time

stick_1:
        db      STICK_1_X,STICK_1_Y
        dw      FIELD_1,VALUES_1+COLUMNS+5
        db      0,0,0,255
stick_2:
        db      STICK_2_X,STICK_2_Y
        dw      FIELD_2,VALUES_2+COLUMNS+5
        db      0,0,0,255

read_stick:
        ld      c,(ix+BIT_X)
        call    measure
        ld      (ix+NOW_X),a
        ld      c,(ix+BIT_Y)
        call    measure
        ld      (ix+NOW_Y),a
        ret

; The position, in A, that bit C of port B compares. It is at least D, and less than D + 2 B.
measure:
        ld      d,0
        ld      b,LEVELS/2
halve:  ld      a,d
        add     a,b
        dec     a
        call    compare
        jr      z,lower_half
        ld      a,d
        add     a,b
        ld      d,a
lower_half:
        srl     b
        jr      nz,halve
        ld      a,d
        ret

; Z when level A has reached what bit C of port B compares.
compare:
        call    exchange
        and     c
        ret

; A to port A, then port B in A.
exchange:
        ld      e,a
        ld      a,PORT_A
        call    put_register
        ld      a,PORT_B
        out     (SOUND_SELECT),a
        in      a,(SOUND_DATA)
        ret

; E to register A.
put_register:
        out     (SOUND_SELECT),a
        ld      a,e
        out     (SOUND_DATA),a
        ret

; The keys of the three columns, a set bit for every one that is down.
read_keys:
        ld      hl,keys_down
        ld      b,3
        ld      c,1             ; the bit of the column
next_column:
        ld      a,NO_COLUMN
        xor     c
        call    exchange
        cpl
        and     15
        ld      (hl),a
        inc     hl
        sla     c
        djnz    next_column
        ld      a,NO_COLUMN
        jr      exchange        ; leaves none selected

keys_down:
        db      0,0,0

; ---- fields --------------------------------------------------------------------------------------

; Draws the lines of stick IX again where it has moved.
show_stick:
        ld      a,LEVELS-1
        sub     (ix+NOW_Y)
        ld      d,a
        ld      e,(ix+NOW_X)
        ld      a,(ix+DRAWN_Y)
        cp      255
        jr      z,draw_stick
        cp      d
        jr      nz,moved
        ld      a,(ix+DRAWN_X)
        cp      e
        ret     z
moved:  push    de
        ld      e,(ix+DRAWN_X)
        ld      d,(ix+DRAWN_Y)
        ld      bc,GRID+GRID*256
        ld      a,DIM
        call    draw_lines
        pop     de
draw_stick:
        ld      (ix+DRAWN_X),e
        ld      (ix+DRAWN_Y),d
        ld      a,e             ; the characters of the places within the cells
        and     3
        add     a,UPRIGHT
        ld      c,a
        ld      a,d
        and     3
        add     a,LEVEL
        ld      b,a
        ld      a,LINES
        call    draw_lines
        call    draw_crossing
        ld      l,(ix+VALUE)
        ld      h,(ix+VALUE+1)
        ld      a,(ix+NOW_X)
        call    print_value
        ld      de,COLUMNS-1
        add     hl,de
        ld      a,(ix+NOW_Y)

; A, which is less than 100, at HL; HL goes on to the second digit.
print_value:
        ld      c,'0'-1
tens:   inc     c
        sub     10
        jr      nc,tens
        ld      (hl),c
        inc     hl
        add     a,'0'+10
        ld      (hl),a
        ret

; Draws through place E, D of the field of stick IX: character C upright, B level, colour A.
draw_lines:
        ld      (line_colour),a
        push    bc
        ld      a,e
        rrca
        rrca
        and     15
        call    field_cell
        ld      a,FIELD_CELLS
upright_cell:
        call    put_cell
        ld      bc,COLUMNS-1
        add     hl,bc
        pop     bc
        push    bc
        dec     a
        jr      nz,upright_cell
        call    field_row
        pop     bc
        ld      c,b
        ld      a,FIELD_CELLS
level_cell:
        call    put_cell
        dec     a
        jr      nz,level_cell
        ret

line_colour:
        db      0

; Draws the crossing of the lines, in their colour.
draw_crossing:
        call    field_row
        ld      a,e
        rrca
        rrca
        and     15
        ld      c,a
        ld      b,0
        add     hl,bc
        ld      a,d
        and     3
        add     a,a
        add     a,a
        ld      c,a
        ld      a,e
        and     3
        add     a,c
        add     a,CROSS
        ld      c,a

; Character C in the line's colour at HL, which goes on.
put_cell:
        ld      (hl),c
        push    hl
        push    af
        ld      a,h
        add     a,(COLOUR-SCREEN)/256
        ld      h,a
        ld      a,(line_colour)
        ld      (hl),a
        pop     af
        pop     hl
        inc     hl
        ret

; The first cell of the field's row through height D.
field_row:
        ld      a,d
        and     3Ch             ; four times the row
        add     a,a             ; eight times
        ld      c,a
        ld      b,0
        ld      h,b
        ld      l,c
        add     hl,hl
        add     hl,hl
        add     hl,bc           ; forty times
        ld      b,h
        ld      c,l
        xor     a
        call    field_cell
        add     hl,bc
        ret

; Cell A of the field's first row.
field_cell:
        push    de
        ld      l,(ix+FIELD)
        ld      h,(ix+FIELD+1)
        ld      e,a
        ld      d,0
        add     hl,de
        pop     de
        ret

draw_frames:
        ld      hl,FIELD_1-COLUMNS-1
        call    draw_frame
        ld      hl,FIELD_2-COLUMNS-1

; The frame and the empty field, its upper left corner at HL.
draw_frame:
        ld      a,DIM
        ld      (line_colour),a
        ld      de,EDGES+4+256*(EDGES+5)
        ld      b,EDGES
        call    frame_row
        ld      a,FIELD_CELLS
field_line:
        push    af
        ld      de,EDGES+2+256*(EDGES+3)
        ld      b,GRID
        call    frame_row
        pop     af
        dec     a
        jr      nz,field_line
        ld      de,EDGES+6+256*(EDGES+7)
        ld      b,EDGES+1

; A row of the frame: E, sixteen times B, D; HL goes on to the next row.
frame_row:
        ld      c,e
        call    put_cell
        ld      c,b
        ld      a,FIELD_CELLS
frame_cell:
        call    put_cell
        dec     a
        jr      nz,frame_cell
        ld      c,d
        call    put_cell
        ld      bc,COLUMNS-FIELD_CELLS-2
        add     hl,bc
        ret

; ---- keypads -------------------------------------------------------------------------------------

; A key is three cells wide, with a gap behind it. The matrix goes by columns from the right one.
show_keys:
        ld      hl,KEYPAD+8
        ld      de,keys_down
        ld      c,KEYS
key_column:
        ld      a,(de)
        inc     de
        push    de
        push    hl
        ld      b,4
key_row:
        rra
        push    af
        call    draw_key
        ld      de,COLUMNS
        add     hl,de
        inc     c
        pop     af
        djnz    key_row
        pop     hl
        dec     hl
        dec     hl
        dec     hl
        dec     hl
        pop     de
        ld      a,c
        cp      KEYS+12
        jr      nz,key_column
        ret

; Key C at HL, lit when there is a carry.
draw_key:
        push    bc
        push    hl
        ld      d,KEY_END
        ld      e,c
        ld      a,DIM
        jr      nc,key_up
        ld      a,c
        add     a,LIT
        ld      e,a
        ld      d,KEY_END+LIT
        ld      a,LABELS
key_up: ld      (line_colour),a
        ld      c,d
        call    put_cell
        ld      c,e
        call    put_cell
        ld      c,d
        call    put_cell
        pop     hl
        pop     bc
        ret

; ---- video ---------------------------------------------------------------------------------------

        include "text_screen.asm"

        include "labels.asm"

label_places:
        dw      SCREEN+6
        db      "TWO JOYSTICKS AND KEYPADS",0
        dw      VALUES_1
        db      "STICK 1",0
        dw      VALUES_1+COLUMNS+3
        db      "X",0
        dw      VALUES_1+2*COLUMNS+3
        db      "Y",0
        dw      VALUES_2
        db      "STICK 2",0
        dw      VALUES_2+COLUMNS+3
        db      "X",0
        dw      VALUES_2+2*COLUMNS+3
        db      "Y",0
        dw      0

; ---- characters ----------------------------------------------------------------------------------

define_characters:
        ld      hl,edge_shapes
        ld      de,CHARS
        ld      bc,edges_end-edge_shapes
        ldir
        call    make_lines
        ld      hl,key_shapes
        ld      bc,keys_end-key_shapes
        ldir

; Lit keys: the same, but dark on light, with a gap below.
        ld      hl,key_shapes
        ld      c,LIT
lit_key:
        ld      b,7
lit_line:
        ld      a,(hl)
        inc     hl
        cpl
        ld      (de),a
        inc     de
        djnz    lit_line
        inc     hl
        xor     a
        ld      (de),a
        inc     de
        dec     c
        jr      nz,lit_key
        ret

; The characters of the lines, to DE: upright, level, and crossing ones.
make_lines:
        ld      c,0C0h          ; the two pixels of an upright line
make_upright:
        ld      l,4             ; no level line among the eight
        call    make_line
        srl     c
        srl     c
        jr      nz,make_upright
        ld      l,0             ; the level line in the first pair of lines, and so on
make_level:
        call    make_line
        inc     l
        bit     2,l
        jr      z,make_level
        ld      l,0
make_row:
        ld      c,0C0h
make_crossing:
        call    make_line
        srl     c
        srl     c
        jr      nz,make_crossing
        inc     l
        bit     2,l
        jr      z,make_row
        ret

; A character of upright line C and level line L.
make_line:
        ld      b,0             ; the pair of lines
make_pair:
        ld      a,b
        cp      l
        ld      a,c
        jr      nz,plain_pair
        ld      a,0FFh
plain_pair:
        ld      (de),a
        inc     de
        ld      (de),a
        inc     de
        inc     b
        bit     2,b
        jr      z,make_pair
        ret

edge_shapes:
        db      010h,000h,000h,000h,000h,000h,000h,000h        ; grid
        db      000h,000h,000h,000h,000h,000h,0FFh,0FFh        ; top
        db      0FFh,0FFh,000h,000h,000h,000h,000h,000h        ; bottom
        db      003h,003h,003h,003h,003h,003h,003h,003h        ; left
        db      0C0h,0C0h,0C0h,0C0h,0C0h,0C0h,0C0h,0C0h        ; right
        db      000h,000h,000h,000h,000h,000h,003h,003h        ; upper left
        db      000h,000h,000h,000h,000h,000h,0C0h,0C0h        ; upper right
        db      003h,003h,000h,000h,000h,000h,000h,000h        ; lower left
        db      0C0h,0C0h,000h,000h,000h,000h,000h,000h        ; lower right
edges_end:

; The end of a key, then the keys of each column from the top one down.
key_shapes:
        db      000h,000h,000h,000h,000h,000h,000h,000h        ; end
        db      000h,03Ch,006h,01Ch,006h,03Ch,000h,000h        ; 3
        db      000h,03Ch,060h,07Ch,066h,03Ch,000h,000h        ; 6
        db      000h,03Ch,066h,03Eh,006h,03Ch,000h,000h        ; 9
        db      000h,066h,066h,066h,066h,066h,000h,000h        ; II
        db      000h,07Ch,006h,03Ch,060h,07Eh,000h,000h        ; 2
        db      000h,07Eh,060h,07Ch,006h,07Ch,000h,000h        ; 5
        db      000h,03Ch,066h,03Ch,066h,03Ch,000h,000h        ; 8
        db      000h,03Ch,066h,066h,066h,03Ch,000h,000h        ; 0
        db      000h,018h,038h,018h,018h,03Ch,000h,000h        ; 1
        db      000h,066h,066h,07Eh,006h,006h,000h,000h        ; 4
        db      000h,07Eh,006h,00Ch,018h,018h,000h,000h        ; 7
        db      000h,018h,018h,018h,018h,018h,000h,000h        ; I
keys_end:

        end     start
