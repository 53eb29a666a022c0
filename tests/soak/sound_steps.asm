; A soft tone that never pauses, and a level that jumps every quarter of a second. Just before each
; jump port B is written, by which the host knows of it.

        include "machine.asm"

REGISTERS       equ     11      ; up to the last volume
LEVEL           equ     9       ; volume of the second channel, which has no tone

        org     5800h
        di
        ld      hl,values
        xor     a
write:  out     (SOUND_SELECT),a
        ld      c,a
        ld      a,(hl)
        out     (SOUND_DATA),a
        inc     hl
        ld      a,c
        inc     a
        cp      REGISTERS
        jr      c,write

        ld      e,0
jump:   ld      bc,23210        ; 24 cycles each: 251.3 ms, at another place of the frame each time
wait:   dec     bc
        ld      a,b
        or      c
        jr      nz,wait
        ld      a,e
        xor     15
        ld      e,a
        ld      a,PORT_B
        out     (SOUND_SELECT),a
        ld      a,e
        out     (SOUND_DATA),a
        ld      a,LEVEL
        out     (SOUND_SELECT),a
        ld      a,e
        out     (SOUND_DATA),a
        jr      jump

values: defw    105,0,0         ; 1320 Hz at 2.2 MHz: half a wave is no gap
        defb    0               ; noise
        defb    0BEh            ; mixer: the first tone only; port B is an output
        defb    6,0,0           ; volumes
