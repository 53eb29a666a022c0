; Writes the table crtc_values to the sixteen registers of the CRT controller, and goes on behind
; this file.
        ld      hl,crtc_values
        ld      c,0
next_register:
        ld      a,c
        out     (CRTC_SELECT),a
        ld      a,(hl)
        out     (CRTC_DATA),a
        inc     hl
        inc     c
        ld      a,c
        cp      16
        jr      nz,next_register
