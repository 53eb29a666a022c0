; Functions of strings.

func_str:
        CALL check_number
        CALL format_number
        PUSH HL
        XOR A
        LD B,A
        LD C,A
        CPIR
        LD A,C
        CPL                     ; without the 0
        CALL make_string
        POP HL
        LDIR
        JP push_string

; VAL(text): reads the number from a copy that a 0 ends, in the free space.
func_val:
        CALL take_string
        CP VAL_LENGTH
        JR C,_fits
        LD A,VAL_LENGTH
_fits:
        LD C,A
        LD B,0
        EX DE,HL
        LD DE,(FREE_SPACE)
        PUSH DE
        CALL copy_bytes
        XOR A
        LD (DE),A
        POP HL
        JP parse_number
VAL_LENGTH      EQU 40

; LEFT$(text, length), RIGHT$(text, length), MID$(text, start [, length])
; In:   HL text behind the word
; Out:  HL behind, result in the accumulator
func_left:
        CALL string_and_byte
        JR close_part           ; D = 0
func_right:
        CALL string_and_byte
        POP BC
        PUSH BC
        LD A,(BC)
        SUB E
        JR C,close_part
        LD D,A
        JR close_part
func_mid:
        CALL string_and_byte
        OR A
        JR Z,out_of_values
        LD D,A
        DEC D
        LD E,255
        LD A,(HL)
        CP ','
        JR NZ,close_part
        PUSH DE
        RST 10h
        CALL get_byte
        POP BC
        LD D,B
close_part:
        RST 08h
        DEFB ')'
        POP BC
; BC descriptor, D characters to leave out, E length of the part
        PUSH HL
        PUSH BC
        LD A,(BC)
        SUB D
        JR NC,_inside
        XOR A
        LD D,A
_inside:
        CP E
        JR C,_rest
        LD A,E
_rest:
        PUSH DE
        CALL make_string        ; may move the characters, not the descriptor
        POP HL
        EX (SP),HL
        CALL release
        CALL following_word
        POP AF
        ADD A,L
        LD L,A
        ADC A,H
        SUB L
        LD H,A
        CALL copy_bytes
        JP string_made

; Reads '(' text ',' byte.
; Out:  descriptor on the stack, E byte, D = 0
; Uses: all
string_and_byte:
        RST 08h
        DEFB '('
        CALL eval_text
        POP BC
        LD DE,(ACCUMULATOR)
        PUSH DE
        PUSH BC
        JP comma_byte

out_of_values:
        JP error_fc

func_len:
        CALL take_string
byte_value:
        JP set_byte

func_asc:
        CALL first_character
        JR byte_value

; Out:  A first character of the string in the accumulator, Z; FC error if it has none
first_character:
        CALL take_string
        OR A
        JR Z,out_of_values
        LD A,(DE)
        CP A
        RET

func_chr:
        CALL value_byte
; A string of equal characters, as the value.
; In:   A character, C length unless it is 1
; Out:  HL kept
character_string:
        LD C,1
equal_characters:
        PUSH HL
        JR fill_string

; STRING$(length, code or text)
func_string:
        RST 08h
        DEFB '('
        CALL get_byte
        PUSH DE
        RST 08h
        DEFB ','
        CALL eval
        RST 08h
        DEFB ')'
        EX (SP),HL              ; L length
        PUSH HL
        RST 20h
        CALL Z,first_character
        CALL NZ,value_byte
        POP BC
; In:   A character, C length, the text pointer on the stack
fill_string:
        PUSH AF
        LD A,C
        CALL make_string
        POP AF
        INC C
_next:
        DEC C
        JR Z,_end
        LD (DE),A
        INC DE
        JR _next
_end:
        JP string_made

; INSTR([start,] text, part): place of the part in the text, 0 if it is not there
func_instr:
        RST 08h
        DEFB '('
        CALL eval
        LD DE,1
        RST 20h
        JR Z,_text
        CALL value_byte
        OR A
        JR Z,out_of_values
        PUSH DE
        RST 08h
        DEFB ','
        CALL eval_text
        POP DE
_text:
        PUSH DE
        LD DE,(ACCUMULATOR)
        PUSH DE
        RST 08h
        DEFB ','
        CALL eval_string
        LD C,A                  ; C length and DE characters of the part
        RST 08h
        DEFB ')'
        EX (SP),HL
        LD B,(HL)
        CALL release
        CALL following_word
        EX DE,HL                ; B length and DE characters of the text, HL of the part
        POP IX
        EX (SP),IX              ; IXL start, IXH = 0 counts the places
_try:
        INC IXH
        LD A,B
        OR A
        JR Z,_none
        CP C
        JR C,_none
        LD A,IXH
        CP IXL
        JR C,_next              ; before the start
        PUSH HL
        PUSH DE
        PUSH BC
        LD B,C
        INC B
        JR _count
_compare:
        LD A,(DE)
        CP (HL)
        JR NZ,_differ
        INC HL
        INC DE
_count:
        DJNZ _compare
        XOR A                   ; found
_differ:
        POP BC
        POP DE
        POP HL
        LD A,IXH
        JR Z,_end
_next:
        INC DE
        DEC B
        JR _try
_none:
        XOR A
_end:
        JP byte_result
