; Bounce: five balls over a chequered floor, in the four-colour graphics mode.
;
; The picture is 160 x 102 pixels in lines of 40 bytes, four pixels a byte, the leftmost in bits
; 7-6. There are two such pictures, at 4400h and 6400h: one shows while the next step is drawn into
; the other, and the CRT controller's start address swaps them, so that nobody sees a ball half
; drawn. Both lie in the 16 KB that the video circuit can reach.
;
; The program expects nothing from the firmware and never returns to it.

        include "machine.asm"

PAGE_1  equ     6400h
PAGE_2  equ     4400h
BYTES   equ     40              ; of a line
LINES   equ     102
SHOWN   equ     123             ; lines of a page: the picture, and black ones below it
STACK   equ     8000h

; What lies under the sprites of each page, to be put back: address, then the bytes.
UNDER_1 equ     6000h
UNDER_2 equ     6200h

; Bits of an address' high byte that lead from one page to the other.
PAGE_SWAP       equ     20h
UNDER_SWAP      equ     02h

; Sprites in all four positions within a byte, made at the start.
BALL_IMAGES     equ     7800h
SHADOW_IMAGES   equ     BALL_IMAGES+4*BALL_SIZE
LINE_MASK       equ     7F00h   ; work space of one line
LINE_DATA       equ     LINE_MASK+5

START_HIGH      equ     12      ; register: high byte of the start address

; The latch: graphics on black. With bit 2 as well the background is a colour, and bits 7 and 6
; say which of four.
GRAPHICS        equ     20h

; Bytes of four pixels in one colour: blue, orange and green in the southern colours.
BLUE    equ     055h
ORANGE  equ     0AAh
GREEN   equ     0FFh

HORIZON         equ     82      ; first line of the floor
FLOOR_LINES     equ     19
LINE_UNDER_TITLE equ    17

; ---- balls ---------------------------------------------------------------------------------------

BALLS           equ     5
BALL_LINES      equ     16
BALL_SIZE       equ     BALL_LINES*10   ; one position: mask and data of five bytes a line
SHADOW_LINES    equ     3
SHADOW_SIZE     equ     SHADOW_LINES*10
BALL_UNDER      equ     2+BALL_LINES*5
SHADOW_UNDER    equ     2+SHADOW_LINES*5

; A ball's record. Places and speeds are in 256ths of a pixel.
BALL_X          equ     0
BALL_DX         equ     2
BALL_Y          equ     4
BALL_DY         equ     6
BALL_LAUNCH     equ     8       ; speed after every bounce, so that it never tires
BALL_REST       equ     10      ; line of its top when it stands on the floor
BALL_COLOUR     equ     11
BALL_RECORD     equ     12

LEFT_WALL       equ     4
RIGHT_WALL      equ     140     ; 16 pixels left of the wall's inner side
GRAVITY         equ     80      ; a step

        org     5800h

start:  di
        ld      sp,STACK
        call    make_sprites
        ld      hl,UNDER_1
        ld      de,UNDER_1+1
        ld      bc,3FFh
        ld      (hl),0
        ldir
        call    draw_scene
        call    set_up_video
        ld      hl,PAGE_1
        ld      de,PAGE_2
        ld      bc,BYTES*SHOWN
        ldir

; One step: draw into the hidden page, show it, and wait until the beam has left the other one.
step:   call    restore_sprites
        call    move_balls
        call    draw_shadows
        call    draw_balls
        call    swap_pages
        ld      bc,1200         ; rounds of 31 cycles: a frame of 254 lines of 144 cycles
wait:   dec     bc
        ld      a,b
        or      c
        jr      nz,wait
        jr      step

; ---- video ---------------------------------------------------------------------------------------

set_up_video:
        include "crtc.asm"
        ld      a,GRAPHICS
        out     (LATCH),a
        ret

