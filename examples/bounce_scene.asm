; The scene behind the balls, drawn once: sky, floor, title, walls.

draw_scene:
        ld      hl,PAGE_1
        ld      de,PAGE_1+1
        ld      bc,BYTES*SHOWN-1
        ld      (hl),0
        ldir
        call    draw_stars
        call    draw_floor
        call    draw_title
        call    draw_stripes
        call    draw_walls
        ld      hl,PAGE_1
        ld      c,BLUE
        call    draw_rule
        ld      hl,PAGE_1+LINE_UNDER_TITLE*BYTES
        ld      c,GREEN
        call    draw_rule
        ld      hl,PAGE_1+(HORIZON-1)*BYTES
        ld      c,BLUE
        call    draw_rule
        ld      hl,PAGE_1+(LINES-1)*BYTES
        ld      c,BLUE

; A line of colour C from wall to wall at HL.
draw_rule:
        ld      b,BYTES
rule_byte:
        ld      (hl),c
        inc     hl
        djnz    rule_byte
        ret

; Two blue pixels and a green one on either side.
draw_walls:
        ld      hl,PAGE_1
        ld      de,BYTES-1
        ld      b,LINES
wall_line:
        ld      (hl),053h
        add     hl,de
        ld      (hl),0C5h
        inc     hl
        djnz    wall_line
        ret

draw_stars:
        ld      hl,stars
        ld      b,STARS
star:   ld      e,(hl)
        inc     hl
        ld      d,(hl)
        inc     hl
        ld      a,(hl)
        inc     hl
        ld      (de),a
        djnz    star
        ret

STARS   equ     24
stars:
        dw      PAGE_1+20*BYTES+3
        db      040h
        dw      PAGE_1+21*BYTES+24
        db      030h
        dw      PAGE_1+23*BYTES+33
        db      008h
        dw      PAGE_1+24*BYTES+14
        db      001h
        dw      PAGE_1+27*BYTES+7
        db      030h
        dw      PAGE_1+28*BYTES+28
        db      004h
        dw      PAGE_1+31*BYTES+19
        db      0C0h
        dw      PAGE_1+32*BYTES+36
        db      010h
        dw      PAGE_1+35*BYTES+2
        db      008h
        dw      PAGE_1+37*BYTES+11
        db      040h
        dw      PAGE_1+38*BYTES+31
        db      0C0h
        dw      PAGE_1+41*BYTES+22
        db      004h
        dw      PAGE_1+43*BYTES+5
        db      001h
        dw      PAGE_1+46*BYTES+35
        db      020h
        dw      PAGE_1+47*BYTES+16
        db      00Ch
        dw      PAGE_1+50*BYTES+26
        db      010h
        dw      PAGE_1+52*BYTES+9
        db      080h
        dw      PAGE_1+55*BYTES+37
        db      003h
        dw      PAGE_1+57*BYTES+20
        db      040h
        dw      PAGE_1+60*BYTES+3
        db      00Ch
        dw      PAGE_1+63*BYTES+30
        db      004h
        dw      PAGE_1+65*BYTES+13
        db      010h
        dw      PAGE_1+70*BYTES+24
        db      0C0h
        dw      PAGE_1+74*BYTES+34
        db      001h

; The floor in perspective. A line's tiles are one width, the wider the nearer the line: across it
; a phase runs, whose top bit says which of two tiles a pixel is in. It is half a tile in the middle
; of every line, so that the middle line of the floor runs through the middle of a tile.
draw_floor:
        ld      hl,PAGE_1+HORIZON*BYTES
        ld      ix,floor_lines
        ld      b,FLOOR_LINES
floor_line:
        push    bc
        push    hl
        ld      e,(ix+0)        ; phase of one pixel
        ld      d,(ix+1)
        ld      c,(ix+2)        ; 80h swaps the tiles
        inc     ix
        inc     ix
        inc     ix
        ld      hl,4000h
        ld      b,80
to_left_edge:
        or      a
        sbc     hl,de
        djnz    to_left_edge
        ld      a,h
        xor     c
        ld      h,a
        pop     bc              ; the screen
        push    bc
        exx
        ld      b,BYTES
floor_byte:
        exx
        call    floor_pixel
        call    floor_pixel
        call    floor_pixel
        call    floor_pixel
        ld      (bc),a
        inc     bc
        exx
        djnz    floor_byte
        exx
        pop     hl
        ld      bc,BYTES
        add     hl,bc
        pop     bc
        djnz    floor_line
        ret

