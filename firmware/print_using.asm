; PRINT USING format; values
;
; # a digit, + and - signs, ** and $$ what fills the field and stands before the number, a comma
; between thousands, ^^^^ an exponent; ! the first character of a text, % blanks % as many of them
; as the field is long. Other characters are printed. The format starts again when there are more
; values than fields.

USING_LENGTH    EQU 81          ; most of a field: with the digits of 1E38 a signed byte counts them
ARROW           EQU 5Bh         ; the character of ^^^^, the key of the arrow

; In:   HL at the word USING
print_using:
        RST 10h
        CALL eval_text
        RST 08h
        DEFB ';'
        EX DE,HL
        LD HL,(ACCUMULATOR)
        LD (USING_FORMAT),HL
        EX DE,HL
        XOR A
        LD (USING_PLACE),A
_value:
        CALL eval
        PUSH HL
        CALL print_field
        POP HL
        LD A,(HL)
        CALL end_of_statement
        LD DE,print_last_row
        JR Z,_close
        CP ','
        JR Z,_separator
        CP ';'
        JP NZ,error_sn
_separator:
        RST 10h
        JR NZ,_value
        LD DE,print_end
; Prints what stands before the next field, gives up the format and goes on at DE.
_close:
        PUSH DE
        PUSH HL
        CALL find_field
        LD HL,(USING_FORMAT)
        CALL release
        POP HL
        RET

; Prints the value in the accumulator by the next field.
; Uses: all
print_field:
        LD A,(USING_PLACE)
        PUSH AF
        CALL find_field
        POP DE
        JR Z,_field
        LD A,D
        OR A
        JP Z,error_fc           ; a format without fields
        XOR A
        LD (USING_PLACE),A
        JR print_field
_field:
        LD A,(HL)
        LD C,1
        CP '!'
        JR Z,_text
        CP '%'
        JR NZ,_number
_blank:
        INC C
        CALL using_step
        CP '%'
        JR NZ,_blank
_text:
        CALL using_step
        CALL keep_place
        LD B,C                  ; length of the field
        CALL take_string
        LD C,A
_character:
        LD A,C
        OR A
        LD A,' '
        JR Z,_put
        LD A,(DE)
        INC DE
        DEC C
_put:
        CALL put_character
        DJNZ _character
        RET
_number:
        CALL check_number
        LD DE,0                 ; D flags, E places before the point
        LD IYL,D                ; places behind it and one
        LD A,(HL)
        CP '+'
        JR NZ,_asterisks
        SET USING_PLUS,D
        CALL using_step
_asterisks:
        CP '*'
        JR NZ,_dollars
        SET USING_ASTERISKS,D
        LD E,2
        CALL using_step
        CALL using_step
        CP '$'
        JR Z,_dollar
_dollars:
        CP '$'
        JR NZ,_digits
        INC E
        CALL using_step
_dollar:
        SET USING_DOLLAR,D
        JR _digit
_comma:
        SET USING_COMMAS,D
_place:
        INC E
_digit:
        CALL using_step
_digits:
        CP ','
        JR Z,_comma
        CP '#'
        JR Z,_place
        CP '.'
        JR NZ,_exponent
_places:
        INC IYL
        CALL using_step
        CP '#'
        JR Z,_places
_exponent:
        LD C,4
        PUSH HL
        PUSH BC
_arrow:
        CP ARROW
        JR NZ,_no_arrow
        CALL using_step
        DEC C
        JR NZ,_arrow
        SET USING_EXPONENT,D
        POP AF
        POP AF
        JR _sign
_no_arrow:
        POP BC
        POP HL
_sign:
        BIT USING_PLUS,D
        JR NZ,_format
        CALL using_peek
        CP '-'
        JR Z,_behind
        CP '+'
        JR NZ,_format
        SET USING_PLUS,D
_behind:
        SET USING_BEHIND,D
        DEC B
_format:
        LD A,E
        ADD A,IYL
        CP USING_LENGTH + 1
        JP NC,error_fc
        CALL keep_place
        CALL format_using
        JP put_text

; Prints characters of the format up to its next field.
; Out:  Z if there is one: HL its first character, B characters of the format from there on
; Uses: AF, C, DE
find_field:
        LD HL,(USING_FORMAT)
        LD DE,(USING_PLACE)     ; E
        LD D,0
        LD A,(HL)
        SUB E
        LD B,A
        CALL following_word
        ADD HL,DE
_next:
        CALL using_peek
        JR Z,_end
        CALL starts_field
        RET Z
        LD A,(HL)
        CALL put_character
        INC HL
        DEC B
        JR _next
_end:
; In:   B characters left of the format
; Out:  NZ
; Uses: AF, HL
keep_place:
        LD HL,(USING_FORMAT)
        LD A,(HL)
        SUB B
        LD (USING_PLACE),A
        OR H
        RET

; The next character of the format.
; Out:  A character, or 0 at the end; HL, B moved on
using_step:
        INC HL
        DEC B
; The character of the format at HL.
; Out:  A character, or 0 and Z when none is left
using_peek:
        LD A,B
        OR A
        RET Z
        LD A,(HL)
        OR A
        RET

; In:   A character of the format at HL, B characters left
; Out:  Z if a field begins here
; Uses: AF, DE
starts_field:
        CP '!'
        RET Z
        CP '#'
        RET Z
        LD E,A
        PUSH HL
        PUSH BC
        CALL _look
        POP BC
        POP HL
        RET
_look:
        CALL using_step
        LD D,A                  ; what follows
        LD A,E
        CP '%'
        LD A,D
        JR Z,_blank
        CP E
        JR Z,_twice
        LD A,E
        CP '.'
        JR Z,_digit
        CP '+'
        RET NZ
        LD A,D
        CP '.'
        RET Z
_twice:
        CP '*'
        RET Z
        CP '$'
        RET Z
_digit:
        LD A,D
        CP '#'
        RET
_step:
        CALL using_step
_blank:
        CP ' '
        JR Z,_step
        CP '%'
        RET
