; Colours: a text screen with all sixteen colours and programmable characters.
;
; The screen is 40 columns by 24 rows of codes at 4400h, a colour for every cell in the low four
; bits of F000h up, and 128 programmable characters of eight rows at F400h up, which show for the
; codes 80h to FFh. Eight of the characters are film strips: writing the next step into the
; character moves every copy of it on the screen at once, while the screen itself stays.
;
; The program expects nothing from the firmware and never returns to it.

        include "machine.asm"

STACK   equ     6800h

; Programmable characters in use.
BRICK   equ     80h             ; the big letters, with a stripe that runs through them
SHADES  equ     81h             ; full, three quarters, half, one quarter
WAVE    equ     85h             ; water, running left
DEEP    equ     86h             ; water, running right
SHAPES  equ     0C0h            ; eight shapes of four steps each

; Colours that are bright in both colour standards.
HEADING equ     1
LABELS  equ     HEADING
NUMBERS equ     5
WATER   equ     11

        org     5800h

start:  di
        ld      sp,STACK
        call    set_up_video
        call    clear
        call    define_characters
        call    draw_title
        call    draw_bars
        call    draw_shapes
        call    draw_water

; One step of the animation for ever. The delay is about two frames.
step:   call    delay
        call    move_stripe
        call    move_water
        ld      hl,counter
        inc     (hl)
        ld      a,(hl)
        rra
        call    c,colour_title  ; every second step
        ld      a,(counter)
        and     3
        call    z,next_shapes   ; every fourth step
        jr      step

counter:
        db      0

; A round takes 31 cycles, the five wait cycles of RAM included; a frame has 44335.
delay:  ld      bc,2860
wait:   dec     bc
        ld      a,b
        or      c
        jr      nz,wait
        ret

; ---- video ---------------------------------------------------------------------------------------

        include "text_screen.asm"

; ---- programmable characters ---------------------------------------------------------------------

define_characters:
        ld      hl,fixed_characters
        ld      de,CHARS
        ld      bc,fixed_end-fixed_characters
        ldir
                                ; falls into the first step of the shapes

; Copies the next step of all eight shapes into their characters.
next_shapes:
        ld      hl,shape_step
        ld      a,(hl)
        inc     (hl)
        and     3
        rrca                    ; 64 bytes a step
        rrca
        ld      e,a
        ld      d,0
        ld      hl,shape_steps
        add     hl,de
        ld      de,CHARS+(SHAPES-BRICK)*8
        ld      bc,64
        ldir
        ret

shape_step:
        db      0

; Every row of the brick turns one pixel to the right: the gap in it becomes a running stripe.
move_stripe:
        ld      hl,CHARS
        ld      b,8
turn_brick:
        rrc     (hl)
        inc     hl
        djnz    turn_brick
        ret

; The upper water turns left at every step, the lower one right at every second.
move_water:
        ld      hl,CHARS+(WAVE-BRICK)*8
        ld      b,8
turn_wave:
        rlc     (hl)
        inc     hl
        djnz    turn_wave
        ld      a,(counter)
        rra
        ret     c
        ld      b,8
turn_deep:
        rrc     (hl)
        inc     hl
        djnz    turn_deep
        ret

; ---- title ---------------------------------------------------------------------------------------

TITLE_ROW       equ     1
TITLE_ROWS      equ     5

draw_title:
        ld      hl,title
        ld      de,SCREEN+TITLE_ROW*COLUMNS
        ld      bc,TITLE_ROWS*COLUMNS
title_cell:
        ld      a,(hl)
        cp      '#'
        jr      nz,title_gap
        ld      a,BRICK
        ld      (de),a
title_gap:
        inc     hl
        inc     de
        dec     bc
        ld      a,b
        or      c
        jr      nz,title_cell
        ld      hl,subtitle
        ld      de,SCREEN+7*COLUMNS+2
        call    print

; Colours run through the letters along the diagonal, one place further at each call.
colour_title:
        ld      hl,title_phase
        inc     (hl)
        ld      c,(hl)
        ld      de,COLOUR+TITLE_ROW*COLUMNS
        ld      b,TITLE_ROWS
colour_row:
        push    bc
        ld      b,COLUMNS
