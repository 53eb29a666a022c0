; The printer hangs on the ports of the sound generator: data on port A, its lines on port B.

PORT_A          EQU 14
PORT_B          EQU 15
PRINTER_LINES   EQU 90h         ; bit 7 busy, bit 4 ready
PRINTER_READY   EQU 10h
BREAK_ROW       EQU KEYBOARD + 40h
BREAK_BIT       EQU 2

; 003B: Character to the printer, through the driver in its control block.
; In:   A character
; Uses: AF, DE
call_printer:
        PUSH HL
        LD HL,(PRINTER_DRIVER)
        JP call_driver

; The driver of the printer. Waits until it can take the character; the BREAK key gives it up.
; In:   C character
; Uses: AF
print_character:
        LD A,(BREAK_ROW)
        BIT BREAK_BIT,A
        RET NZ
        LD A,PORT_B
        OUT (SOUND_REGISTER),A
        IN A,(SOUND_DATA)
        AND PRINTER_LINES
        CP PRINTER_READY
        JR NZ,print_character
        LD A,PORT_A
        OUT (SOUND_REGISTER),A
        LD A,C
        OUT (SOUND_DATA),A
        RET
