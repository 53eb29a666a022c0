; Mixed workload for the processor: arithmetic, block moves, calls and table look-ups, in the
; proportions of a game's main loop. It runs for ever and touches only 8000-9FFF.

        org     4000h

table   equ     8000h           ; 256 bytes
source  equ     8100h
target  equ     8200h
stack   equ     9000h

start:  ld      sp,stack
        call    fill
again:  ld      hl,(count)
        inc     hl
        ld      (count),hl
        call    checksum
        call    move
        call    multiply
        call    translate
        call    bits
        jr      again

; table[n] = n xor 5Ah
fill:   ld      hl,table
        ld      b,0
fill1:  ld      a,l
        xor     5Ah
        ld      (hl),a
        inc     l
        djnz    fill1
        ret

; 16-bit sum of the table
checksum:
        ld      hl,table
        ld      de,0
        ld      b,64
sum1:   ld      a,(hl)
        add     a,e
        ld      e,a
        ld      a,0
        adc     a,d
        ld      d,a
        inc     hl
        djnz    sum1
        ld      (sum),de
        ret

move:   ld      hl,source
        ld      de,target
        ld      bc,48
        ldir
        ret

; HL = H x E, sixteen times
multiply:
        ld      c,16
mul0:   push    bc
        ld      a,c
        ld      e,a
        ld      d,0
        ld      hl,(count)
        ld      l,0
        ld      b,8
mul1:   add     hl,hl
        jr      nc,mul2
        add     hl,de
mul2:   djnz    mul1
        ld      (product),hl
        pop     bc
        dec     c
        jr      nz,mul0
        ret

; target[n] = table[source[n]]
translate:
        ld      bc,source
        ld      de,target
        exx
        ld      b,48
trans1: exx
        ld      a,(bc)
        inc     bc
        ld      l,a
        ld      h,table/256
        ld      a,(hl)
        ld      (de),a
        inc     de
        cp      20h
        call    c,small
        exx
        djnz    trans1
        exx
        ret
small:  or      20h
        and     7Fh
        ret

bits:   ld      ix,source
        ld      b,16
bits1:  ld      a,(ix+0)
        srl     a
        rr      (ix+1)
        bit     3,a
        jr      z,bits2
        set     5,a
bits2:  ld      (ix+2),a
        inc     ix
        djnz    bits1
        ret

count:  dw      0
sum:    dw      0
product: dw     0
        end     start
