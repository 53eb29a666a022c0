; The text screen: 40 columns from 4400, a colour nibble for each cell from F000.

; 0033: Character to the screen, through the driver in the screen's control block.
; In:   A character or control code
; Uses: AF, DE
call_screen:
        PUSH HL
        LD HL,(SCREEN_DRIVER)
; Calls the driver of a device.
; In:   A character, HL driver; HL of the caller on the stack
; Out:  A what the driver gives
; Uses: AF, DE
call_driver:
        PUSH BC
        LD C,A                  ; a driver finds the character in A and in C
        CALL call_hl
        POP BC
        POP HL
        RET

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
        LD D,H
        LD E,L
        CALL store_block
        INC HL
; Moves the cursor to HL; behind the last row the screen scrolls first.
scroll_to_cursor:
        LD DE,SCREEN_END
        RST 18h
        CALL NC,scroll
; Moves the cursor to HL. Uses AF, C.
; The controller takes the address as the processor sees it.
set_cursor:
        LD (CURSOR),HL
        LD C,H
        LD A,CRTC_CURSOR_HIGH
        CALL write_crtc
        LD C,L
        LD A,CRTC_CURSOR_LOW
; In:   A register of the controller, C value
write_crtc:
        OUT (CRTC_REGISTER),A
        LD A,C
        OUT (CRTC_DATA),A
        RET

; Obeys a control code.
; In:   A code below 20, HL cursor
obey_control:
        SUB BACKSPACE
        RET C
        LD E,A
        LD D,0
        PUSH HL
        LD HL,control_table
        ADD HL,DE
        LD E,(HL)
        LD HL,ignore_code
        ADD HL,DE
        EX (SP),HL              ; act with HL = cursor
ignore_code:
        RET

; Distances from ignore_code.
control_table:
        DEFB erase_backwards - ignore_code       ; 08
        DEFB 0                  ; 09
        DEFB new_line - ignore_code              ; 0A
        DEFB 0                  ; 0B
        DEFB 0                  ; 0C
        DEFB new_line - ignore_code              ; 0D
        DEFB show_cursor - ignore_code           ; 0E
        DEFB switch_cursor_off - ignore_code     ; 0F
no_value:                       ; eight zeros, which serve as the value of an unknown variable, too
        DEFB 0                  ; 10
        DEFB 0                  ; 11
        DEFB 0                  ; 12
        DEFB 0                  ; 13
        DEFB 0                  ; 14
        DEFB 0                  ; 15
        DEFB 0                  ; 16
        DEFB 0                  ; 17
        DEFB cursor_left - ignore_code           ; 18
        DEFB cursor_right - ignore_code          ; 19
        DEFB cursor_down - ignore_code           ; 1A
        DEFB cursor_up - ignore_code             ; 1B
        DEFB cursor_home - ignore_code           ; 1C
        DEFB cursor_to_start - ignore_code       ; 1D
        DEFB erase_line_end - ignore_code        ; 1E
        DEFB erase_screen_end - ignore_code      ; 1F

erase_backwards:
        CALL cursor_left
        LD (HL),' '
        RET

new_line:
        CALL next_row
        JR scroll_to_cursor

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
        JR write_crtc

; Cursor movements stop at the ends of the screen, only the new line scrolls.
cursor_left:
        LD DE,TEXT_SCREEN
        RST 18h
        RET Z
        DEC HL
        JR set_cursor
cursor_right:
        INC HL
        JR scroll_to_cursor
cursor_down:
        LD DE,COLUMNS
        ADD HL,DE
        LD DE,SCREEN_END
        RST 18h
        RET NC
        JR set_cursor
cursor_to_start:
        CALL next_row
cursor_up:
        LD DE,-COLUMNS
        ADD HL,DE
        LD A,H
        CP HIGH TEXT_SCREEN
        RET C
        JR set_cursor
cursor_home:
        LD HL,TEXT_SCREEN
        JP set_cursor

erase_line_end:
        CALL next_row
        JR erase_to
erase_screen_end:
        EX DE,HL
        LD HL,SCREEN_END
; DE first cell, HL the one after the last
erase_to:
        OR A
        SBC HL,DE
        RET C
        RET Z
        LD B,H
        LD C,L
        EX DE,HL
; Erases cells, which take the text colour.
; In:   HL first cell, BC cells, not 0
; Uses: AF, BC, DE, HL
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
        CALL next_row
        LD A,E
        ADD A,COLUMNS
        SUB L
        RET

; First cell of the next row.
; In:   HL cell
; Out:  HL first cell of the row below the one it stands in, DE cell
; Uses: AF
next_row:
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
        POP BC
        RET

; Moves text and colours up by one row and clears the last one.
; Out:  HL last row
; Uses: AF, BC, DE
scroll:
        LD HL,COLOUR_RAM + COLUMNS
        LD DE,COLOUR_RAM
        LD BC,LAST_ROW - TEXT_SCREEN
        LDIR
        LD HL,TEXT_SCREEN + COLUMNS
        LD DE,TEXT_SCREEN
        LD BC,LAST_ROW - TEXT_SCREEN
        LDIR
        EX DE,HL                ; last row
        LD C,COLUMNS
        PUSH HL
        CALL erase_cells
        POP HL
        RET

; 01C9 and CLS: Clears the text screen and puts the cursor in the upper left corner.
; Uses: AF, DE
stmt_cls:
clear_text_screen:
        LD A,HOME
        CALL print_entry
        LD A,CLEAR_TO_END
        JP print_entry