; Shifts the pixel of the phase HL into A and goes one pixel on: orange or blue.
floor_pixel:
        add     a,a
        add     a,a
        bit     7,h
        jr      z,floor_blue
        inc     a               ; 10 is orange, 01 blue
floor_blue:
        inc     a
        add     hl,de
        ret

; 32768 / width of a tile, for widths that grow by two pixels a line; the rows of tiles get higher
; as they come nearer.
floor_lines:
        dw      32768/10
        db      0
        dw      32768/12
        db      80h
        dw      32768/14
        db      0
        dw      32768/16
        db      80h
        dw      32768/18
        db      80h
        dw      32768/20
        db      80h
        dw      32768/22
        db      0
        dw      32768/24
        db      0
        dw      32768/26
        db      0
        dw      32768/28
        db      0
        dw      32768/30
        db      0
        dw      32768/32
        db      80h
        dw      32768/34
        db      80h
        dw      32768/36
        db      80h
        dw      32768/38
        db      80h
        dw      32768/40
        db      80h
        dw      32768/42
        db      80h
        dw      32768/44
        db      80h
        dw      32768/46
        db      80h

; Three stripes on each side of the title.
STRIPE          equ     8       ; bytes
draw_stripes:
        ld      hl,PAGE_1+3*BYTES+2
        call    stripe_group
        ld      hl,PAGE_1+3*BYTES+30
stripe_group:
        ld      c,BLUE
        call    stripe
        ld      c,ORANGE
        call    stripe
        ld      c,GREEN
; Three lines of colour C at HL, which goes to the next stripe.
stripe: ld      d,3
stripe_line:
        push    hl
        ld      b,STRIPE
stripe_byte:
        ld      (hl),c
        inc     hl
        djnz    stripe_byte
        pop     hl
        ld      a,BYTES
        call    hl_plus_a
        dec     d
        jr      nz,stripe_line
        ld      a,BYTES
hl_plus_a:
        add     a,l
        ld      l,a
        ret     nc
        inc     h
        ret

; The title: letters of 5 x 7 dots, each dot two pixels wide and two lines high, so that a letter
; and its gap are three bytes wide.
LETTERS equ     6
draw_title:
        ld      hl,PAGE_1+2*BYTES+11
        ld      ix,letters
        ld      b,LETTERS
letter: push    bc
        push    hl
        ld      c,(ix+0)        ; colour
        inc     ix
        ld      b,7
letter_row:
        call    letter_line
        call    letter_line
        inc     ix
        djnz    letter_row
        pop     hl
        inc     hl
        inc     hl
        inc     hl
        pop     bc
        djnz    letter
        ret

; One line of the dots at IX, in colour C at HL, which goes to the next line.
letter_line:
        ld      d,(ix+0)
        push    hl
        call    two_dots
        call    two_dots
        call    two_dots
        pop     hl
        ld      a,BYTES
        jr      hl_plus_a

; The top two bits of D become two dots.
two_dots:
        xor     a
        rl      d
        jr      nc,second_dot
        or      0F0h
second_dot:
        rl      d
        jr      nc,put_dots
        or      00Fh
put_dots:
        and     c
        ld      (hl),a
        inc     hl
        ret

letters:
        db      BLUE
        db      %11110000
        db      %10001000
        db      %10001000
        db      %11110000
        db      %10001000
        db      %10001000
        db      %11110000
        db      ORANGE
        db      %01110000
        db      %10001000
        db      %10001000
        db      %10001000
        db      %10001000
        db      %10001000
        db      %01110000
        db      GREEN
        db      %10001000
        db      %10001000
        db      %10001000
        db      %10001000
        db      %10001000
        db      %10001000
        db      %01110000
        db      BLUE
        db      %10001000
        db      %11001000
        db      %11001000
        db      %10101000
        db      %10011000
        db      %10011000
        db      %10001000
        db      ORANGE
        db      %01110000
        db      %10001000
        db      %10000000
        db      %10000000
        db      %10000000
        db      %10001000
        db      %01110000
        db      GREEN
        db      %11111000
        db      %10000000
        db      %10000000
        db      %11110000
        db      %10000000
        db      %10000000
        db      %11111000
