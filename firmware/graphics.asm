; The graphics screen, and the switch between it and the text screen.
;
; The graphics screen lies at 4800, 40 bytes a line, four pixels of two bits in a byte, the left
; one in bits 7 and 6. A line of it is two scan lines high, and the controller takes it for a row
; of characters two lines high.

; Controller registers R0 to R13 of both screens: the same scan line of 64 us, 40 columns, and the
; vertical sync on the same line (240), which gives both pictures the same upper border.
text_registers:
        DEFB 70, 40, 52, 0F5h   ; character clocks: total, shown, sync position; sync widths
        DEFB 38, 0, ROWS, 29    ; rows of 8 lines: total, adjust, shown, sync position
        DEFB 0, 7               ; no interlace; lines of a row - 1
        DEFB CURSOR_BLINKS, 7   ; cursor lines
        DEFB 04h, 00h           ; screen at 4400
; Rows of two lines: the controller counts 128 of them, 256 lines, and the adjustment brings the
; frame nearer its length. The vertical sync of 3 lines, not 15, leaves the upper border its height
; in a frame that is short all the same.
graphics_registers:
        DEFB 70, 40, 52, 35h
        DEFB 127, 31, GRAPHICS_ROWS, 119
        DEFB 0, 1
        DEFB CURSOR_HIDDEN, 0
        DEFB 08h, 00h           ; screen at 4800

GRAPHICS_ROWS   EQU ROWS * 4 + (ROWS - 24) * 2  ; 96 or 102

; Fills the shown part of the graphics screen with one colour. What lies above it up to 57FF stays:
; programs load there.
; In:   A colour 0-3, the value of a pixel
; Uses: AF, BC, DE, HL
fill_graphics:
        CALL colour_pattern
; The same with a pattern of four pixels.
fill_pattern:
        LD HL,GRAPHICS_SCREEN
        LD BC,COLUMNS * GRAPHICS_ROWS
        JP fill_memory

; Four pixels of one colour.
; In:   A colour, the value of a pixel; bits 7-2 do not matter
; Out:  A pattern
; Uses: F, B
colour_pattern:
        LD B,A
        RRA
        SBC A,A
        AND 55h
        BIT 1,B
        RET Z
        OR 0AAh
        RET

; Shows the graphics screen.
; Uses: AF, C, DE
show_graphics:
        LD DE,graphics_registers
        CALL write_registers
        LD A,(LATCH_COPY)
        OR LATCH_GRAPHICS
; Writes port FF and its copy.
; In:   A value
write_latch:
        LD (LATCH_COPY),A
        OUT (LATCH),A
        RET

; Shows the text screen.
; Uses: AF, C, DE
show_text:
        LD DE,text_registers
        CALL write_registers
        LD A,(CURSOR_SHAPE)
        OR A
        CALL Z,hide_cursor
        LD A,(LATCH_COPY)
        AND 255 - LATCH_GRAPHICS
        JR write_latch

; Programs R0 to R13 of the CRT controller.
; In:   DE fourteen values
; Uses: AF, C, DE
write_registers:
        XOR A
        LD C,A
_register:
        OUT (CRTC_REGISTER),A
        LD A,(DE)
        OUT (CRTC_DATA),A
        INC DE
        INC C
        LD A,C
        CP CRTC_CURSOR_HIGH
        JR C,_register
        RET
