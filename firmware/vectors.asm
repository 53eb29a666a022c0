; 0000: restarts, the published entries at the bottom, what the restarts do; and between the entries
; what is short enough for these places.

        DI                      ; 0000: power on
        JP cold_start
; STOP
stmt_stop:
        RET NZ
        JP stop_run

; The restarts go through RAM, so that programs may take them over.
        fill_to 0008h
        JP VECTORS              ; syntax check
; Out:  Z if A ends a statement
end_of_statement:
        OR A
        RET Z
        CP ':'
        RET
        fill_to 0010h
        JP VECTORS + 3          ; next character
; A lozenge, what SHAPE draws after power on.
first_shape:
        DEFB 23h, 25h, 27h, 21h, 0
        fill_to 0018h
        JP VECTORS + 6          ; compare HL with DE
in_text:
        DEFM " IN "
        DEFB 0
        fill_to 0020h
        JP VECTORS + 9          ; type test
mismatch_text:
        DEFM "BAD"
        DEFB 0
        fill_to 0028h
        JP VECTORS + 12

; Keyboard scan. These five bytes are replaced as a whole by a program that types text, so they
; hold nothing that another routine needs. The last call through the replacement finds these bytes
; back behind its own first two, so the third one returns.
key_entry:
        JR call_keyboard        ; 002B
        RET

        fill_to 0030h
        JP VECTORS + 15
print_entry:
        JP call_screen          ; 0033
        fill_to 0038h
        JP VECTORS + 18         ; interrupt in mode 1
        JP call_printer         ; 003B

        fill_to 0040h
        JP read_line
; RST 18: Compares HL with DE.
; Out:  Z, carry as of HL - DE
; Uses: AF
compare_words:
        LD A,H
        SUB D
        RET NZ
        LD A,L
        SUB E
        RET
        fill_to 0049h
        JP wait_for_key

; 002B: Character of a key newly pressed, through the driver in the keyboard's control block.
; Out:  A character, 0 for none
; Uses: AF, DE
call_keyboard:
        PUSH HL
        LD HL,(KEYBOARD_DRIVER)
        JP call_driver

; Byte from the cassette, for loops that a tape may keep going for ever.
; Out:  A
; Uses: F
next_byte:
        CALL check_break
        JP read_byte

; The BREAK key ends a statement.
; Uses: AF
check_break:
        CALL test_break
        RET Z
        JP break_statement

; 0060: Delay of 26 T states for each count; code in ROM runs without wait states.
; In:   BC count, 0 counts as 65536
; Uses: AF, BC
        fill_to 0060h
delay:
        DEC BC
        LD A,B
        OR C
        JR NZ,delay
; RST 28 and RST 30 belong to the program that takes them. RST 38: An interrupt that nobody expected
; must not come again before its cause is served, so interrupts stay off.
unused_restart:
        RET

        fill_to 0066h
        JP reset_key            ; non-maskable interrupt

; RST 08: The character at HL must be the one that follows the RST; goes on to the next one.
; In:   HL text
; Out:  as next_character; does not return when the character differs
check_syntax:
        LD A,(HL)
        EX (SP),HL
        CP (HL)
        INC HL
        EX (SP),HL
        JP NZ,error_sn
; RST 10: Next character of a program text, blanks and control codes skipped.
; In:   HL text
; Out:  HL at the character, A character, carry if it is a digit, Z at the end of a statement
next_character:
        INC HL
        LD A,(HL)
        CP ':'
        RET NC
        CP ' '
        JR Z,next_character
        CP LINE_FEED + 1
        JR NC,_digit
        CP TAB
        JR NC,next_character
_digit:
        CP '0'
        CCF
        INC A                   ; Z for the 0 that ends a line, carry kept
        DEC A
        RET

; RST 20: Type of the accumulator.
; Out:  A type - 3; integer M, string Z, single PO, double NC
; Uses: AF
test_type:
        LD A,(NUMBER_TYPE)
        SUB TYPE_STRING
        CP TYPE_DOUBLE - TYPE_STRING
        JR Z,_double
        OR A
        SCF
        RET
_double:
        OR A
        RET

; First contents of 4000-402C: the jumps of the restarts, then the control blocks of the devices:
; type, driver address, three bytes for the driver, two letters.
first_vectors:
        JP check_syntax
        JP next_character
        JP compare_words
        JP test_type
        JP unused_restart
        JP unused_restart
        JP unused_restart
        DEFB 1
        DEFW scan_keyboard
        DEFB 0,0,0
        DEFM "KI"
        DEFB 7
        DEFW display_character
        DEFW TEXT_SCREEN        ; cursor
        DEFB '_'                ; cursor shown
        DEFM "DO"
        DEFB 6
        DEFW print_character
        DEFB 67,0,0             ; lines of a page
        DEFM "PR"
first_vectors_end:
