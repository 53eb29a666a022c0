; A formatted floppy disk of 18 tracks without files, as an image of its sectors. The boot sector
; is bootdisk.bin.

TRACKS  equ     18
SECTORS equ     10
SECTOR  equ     256
UNUSED  equ     0E5h            ; what formatting leaves in a sector

DIRECTORY       equ     TRACKS/2
RESERVED        equ     0FEh    ; half a track that no file gets
FREE            equ     0FFh

        org     0

        incbin  "bootdisk.bin"
        ds      DIRECTORY*SECTORS*SECTOR-$,UNUSED

; The map: a byte for each half of a track. The boot sector's is taken, and the directory's two.
map:    db      RESERVED
        ds      2*DIRECTORY-1,FREE
        db      RESERVED,RESERVED
        ds      SECTOR-($-map),FREE
; No entries.
        ds      (SECTORS-1)*SECTOR,0

        ds      TRACKS*SECTORS*SECTOR-$,UNUSED