colour_cell:
        ld      a,c             ; two cells of each colour
        rra
        and     7
        ld      hl,rainbow
        add     a,l
        ld      l,a
        ld      a,h
        adc     a,0
        ld      h,a
        ld      a,(hl)
        ld      (de),a
        inc     de
        inc     c
        djnz    colour_cell
        pop     bc
        inc     c
        djnz    colour_row
        ret

title_phase:
        db      0
rainbow:
        db      6,4,5,13,1,11,10,2

title:  db      "   #### #### #    #### #  # ###  ####   "
        db      "   #    #  # #    #  # #  # #  # #      "
        db      "   #    #  # #    #  # #  # ###  ####   "
        db      "   #    #  # #    #  # #  # #  #    #   "
        db      "   #### #### #### #### #### #  # ####   "

subtitle:
        db      "SIXTEEN COLOURS AND MOVING CHARACTERS",0

; ---- bars ----------------------------------------------------------------------------------------

BAR_ROW         equ     9
SHADE_WIDTH     equ     4       ; cells of each of the four shades

; Colours 0 to 7 in the left half, 8 to 15 in the right one; each bar fades through the shades.
draw_bars:
        ld      c,0             ; the colour
        ld      hl,BAR_ROW*COLUMNS
left_bar:
        call    draw_bar
        ld      a,c
        cp      8
        jr      nz,left_bar
        ld      hl,BAR_ROW*COLUMNS+COLUMNS/2
right_bar:
        call    draw_bar
        ld      a,c
        cp      16
        jr      nz,right_bar
        ret

; Draws the bar of colour C at the offset HL of the screen; both go on to the next row.
draw_bar:
        push    hl
        ld      de,SCREEN
        add     hl,de           ; the cell
        ld      de,COLOUR-SCREEN
        ex      de,hl
        add     hl,de           ; its colour
        ex      de,hl
        ld      a,c
        cp      10
        ld      b,' '
        jr      c,one_digit
        ld      b,'1'
        sub     10
one_digit:
        ld      (hl),b
        inc     hl
        add     a,'0'
        ld      (hl),a
        inc     hl
        inc     hl              ; a gap behind the number
        ld      a,NUMBERS
        ld      (de),a
        inc     de
        ld      (de),a
        inc     de
        inc     de
        ld      a,SHADES
shade:  ld      b,SHADE_WIDTH
shade_cell:
        ld      (hl),a
        inc     hl
        ex      de,hl
        ld      (hl),c
        inc     hl
        ex      de,hl
        djnz    shade_cell
        inc     a
        cp      SHADES+4
        jr      nz,shade
        pop     hl
        ld      de,COLUMNS
        add     hl,de
        inc     c
        ret

; ---- shapes and water ----------------------------------------------------------------------------

; Two rows of the eight shapes, two of each in its colour; the lower row starts half way.
draw_shapes:
        ld      hl,SCREEN+18*COLUMNS+1
        ld      c,0
        call    shape_row
        ld      hl,SCREEN+20*COLUMNS+1
        ld      c,4
shape_row:
        ld      b,8
shape_pair:
        push    bc
        push    hl
        ld      a,c
        and     7
        ld      c,a
        ld      b,0
        ld      hl,shape_colours
        add     hl,bc
        ld      b,(hl)          ; the colour
        add     a,SHAPES
        ld      c,a             ; the code
        pop     hl
        call    put_shape
        call    put_shape
        inc     hl              ; five cells for the two
        pop     bc
        inc     c
        djnz    shape_pair
        ret

; Code C in colour B at HL, which goes two cells on.
put_shape:
        ld      (hl),c
        push    hl
        ld      de,COLOUR-SCREEN
        add     hl,de
        ld      (hl),b
        pop     hl
        inc     hl
        inc     hl
        ret

shape_colours:
        db      2,6,1,9,5,4,13,10

draw_water:
        ld      hl,SCREEN+22*COLUMNS
        ld      de,COLOUR+22*COLUMNS
        ld      c,WAVE
        call    water_row
        ld      c,DEEP
water_row:
        ld      b,COLUMNS
water_cell:
        ld      (hl),c
        inc     hl
        ld      a,WATER
        ld      (de),a
        inc     de
        djnz    water_cell
        ret

