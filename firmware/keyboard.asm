; The keyboard: eight rows at F801, F802, F804 ... F880, a set bit is a key held down. Row 7 has
; the keys that change others: SHIFT, MOD SEL, RPT, CTRL.

SHIFT_KEYS      EQU KEYBOARD + 80h
SHIFT_BIT       EQU 0
MODE_BIT        EQU 1
REPEAT_BIT      EQU 3
CONTROL_BIT     EQU 4

; In scans, and a scan comes every 2 ms while the machine waits for a key: half a second, then
; fifteen a second.
FIRST_REPEAT    EQU 250
NEXT_REPEAT     EQU 30
BETWEEN_SCANS   EQU 170         ; delay counts of 12 us
DEBOUNCE        EQU 420         ; 5 ms: contacts are quiet by then

; The driver of the keyboard. One new key is reported at each call, the others of the same moment
; at the next ones. A key held down repeats.
; Out:  A character, 0 for none
; Uses: AF, BC, DE, HL
scan_keyboard:
        LD HL,KEY_ROWS
        LD BC,KEYBOARD + 1
_row:
        LD A,(BC)
        LD E,A
        XOR (HL)
        AND E                   ; down now and not before
        JR NZ,key_pressed
        LD (HL),E
        INC L
        RLC C
        JP P,_row               ; all but row 7

; No new key: the last one may still be held.
        LD A,(KEY_HELD_ROW)
        OR A
        RET Z
        LD C,A
        LD A,(BC)
        LD HL,KEY_HELD_BIT
        AND (HL)
        JR NZ,_held
        LD (KEY_HELD_ROW),A
        RET
_held:
        INC L
        INC L                   ; KEY_REPEAT
        LD A,(SHIFT_KEYS)
        BIT REPEAT_BIT,A
        JR Z,_count
        LD A,(HL)
        CP NEXT_REPEAT
        JR C,_count
        LD (HL),NEXT_REPEAT     ; the RPT key: no half second
_count:
        XOR A
        DEC (HL)
        RET NZ
        LD (HL),NEXT_REPEAT
        DEC L
        LD A,(HL)               ; KEY_HELD_CODE
        RET

; In:   A new keys of a row, E keys of the row, HL its place in the work area, BC its address
key_pressed:
        LD D,A
        NEG
        AND D
        LD D,A                  ; the lowest of them
        PUSH BC
        LD BC,DEBOUNCE
        CALL delay
        POP BC
        LD A,(BC)
        AND D
        RET Z                   ; a disturbance, A = 0
        LD A,(HL)
        AND E
        OR D
        LD (HL),A
        LD E,C
        LD (KEY_HELD_ROW),DE    ; and KEY_HELD_BIT
; The shift keys are read right behind the key's own row: a host that supplies SHIFT for a
; character does so after that row was read.
        LD A,(SHIFT_KEYS)
        LD C,A
        LD A,L
        ADD A,A
        ADD A,A
        ADD A,A
        SUB LOW (KEY_ROWS * 8 + 1)
_column:
        INC A                   ; row * 8 + column
        RRC D
        JR NC,_column
        CALL key_code
        CALL change_code
        LD HL,KEY_REPEAT
        LD (HL),FIRST_REPEAT
        DEC L
        LD (HL),A               ; KEY_HELD_CODE
        RET

; CTRL makes control codes 00-1F of 40-7F. MOD SEL makes the graphics characters: 80-BF of 40-7F
; and C0-DF of 20-3F. Function keys stay what they are.
; In:   A code, C row of the shift keys
; Out:  A code
change_code:
        CP ' '
        RET C
        CP FIRST_FKEY
        RET NC
        BIT MODE_BIT,C
        JR NZ,_graphics
        BIT CONTROL_BIT,C
        RET Z
        CP 40h
        RET C
        AND 1Fh
        RET
_graphics:
        CP 40h
        JR NC,_letter
        ADD A,60h
_letter:
        ADD A,40h
        RET

; What a key gives. Letters come as capitals, which is what BASIC is written in; SHIFT gives the
; small ones. 0 to 9 are followed by : and ;, and , - . / stand where their codes are in the row of
; the table that ASCII gives them.
; In:   A row * 8 + column, C row of the shift keys
; Out:  A code
; Uses: F, DE, HL
key_code:
        SUB OTHER_KEYS
        JR C,_letter
        CP FIRST_DIGIT - OTHER_KEYS
        JR C,_special
        SUB FIRST_DIGIT - OTHER_KEYS - '0'
        CP '<'
        JR C,_code              ; 0 to 9, : and ;
        CP '@'
        JR C,_mark
        SUB '@' - FIRST_DIGIT + OTHER_KEYS
_special:
        LD E,A
        LD D,0
        LD HL,special_keys
        ADD HL,DE
        LD A,(HL)
        JR _code
_letter:
        ADD A,'@' + OTHER_KEYS
        DEFB 11h                ; LD DE, over the next instruction
_mark:
        SUB '<' - ','
_code:
        BIT SHIFT_BIT,C
        RET Z
        CP '0'
        RET Z
        CP FIRST_FKEY
        JR NC,_function
        CP '@'
        JR NC,_small
        CP ','
        JR NC,_other
        CP BACKSPACE
        RET C
        CP LINE_FEED + 1
        RET NC
_other:
        XOR 10h + 'a' - 'A'     ; ! for 1, < for comma, the cursor keys
_small:
        XOR 'a' - 'A'
        CP '['+ 'a' - 'A'       ; cursor up
        RET NZ
        LD A,ESCAPE
        RET
_function:
        ADD A,4
        RET

OTHER_KEYS      EQU 27          ; behind @ and the letters
FIRST_DIGIT     EQU 32
; From OTHER_KEYS on, without the digits and marks.
special_keys:
        DEFB 0, FIRST_FKEY, FIRST_FKEY + 1, FIRST_FKEY + 2, FIRST_FKEY + 3
        DEFB RETURN, CLEAR_TO_END, BREAK, '[', LINE_FEED, BACKSPACE, TAB, ' '

; 0049: Waits for a key.
; Out:  A character
; Uses: AF, DE
wait_for_key:
        CALL key_entry          ; by way of 002B, where text may be typed in
        OR A
        RET NZ
        PUSH BC
        LD BC,BETWEEN_SCANS
        CALL delay
        POP BC
        JR wait_for_key
