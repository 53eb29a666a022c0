; The search for the disk ROM.

; Out:  Z if the disk ROM is there
; Uses: A, DE, HL
find_disk_rom:
        LD HL,(DISK_ROM)
        LD DE,DISK_MARK
        RST 18h
        RET
