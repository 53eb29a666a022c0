; The text screen: 40 columns from 4400, a colour nibble for each cell from F000.

; 0033: Character to the screen, through the driver in the screen's control block.
; In:   A character or control code
; Uses: AF, DE
call_screen:
        PUSH HL
        PUSH BC
        LD C,A                  ; a driver finds the character in A and in C
        CALL _driver
        POP BC
        POP HL
        RET
_driver:
        LD HL,(SCREEN_DRIVER)
        JP (HL)

; The driver of the screen.
; In:   C character
; Uses: AF, BC, DE, HL
display_character:
        LD HL,(CURSOR)
        LD A,H
        XOR HIGH TEXT_SCREEN
        AND 0FCh
        JR Z,_inside
        LD HL,TEXT_SCREEN       ; programs write the cursor cell, so it may point anywhere
_inside:
        LD A,C
        CP ' '
        JR C,obey_control
        LD (HL),A
        LD D,H
        LD A,H
        ADD A,TO_COLOUR
        LD H,A
        LD A,(TEXT_COLOUR)
        LD (HL),A
        LD H,D
        INC HL
; Moves the cursor to HL; behind the last row the screen scrolls first.
scroll_to_cursor:
        LD DE,SCREEN_END
        OR A
        SBC HL,DE
        ADD HL,DE
        CALL NC,scroll
; Moves the cursor to HL.
; The controller takes the address as the processor sees it.
set_cursor:
        LD (CURSOR),HL
        LD A,CRTC_CURSOR_HIGH
        OUT (CRTC_REGISTER),A
        LD A,H
        OUT (CRTC_DATA),A
        LD A,CRTC_CURSOR_LOW
        OUT (CRTC_REGISTER),A
        LD A,L
        OUT (CRTC_DATA),A
        RET

; Obeys a control code.
; In:   A code below 20, HL cursor
obey_control:
        SUB BACKSPACE
        RET C
        ADD A,A
        LD E,A
        LD D,0
        PUSH HL
        LD HL,control_table
        ADD HL,DE
        LD E,(HL)
        INC HL
        LD D,(HL)
        POP HL
        PUSH DE                 ; act with HL = cursor
ignore_code:
        RET

control_table:
        DEFW erase_backwards    ; 08
        DEFW ignore_code        ; 09
        DEFW new_line           ; 0A
        DEFW ignore_code        ; 0B
        DEFW ignore_code        ; 0C
        DEFW new_line           ; 0D
        DEFW show_cursor        ; 0E
        DEFW switch_cursor_off  ; 0F
        DEFW ignore_code        ; 10
        DEFW ignore_code        ; 11
        DEFW ignore_code        ; 12
        DEFW ignore_code        ; 13
        DEFW ignore_code        ; 14
        DEFW ignore_code        ; 15
        DEFW ignore_code        ; 16
        DEFW ignore_code        ; 17
        DEFW cursor_left        ; 18
        DEFW cursor_right       ; 19
        DEFW cursor_down        ; 1A
        DEFW cursor_up          ; 1B
        DEFW cursor_home        ; 1C
        DEFW cursor_to_start    ; 1D
        DEFW erase_line_end     ; 1E
        DEFW erase_screen_end   ; 1F

erase_backwards:
        CALL cursor_left
        LD (HL),' '
        RET

new_line:
        CALL start_of_row
        LD DE,COLUMNS
        ADD HL,DE
        JP scroll_to_cursor

show_cursor:
        LD A,'_'
        LD (CURSOR_SHAPE),A
        LD C,CURSOR_BLINKS
        JR write_cursor_mode
switch_cursor_off:
        XOR A
        LD (CURSOR_SHAPE),A
hide_cursor:
        LD C,CURSOR_HIDDEN
write_cursor_mode:
        LD A,CRTC_CURSOR_START
        OUT (CRTC_REGISTER),A
        LD A,C
        OUT (CRTC_DATA),A
        RET

; Cursor movements stop at the ends of the screen, only the new line scrolls.
cursor_left:
        LD DE,TEXT_SCREEN
        OR A
        SBC HL,DE
        ADD HL,DE
        RET Z
        DEC HL
        JP set_cursor
cursor_right:
        INC HL
        JP scroll_to_cursor
cursor_down:
        LD DE,COLUMNS
        ADD HL,DE
        LD DE,SCREEN_END
        OR A
        SBC HL,DE
        ADD HL,DE
        RET NC
        JP set_cursor
cursor_up:
        LD DE,COLUMNS
        OR A
        SBC HL,DE
        LD A,H
        CP HIGH TEXT_SCREEN
        RET C
        JP set_cursor
cursor_home:
        LD HL,TEXT_SCREEN
        JP set_cursor
cursor_to_start:
        CALL start_of_row
        JP set_cursor

erase_line_end:
        PUSH HL
        CALL start_of_row
        LD DE,COLUMNS
        ADD HL,DE
        EX DE,HL                ; start of the next row
        POP HL
        JR erase_to
erase_screen_end:
        LD DE,SCREEN_END
; Erases cells, which take the text colour.
; In:   HL first cell, DE the one after the last
; Uses: AF, BC, DE, HL
erase_to:
        EX DE,HL
        OR A
        SBC HL,DE
        RET C
        RET Z
        LD B,H
        LD C,L
        EX DE,HL
; In:   HL first cell, BC cells, not 0
erase_cells:
        PUSH BC
        PUSH HL
        LD A,' '
        CALL fill_memory
        POP HL
        POP BC
        LD A,H
        ADD A,TO_COLOUR
        LD H,A
        LD A,(TEXT_COLOUR)
; Fills memory.
; In:   HL start, BC bytes, not 0, A value
; Uses: AF, BC, DE, HL
fill_memory:
        LD (HL),A
        DEC BC
        LD A,B
        OR C
        RET Z
        LD D,H
        LD E,L
        INC DE
        LDIR
        RET

; Column of the cursor.
; In:   HL cell
; Out:  A column
; Uses: AF, DE, HL
column_of:
        PUSH HL
        CALL start_of_row
        EX DE,HL
        POP HL
        LD A,L
        SUB E
        RET

; First cell of a row.
; In:   HL cell
; Out:  HL first cell of the row it stands in
; Uses: AF, DE
start_of_row:
        LD DE,TEXT_SCREEN
        EX DE,HL
        PUSH BC
        LD BC,COLUMNS
_row:
        ADD HL,BC
        LD A,E                  ; passed the cell?
        SUB L
        LD A,D
        SBC A,H
        JR NC,_row
        SBC HL,BC               ; carry is set: one too far
        INC HL
        POP BC
        RET

; Moves text and colours up by one row and clears the last one.
; Out:  HL last row
; Uses: AF, BC, DE
scroll:
        LD HL,TEXT_SCREEN + COLUMNS
        LD DE,TEXT_SCREEN
        LD BC,LAST_ROW - TEXT_SCREEN
        LDIR
        LD HL,COLOUR_RAM + COLUMNS
        LD DE,COLOUR_RAM
        LD BC,LAST_ROW - TEXT_SCREEN
        LDIR
        LD HL,LAST_ROW
        LD BC,COLUMNS
        PUSH HL
        CALL erase_cells
        POP HL
        RET

; 01C9: Clears the text screen and puts the cursor in the upper left corner.
; Uses: AF, DE
clear_text_screen:
        LD A,HOME
        CALL print_entry
        LD A,CLEAR_TO_END
        JP print_entry
