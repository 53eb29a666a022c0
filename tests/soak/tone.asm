; One steady tone of 440 Hz: period 315 in units of 16 clocks at 2.2 MHz.

        include "machine.asm"

        org     5800h
        di
        ld      hl,values
write:  ld      a,(hl)          ; the register, then its value
        out     (SOUND_SELECT),a
        inc     hl
        ld      a,(hl)
        out     (SOUND_DATA),a
        inc     hl
        cp      15              ; the volume comes last
        jr      nz,write
stay:   jr      stay

values: defb    0,3Bh, 1,1, 7,3Eh, 8,15