; Rows of two scan lines, as each graphics line is two scan lines high. 127 is the most that the
; row counter takes; that makes about 60 frames a second.
;
; A frame of 254 lines is short, and the ways to draw it differ in where they put it. One drawn at
; once ends on the 288th line of the screen with its last row shown: 288 - 2*123 = 42 lines stand
; above it. Drawn along with the beam, it comes 254 - 216 - 13 = 25 lines after the sync of 14
; lines from row 108 on, and is centred by 17 more: 42 as well. That is why rows are shown which
; have nothing in them.
crtc_values:
        db      70,40,52,0E5h   ; a line of 71 characters, 40 of them shown, sync
        db      127,0,SHOWN,107 ; rows in all and shown, the sync at row 108
        db      0,1             ; no interlace, 2 lines a row
        db      20h,0           ; no cursor
        db      24h,00h         ; the picture starts at 6400h
        db      0,0

; Shows the page that was drawn and makes the other one the next to draw into. The pages differ
; in the high byte of the start address only.
swap_pages:
        ld      a,START_HIGH
        out     (CRTC_SELECT),a
        ld      hl,hidden
        ld      a,(hl)
        sub     40h             ; the controller counts from 4000h
        out     (CRTC_DATA),a
        ld      a,(hl)
        xor     PAGE_SWAP
        ld      (hl),a
        inc     hl
        ld      a,(hl)
        xor     UNDER_SWAP
        ld      (hl),a
        ret

; High bytes of the hidden page and of its saved bytes.
hidden: db      PAGE_2/256
under:  db      UNDER_2/256

; ---- movement ------------------------------------------------------------------------------------

move_balls:
        ld      ix,balls
        ld      b,BALLS
move_ball:
        call    move_across
        call    move_down
        ld      de,BALL_RECORD
        add     ix,de
        djnz    move_ball
        ret

; Left and right, with a turn at the walls.
move_across:
        ld      l,(ix+BALL_X)
        ld      h,(ix+BALL_X+1)
        ld      e,(ix+BALL_DX)
        ld      d,(ix+BALL_DX+1)
        add     hl,de
        ld      a,h
        cp      LEFT_WALL
        jr      c,at_left
        cp      RIGHT_WALL
        jr      c,store_x
        ld      hl,RIGHT_WALL*256
        jr      turn
at_left:
        ld      hl,LEFT_WALL*256
turn:   xor     a               ; speed = -speed
        sub     e
        ld      (ix+BALL_DX),a
        sbc     a,a
        sub     d
        ld      (ix+BALL_DX+1),a
store_x:
        ld      (ix+BALL_X),l
        ld      (ix+BALL_X+1),h
        ret

; Down with gravity; on the floor the ball is launched anew.
move_down:
        ld      l,(ix+BALL_Y)
        ld      h,(ix+BALL_Y+1)
        ld      e,(ix+BALL_DY)
        ld      d,(ix+BALL_DY+1)
        add     hl,de
        ld      a,h
        cp      (ix+BALL_REST)
        jr      c,in_the_air
        ld      h,(ix+BALL_REST)
        ld      l,0
        ld      e,(ix+BALL_LAUNCH)
        ld      d,(ix+BALL_LAUNCH+1)
in_the_air:
        ld      (ix+BALL_Y),l
        ld      (ix+BALL_Y+1),h
        ld      hl,GRAVITY
        add     hl,de
        ld      (ix+BALL_DY),l
        ld      (ix+BALL_DY+1),h
        ret

; x, speed across, y, speed down, launch speed, line at rest, colour; the farthest first, since
; the nearer ones are drawn over it.
balls:
        dw      20*256,230,30*256,0,-1358
        db      70,BLUE
        dw      110*256,-160,40*256,0,-1342
        db      73,ORANGE
        dw      60*256,300,20*256,0,-1402
        db      76,GREEN
        dw      130*256,-340,60*256,0,-1145
        db      79,BLUE
        dw      90*256,120,50*256,0,-1459
        db      82,ORANGE

; ---- sprites on the screen -----------------------------------------------------------------------

; Puts back what the hidden page's sprites cover, the last drawn first.
restore_sprites:
        ld      a,(under)
        ld      h,a
        ld      l,0
        ld      de,BALLS*SHADOW_UNDER+(BALLS-1)*BALL_UNDER
        add     hl,de
        ld      b,BALLS
