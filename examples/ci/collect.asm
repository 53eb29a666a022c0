; Collect: A and D walk along a line and pick up what lies there.

SCREEN  equ     4400h
LINE    equ     SCREEN+10*40    ; where the player walks
COLUMNS equ     40
KEYS    equ     0F801h          ; the row of the keyboard with @ and A to G
KEY_A   equ     02h
KEY_D   equ     10h
PLAYER  equ     '*'
FRUIT   equ     'O'
BLANK   equ     ' '
FRUITS  equ     5

        org     5800h

start:  di
        ld      sp,7000h
        xor     a
        ld      (score),a
        call    draw
step:   call    delay
        ld      a,(KEYS)
        and     KEY_A
        ld      c,-1
        jr      nz,walk
        ld      a,(KEYS)
        and     KEY_D
        jr      z,step
        ld      c,1

; One column to the left or to the right, as C says.
walk:   ld      a,(place)
        add     a,c
        cp      COLUMNS
        jr      nc,step         ; a wall, on either side
        push    af
        ld      a,(place)
        call    cell
        ld      (hl),BLANK
        pop     af
        ld      (place),a
        call    cell
        ld      a,(hl)
        ld      (hl),PLAYER
        cp      FRUIT
        call    z,pick
        ld      a,(score)
        cp      FRUITS
        jr      nz,step

        ld      hl,well_done
        ld      de,SCREEN+40
        ld      bc,9
        ldir
finished:
        jr      finished

pick:   ld      hl,score
        inc     (hl)
        ld      a,(hl)
        add     a,'0'
        ld      (SCREEN+6),a
        ret

; HL = the cell of column A.
cell:   ld      hl,LINE
        ld      e,a
        ld      d,0
        add     hl,de
        ret

draw:   ld      hl,SCREEN
        ld      de,SCREEN+1
        ld      bc,24*40-1
        ld      (hl),BLANK
        ldir
        ld      hl,score_text
        ld      de,SCREEN
        ld      bc,7
        ldir
        ld      b,FRUITS
        ld      hl,LINE+4
        ld      de,8
next:   ld      (hl),FRUIT
        add     hl,de
        djnz    next
        ld      a,1
        ld      (place),a
        call    cell
        ld      (hl),PLAYER
        ret

; About a frame.
delay:  ld      bc,1700
wait:   dec     bc
        ld      a,b
        or      c
        jr      nz,wait
        ret

score_text:
        db      'SCORE 0'
well_done:
        db      'WELL DONE'

score:  db      0
place:  db      0

        end     start
