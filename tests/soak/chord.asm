; A chord that never pauses: silence in what is heard of it is none of its own.

        include "machine.asm"

REGISTERS       equ     11      ; up to the last volume

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
stay:   jr      stay

; Periods in units of 16 clocks at 2.2 MHz: 440, 554 and 659 Hz.
values: defw    315,250,210
        defb    0               ; noise
        defb    38h             ; mixer: tones only
        defb    12,12,12        ; volumes