restore_ball:
        push    bc
        push    hl
        ld      b,BALL_LINES
        call    restore
        pop     hl
        ld      de,-BALL_UNDER
        add     hl,de
        pop     bc
        djnz    restore_ball
        ld      de,BALL_UNDER-SHADOW_UNDER
        add     hl,de
        ld      b,BALLS
restore_shadow:
        push    bc
        push    hl
        ld      b,SHADOW_LINES
        call    restore
        pop     hl
        ld      de,-SHADOW_UNDER
        add     hl,de
        pop     bc
        djnz    restore_shadow
        ret

; Copies B lines of five bytes back from HL, where their address stands first. An address in the
; first page of memory means that nothing was drawn yet.
restore:
        ld      e,(hl)
        inc     hl
        ld      d,(hl)
        inc     hl
        ld      a,d
        or      a
        ret     z
restore_line:
        push    bc
        rept    5
        ldi
        endm
        ex      de,hl
        ld      bc,BYTES-5
        add     hl,bc
        ex      de,hl
        pop     bc
        djnz    restore_line
        ret

; Every shadow lies where its ball would stand on the floor.
draw_shadows:
        ld      a,(under)
        ld      h,a
        ld      l,0
        ld      (save),hl
        ld      ix,balls
        ld      b,BALLS
draw_shadow:
        push    bc
        ld      a,(ix+BALL_REST)
        add     a,BALL_LINES-SHADOW_LINES
        ld      de,SHADOW_SIZE
        ld      hl,SHADOW_IMAGES
        ld      b,SHADOW_LINES
        call    draw_sprite
        ld      de,BALL_RECORD
        add     ix,de
        pop     bc
        djnz    draw_shadow
        ret

; Behind the shadows, so that `save` goes on from there.
draw_balls:
        ld      ix,balls
        ld      b,BALLS
draw_ball:
        push    bc
        ld      a,(ix+BALL_Y+1)
        ld      de,BALL_SIZE
        ld      hl,BALL_IMAGES
        ld      b,BALL_LINES
        call    draw_sprite
        ld      de,BALL_RECORD
        add     ix,de
        pop     bc
        djnz    draw_ball
        ret

; Where the next bytes under a sprite go.
save:   dw      0

; Draws a sprite of B lines on line A, at the place across and in the colour of the ball IX. Its
; first image is at HL, each of the three others DE bytes behind the one before.
draw_sprite:
        push    af
        ld      a,(ix+BALL_X+1)
        and     3               ; the position within a byte
        jr      z,image_found
next_image:
        add     hl,de
        dec     a
        jr      nz,next_image
image_found:
        pop     af
        push    hl
        call    screen_address
        push    hl
        push    bc
        call    save_under
        pop     bc
        pop     hl
        pop     de
        ld      c,(ix+BALL_COLOUR)
sprite_line:
        push    bc
        rept    5               ; mask and data at DE, colour in C, screen at HL
        ld      a,(de)
        inc     de
        and     (hl)
        ld      b,a
        ld      a,(de)
        inc     de
        and     c
        or      b
        ld      (hl),a
        inc     hl
        endm
        ld      bc,BYTES-5
        add     hl,bc
        pop     bc
        djnz    sprite_line
        ret

; Address on the hidden page of line A and the x of the ball IX, in HL. Line * 40 + x / 4.
screen_address:
        ld      l,a
        ld      h,0
        add     hl,hl
        add     hl,hl
        add     hl,hl
        ld      d,h
        ld      e,l
        add     hl,hl
        add     hl,hl
        add     hl,de
        ld      a,(ix+BALL_X+1)
        rrca
        rrca
        and     3Fh
        ld      e,a
        ld      a,(hidden)
        ld      d,a
        add     hl,de
        ret

; Copies B lines of five bytes from the screen at HL to `save`, behind their address.
save_under:
        ld      de,(save)
        ld      a,l
        ld      (de),a
        inc     de
        ld      a,h
        ld      (de),a
        inc     de
save_line:
        push    bc
        rept    5
        ldi
        endm
        ld      bc,BYTES-5
        add     hl,bc
        pop     bc
        djnz    save_line
        ld      (save),de
        ret

; ---- making the sprites --------------------------------------------------------------------------

make_sprites:
        ld      hl,ball_shape
        ld      de,BALL_IMAGES
        ld      b,BALL_LINES
        call    make_sprite
        ld      hl,shadow_shape
        ld      de,SHADOW_IMAGES
        ld      b,SHADOW_LINES

; Makes the four images at DE of the shape of B lines at HL. A line of a shape is 16 bits of mask
; (what the sprite covers) and 16 bits of data (what it colours).
make_sprite:
        ld      c,0             ; the position
next_position:
        push    hl
        push    bc
make_line:
        push    bc
        push    de
        ld      de,LINE_MASK
        call    expand
        ld      de,LINE_DATA
        call    expand
        pop     de
        call    interleave
        pop     bc
        djnz    make_line
        pop     bc
        pop     hl
        inc     c
        ld      a,c
        cp      4
        jr      nz,next_position
        ret

; Turns the 16 bits at HL into 16 pixels of two equal bits at DE, C pixels further to the right in
; five bytes.
expand: push    de
        call    expand_byte
        call    expand_byte
        xor     a
        ld      (de),a
        pop     de
        ld      a,c
        add     a,a
        ret     z
        ex      de,hl
shift:  push    hl
        push    bc
        ld      b,5
        or      a
shift_byte:
        rr      (hl)
        inc     hl
        djnz    shift_byte
        pop     bc
        pop     hl
        dec     a
        jr      nz,shift
        ex      de,hl
        ret

; Eight bits at HL into two bytes at DE, each bit twice.
expand_byte:
        ld      b,(hl)
        inc     hl
        call    expand_nibble
expand_nibble:
        push    bc
        ld      c,4
expand_bit:
        rlc     b
        rla
        rrc     b
        rlc     b
        rla
        dec     c
        jr      nz,expand_bit
        ld      (de),a
        inc     de
        ld      a,b
        pop     bc
        ld      b,a
        ret

; Mask and data of the line in turn to DE; the mask keeps what it does not cover.
interleave:
        push    hl
        ld      hl,LINE_MASK
        ld      b,5
interleave_byte:
        ld      a,(hl)
        cpl
        ld      (de),a
        inc     de
        push    hl
        ld      a,l
        add     a,5
        ld      l,a
        ld      a,(hl)
        pop     hl
        ld      (de),a
        inc     de
        inc     hl
        djnz    interleave_byte
        pop     hl
        ret

        include "bounce_scene.asm"

; ---- shapes --------------------------------------------------------------------------------------

; A ball with a face: it covers a pixel more than it colours, which sets it off from the floor.
ball_shape:
        db      %00000111,%11100000,    %00000000,%00000000
        db      %00011111,%11111000,    %00000111,%11100000
        db      %00111111,%11111100,    %00011111,%11111000
        db      %01111111,%11111110,    %00111111,%11111100
        db      %01111111,%11111110,    %00111001,%11001100
        db      %11111111,%11111111,    %01111001,%11001110
        db      %11111111,%11111111,    %01111001,%11001110
        db      %11111111,%11111111,    %01111111,%11111110
        db      %11111111,%11111111,    %01111111,%11111110
        db      %11111111,%11111111,    %01101111,%11111010
        db      %11111111,%11111111,    %01110111,%11110110
        db      %01111111,%11111110,    %00111000,%00001100
        db      %01111111,%11111110,    %00111111,%11111100
        db      %00111111,%11111100,    %00011111,%11111000
        db      %00011111,%11111000,    %00000111,%11100000
        db      %00000111,%11100000,    %00000000,%00000000

shadow_shape:
        db      %00011111,%11111000,    %00000000,%00000000
        db      %01111111,%11111110,    %00000000,%00000000
        db      %00011111,%11111000,    %00000000,%00000000

        end     start
