; The machine as these programs see it.

SCREEN  equ     4400h           ; start address 0400h of the video RAM at 4000h
COLUMNS equ     40
ROWS    equ     24
CELLS   equ     COLUMNS*ROWS
COLOUR  equ     0F000h          ; a colour for every cell
CHARS   equ     0F400h          ; character 80h

SOUND_SELECT    equ     0F8h
SOUND_DATA      equ     0F9h
CRTC_SELECT     equ     0FAh
CRTC_DATA       equ     0FBh
LATCH           equ     0FFh    ; video modes, cassette and beeper in bit 0

; Registers of the sound generator.
MIXER           equ     7       ; a set bit turns off: tones in bits 0-2, noise in bits 3-5
PORT_A          equ     14      ; printer, and level of the joysticks' converter
PORT_B          equ     15
