; Lines in and text out.

; 0040: Reads a line with its editing: cursor left erases a character, SHIFT and cursor left the
; whole line, cursor right advances to the next eighth column, CLEAR clears the screen and starts
; the line anew. A function key types its text. A line feed ends the line as Enter does, for text
; that is typed from a file.
; In:   HL buffer of B + 1 bytes, B characters at most
; Out:  HL buffer, the line in it ended by 0D; B characters; carry if BREAK ended it
; Uses: AF, BC, DE
read_line:
        PUSH HL
_restart:
        LD C,0
_next:
        CALL typed_character
        CP RETURN
        JR Z,_enter
        CP LINE_FEED
        JR Z,_enter
        CP BREAK
        JR Z,_break
        CP BACKSPACE
        JR Z,_backspace
        CP ERASE_LINE
        JR Z,_erase
        CP CLEAR_TO_END
        JR Z,_clear
        CP TAB
        JR Z,_tab
        CP ' '
        JR C,_next
        CALL _store
        JR _next
_erase:
        CALL _remove
        JR NZ,_erase
_backspace:
        CALL _remove
        JR _next
_clear:
        CALL clear_text_screen
        POP HL
        PUSH HL
        JR _restart
_tab:
        LD A,' '
        CALL _store
        LD A,C
        CP B
        JR NC,_next
        AND 7
        JR NZ,_tab
        JR _next
_break:
        SCF
_enter:                         ; no carry: the comparison was equal
        PUSH AF
        LD A,RETURN
        LD (HL),A
        CALL print_entry
        LD B,C
        POP AF
        POP HL
        RET

; Stores and shows a character while there is room.
; In:   A character, HL place, B room in all, C characters so far
_store:
        LD D,A
        LD A,C
        CP B
        RET NC
        LD (HL),D
        INC HL
        INC C
        LD A,D
        JP print_entry

; Takes the last character back.
; Out:  Z when there was none
_remove:
        LD A,C
        OR A
        RET Z
        DEC C
; Out:  HL one less, NZ
step_back:
        DEC HL
        LD A,BACKSPACE
        CALL print_entry
        OR H
        RET

; 28A7: Text to the device.
; In:   HL text, ended by 0
; Out:  HL behind it
; Uses: AF
print_text:
put_text:
        LD A,(HL)
        INC HL
        OR A
        RET Z
        CALL put_character
        JR print_text
