; The function keys: FKEY, and their texts.

FKEYS           EQU 8

; FKEY n = "text": text of key n, 1 to 8. A + at its end stands for Enter. The eight texts share 72
; characters; when they do not fit, the key is left without a text (OS error).
stmt_fkey:
        LD D,PREC_RELATION      ; the number ends before the sign of equality
        CALL eval_above
        CALL value_byte
        DEC A
        CP FKEYS
        JP NC,error_fc
        PUSH AF
        RST 08h
        DEFB TOKEN_EQUAL
        CALL eval_string
        LD C,A
        LD B,0
        POP AF
        PUSH HL
        PUSH DE                 ; the new text
        PUSH BC                 ; and its length
        CALL fkey_text
        LD D,H
        LD E,L
        XOR A
_old:
        CP (HL)
        INC HL
        JR NZ,_old
        DEC HL
        PUSH DE
        CALL _bytes_left
        LD C,A
        LDIR                    ; without the old text, its 0 stays
        LD A,FKEYS
        CALL fkey_text          ; behind the last text
        POP DE
        POP BC
        CALL _bytes_left
        CP C
        JP C,error_os
        PUSH DE
        PUSH BC
        LD A,L                  ; all within one page
        SUB E
        PUSH AF
        DEC HL
        LD A,L
        ADD A,C
        LD E,A
        LD D,H
        POP AF
        LD C,A
        LDDR                    ; a gap for the new one
        POP BC
        POP DE
        POP HL
        LD A,C
        OR A
        JR Z,_done
        LDIR
        DEC DE
        LD A,(DE)
        CP '+'
        JR NZ,_done
        LD A,RETURN
        LD (DE),A
_done:
        POP HL
        RET
_bytes_left:
        LD A,LOW FKEY_END
        SUB L
        RET

; Text of a function key.
; In:   A number of the key, 0 to 7; 8 for the byte behind all texts
; Out:  HL
; Uses: AF
fkey_text:
        PUSH BC
        LD B,A
        INC B
        LD HL,FKEY_TEXTS
        JR _key
_skip:
        LD A,(HL)
        INC HL
        OR A
        JR NZ,_skip
_key:
        DJNZ _skip
        POP BC
        RET

; Next character of a line: of a function key's text while there is one, else from the keyboard.
; Out:  A character
; Uses: AF, DE
typed_character:
        PUSH HL
_next:
        LD HL,(FKEY_NEXT)
        LD A,H
        OR A
        JR Z,_keyboard
        LD A,(HL)
        INC HL
        OR A
        JR NZ,_text
        LD H,A
_text:
        LD (FKEY_NEXT),HL
        JR Z,_next
        POP HL
        RET
_keyboard:
        CALL wait_for_key
        SUB FIRST_FKEY
        CP FKEYS
        JR C,_function
        ADD A,FIRST_FKEY
        POP HL
        RET
_function:
        CALL fkey_text
        CP A
        JR _text

; The texts after power on.
first_texts:
        DEFM "LIST"
        DEFB RETURN, 0
        DEFM "RUN"
        DEFB RETURN, 0
        DEFM "AUTO"
        DEFB RETURN, 0
        DEFM "EDIT "
        DEFB 0
        DEFM "CLOAD"
        DEFB RETURN, 0
        DEFM "CSAVE"
        DEFB STRING_QUOTE, 0
        DEFM "CONT"
        DEFB RETURN, 0
        DEFM "RENUM"
        DEFB RETURN, 0
first_texts_end:
