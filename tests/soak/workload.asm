; Keeps every part of the machine busy, in steps of one length: 43776 cycles, a frame of the CRT
; controller as it is set up here (304 lines of 144 cycles). Nothing it does takes a time that
; depends on data, and what it shows depends only on the last 80 steps of a counter that starts
; again after 64. So the picture, the beam included, is the same whenever `step` is reached with
; the counter at 0.

        include "machine.asm"

KEYS    equ     0F801h          ; first row of the keyboard
STACK   equ     6F00h
SECTOR  equ     7000h           ; 256 bytes
VECTOR  equ     5FFFh           ; of the interrupt mode 2

DRIVE_SELECT    equ     0FFE0h
DISK_COMMAND    equ     0FFECh  ; and status
DISK_SECTOR     equ     0FFEEh
DISK_DATA       equ     0FFEFh
READ_SECTOR     equ     80h

        org     5800h

; What the machine has seen, for whoever looks from outside.
start:  jr      set_up
counter:
        db      0               ; 0 to 63
keys:   dw      0               ; steps with a key down
sticks: dw      0               ; steps whose level reached the first stick
tape:   dw      0               ; readings of 1 at the cassette port
taken:  dw      0               ; interrupts
        ds      5810h-$

step:   ld      hl,latches
        ld      (next_latch),hl
        ld      hl,SCREEN
        ld      (next_rows),hl
        call    band            ; 8 bands of two rows, 2 latches each
        call    sounds
        call    band
        call    controller
        call    band
        call    characters
        call    band
        call    colours
        call    band
        call    keyboard
        call    band
        call    ports
        call    band
        call    disk
        call    band
        call    rest
        ld      hl,counter
        ld      a,(hl)
        inc     a
        and     3Fh
        ld      (hl),a
        jp      step

; Makes up the length of a step: 31 cycles a round, then the rest in small coin.
ROUNDS  equ     184
NOPS    equ     5
SEVENS  equ     0

rest:   ld      bc,ROUNDS
rest1:  dec     bc
        ld      a,b
        or      c
        jr      nz,rest1
        ds      NOPS            ; 5 cycles each
        ds      SEVENS,23h      ; INC HL, 7 each
        ret

set_up: di
        ld      sp,STACK
        ld      hl,interrupt
        ld      (VECTOR),hl
        ld      a,VECTOR/256
        ld      i,a
        im      2
        include "crtc.asm"
        ld      hl,SCREEN
        ld      de,SCREEN+1
        ld      bc,1023
        ld      (hl),' '
        ldir
        ld      hl,COLOUR
        ld      de,COLOUR+1
        ld      bc,1023
        ld      (hl),5
        ldir
        ld      a,1
        ld      (DRIVE_SELECT),a
        xor     a
        ld      (DISK_COMMAND),a ; RESTORE
        ei
        jp      step

crtc_values:
        db      70,40,52,0F5h   ; a line of 71 characters, 40 of them shown, sync
        db      38,0,24,29      ; 38 rows, 24 of them shown, sync at row 30
        db      0,7             ; no interlace, 8 lines a row
        db      0,7             ; a steady cursor
        db      04h,00h         ; the picture starts at 4400h
        db      44h,0

; Two latches, and two rows that scroll in between.
band:   call    latch
        ld      hl,(next_rows)
        ld      d,h
        ld      e,l
        inc     hl
        ld      bc,79
        ldir
        ld      a,(counter)
        add     a,e
        ld      (de),a
        ld      (next_rows),hl
        call    latch
        ret

latch:  ld      hl,(next_latch)
        ld      a,(counter)
        and     18h             ; the character sets change along
        xor     (hl)
        inc     hl
        ld      (next_latch),hl
        out     (LATCH),a
        in      a,(LATCH)
        and     1
        ld      e,a
        ld      d,0
        ld      hl,(tape)
        add     hl,de
        ld      (tape),hl
        ret

latches:
        db      00h,01h,20h,25h,64h,0A5h,0E4h,01h
        db      04h,45h,84h,0C5h,24h,21h,08h,11h

; All registers but the ports.
sounds: ld      hl,sound_values
        ld      d,0
sounds1:
        ld      a,d
        out     (SOUND_SELECT),a
        ld      a,(counter)
        and     (hl)
        inc     hl
        add     a,(hl)
        inc     hl
        out     (SOUND_DATA),a
        inc     d
        ld      a,d
        cp      PORT_A
        jr      nz,sounds1
        ret

; Bits of the counter that come in, and what they are added to.
sound_values:
        db      3Fh,40h, 01h,01h        ; voice A
        db      0Fh,80h, 00h,00h        ; B
        db      3Fh,20h, 02h,01h        ; C
        db      1Fh,00h                 ; noise
        db      38h,40h                 ; mixer; port A puts out, port B takes in
        db      0Fh,00h, 10h,0Ch, 00h,10h ; volumes; C always by the envelope, B half the time
        db      3Fh,10h, 00h,00h        ; envelope: 2 to 9 ms
        db      0Fh,00h                 ; every shape

controller:
        ld      a,13            ; the start of the picture, in the middle of it
        out     (CRTC_SELECT),a
        ld      a,(counter)
        and     3
        out     (CRTC_DATA),a
        ld      a,15            ; the cursor wanders
        out     (CRTC_SELECT),a
        ld      a,(counter)
        out     (CRTC_DATA),a
        ret

; Eight programmable characters.
characters:
        ld      hl,CHARS
        ld      a,(counter)
        ld      b,64
characters1:
        ld      (hl),a
        rlca
        add     a,b
        inc     hl
        djnz    characters1
        ret

colours:
        ld      hl,COLOUR+320
        ld      a,(counter)
        ld      b,60
colours1:
        ld      (hl),a
        inc     a
        inc     hl
        djnz    colours1
        ret

keyboard:
        ld      hl,KEYS
        ld      bc,800h
keyboard1:
        ld      a,(hl)
        or      c
        ld      c,a
        sla     l
        djnz    keyboard1
        ld      a,c
        ld      (SCREEN+23*COLUMNS),a
        add     a,0FFh          ; carry with any key down
        ld      de,0
        ld      hl,(keys)
        adc     hl,de
        ld      (keys),hl
        ret

; One byte for the printer, which is also a level for the joysticks.
ports:  ld      a,PORT_A
        out     (SOUND_SELECT),a
        ld      a,(counter)
        out     (SOUND_DATA),a
        ld      a,PORT_B
        out     (SOUND_SELECT),a
        in      a,(SOUND_DATA)
        cpl
        rlca                    ; bit 7 is 0 where the level reaches the stick
        ld      de,0
        ld      hl,(sticks)
        adc     hl,de
        ld      (sticks),hl
        ret

; A sector, whose last byte asks for an interrupt.
disk:   ld      a,(DISK_COMMAND) ; a head that moved is at rest for who looks
        ld      a,(counter)
        and     7
        ld      (DISK_SECTOR),a
        ld      a,READ_SECTOR
        ld      (DISK_COMMAND),a
        ld      hl,DISK_DATA
        ld      de,SECTOR
        ld      b,0
disk1:  ld      a,(hl)
        ld      (de),a
        inc     e
        djnz    disk1
        ld      (SCREEN+23*COLUMNS+1),a
        ret

interrupt:
        push    af
        push    hl
        ld      a,(DISK_COMMAND) ; reading the status ends the request
        ld      hl,(taken)
        inc     hl
        ld      (taken),hl
        pop     hl
        pop     af
        ei
        reti

next_latch:
        dw      0
next_rows:
        dw      0
        end     start