; ---- character shapes ----------------------------------------------------------------------------

fixed_characters:
        db      07Fh,0BFh,0DFh,0EFh,0F7h,0FBh,0FDh,0FEh        ; brick
        db      0FFh,0FFh,0FFh,0FFh,0FFh,0FFh,0FFh,0FFh        ; full
        db      0EEh,0FFh,0BBh,0FFh,0EEh,0FFh,0BBh,0FFh        ; three quarters
        db      0AAh,055h,0AAh,055h,0AAh,055h,0AAh,055h        ; half
        db      088h,000h,022h,000h,088h,000h,022h,000h        ; one quarter
        db      000h,030h,078h,0CCh,087h,003h,000h,000h        ; wave
        db      038h,0EEh,0C7h,039h,0EFh,0FFh,0BBh,0EEh        ; deep water
fixed_end:

; Four steps of eight shapes, eight rows each.
shape_steps:
; step 0 of every shape
        db      066h,0FFh,0FFh,0FFh,07Eh,03Ch,018h,000h        ; heart
        db      03Ch,06Eh,05Eh,07Eh,03Ch,000h,000h,000h        ; ball
        db      018h,018h,018h,03Ch,03Ch,018h,018h,018h        ; propeller
        db      000h,0C3h,066h,03Ch,018h,000h,000h,000h        ; bird
        db      018h,018h,03Ch,05Ah,018h,024h,042h,042h        ; walker
        db      03Ch,07Eh,0E7h,0C3h,0C3h,0E7h,07Eh,03Ch        ; coin
        db      000h,039h,07Dh,0DFh,0FFh,07Dh,039h,000h        ; fish
        db      000h,03Ch,042h,099h,099h,042h,03Ch,000h        ; eye
; step 1 of every shape
        db      000h,024h,07Eh,07Eh,03Ch,018h,000h,000h        ; heart
        db      000h,03Ch,06Eh,05Eh,07Eh,03Ch,000h,000h        ; ball
        db      003h,007h,00Ch,03Ch,03Ch,030h,0E0h,0C0h        ; propeller
        db      000h,000h,000h,0FFh,099h,000h,000h,000h        ; bird
        db      018h,018h,03Ch,03Ch,018h,028h,024h,044h        ; walker
        db      018h,03Ch,024h,066h,066h,024h,03Ch,018h        ; coin
        db      000h,038h,07Dh,0DEh,0FEh,07Dh,038h,000h        ; fish
        db      000h,03Ch,042h,0B1h,0B1h,042h,03Ch,000h        ; eye
; step 2 of every shape
        db      066h,0FFh,0FFh,0FFh,07Eh,03Ch,018h,000h        ; heart
        db      000h,000h,000h,03Ch,06Eh,05Eh,07Eh,0FFh        ; ball
        db      000h,000h,018h,0FFh,0FFh,018h,000h,000h        ; propeller
        db      000h,000h,018h,03Ch,066h,0C3h,000h,000h        ; bird
        db      018h,018h,018h,03Ch,018h,018h,018h,018h        ; walker
        db      018h,018h,018h,018h,018h,018h,018h,018h        ; coin
        db      000h,039h,07Dh,0DFh,0FFh,07Dh,039h,000h        ; fish
        db      000h,03Ch,042h,08Dh,08Dh,042h,03Ch,000h        ; eye
; step 3 of every shape
        db      000h,024h,07Eh,07Eh,03Ch,018h,000h,000h        ; heart
        db      000h,03Ch,06Eh,05Eh,07Eh,03Ch,000h,000h        ; ball
        db      0C0h,0E0h,030h,03Ch,03Ch,00Ch,007h,003h        ; propeller
        db      000h,000h,000h,0FFh,099h,000h,000h,000h        ; bird
        db      018h,018h,03Ch,03Ch,018h,014h,024h,022h        ; walker
        db      018h,03Ch,024h,066h,066h,024h,03Ch,018h        ; coin
        db      000h,038h,07Dh,0DEh,0FEh,07Dh,038h,000h        ; fish
        db      000h,000h,000h,03Ch,0FFh,03Ch,000h,000h        ; eye

        end     start
