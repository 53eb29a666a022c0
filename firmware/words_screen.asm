; The words of the text screen: SET, RESET, POINT, COLOUR, CHAR, BGRD, NBGRD. screen.asm has CLS.

LATCH_CHARACTERS EQU 18h        ; bits of port FF: character set
LATCH_COLOUR    EQU 0C0h        ; which background
LATCH_BACKGROUND EQU 04h        ; background shown

BLOCK_ROWS      EQU ROWS * 3
BLOCK_COLUMNS   EQU COLUMNS * 2
FIRST_BLOCK     EQU 80h         ; 80-BF: blocks of two by three

; COLOUR n: 1 to 16, colour of the text written from now on.
stmt_colour:
        LD C,16
        CALL get_choice
        LD (TEXT_COLOUR),A
        RET

; CHAR n: where the shapes of 80-BF and C0-FF come from: 1 both from the character RAM, 2 C0-FF
; from the character generator, 3 80-BF from it, 4 both from it.
stmt_char:
        CALL choice_of_four
        ADD A,A
        ADD A,A
        ADD A,A
        LD C,255 - LATCH_CHARACTERS
        JR change_latch

; NBGRD, and BGRD [n] with n 1 to 4 for another background colour than the last.
stmt_nbgrd:
        XOR A                   ; Z, as BGRD alone
        DEFB 1                  ; LD BC, over the next instruction
stmt_bgrd:
        LD A,LATCH_BACKGROUND
        LD C,255 - LATCH_BACKGROUND
        JR Z,change_latch
        CALL choice_of_four
        RRCA
        RRCA
        OR LATCH_BACKGROUND
        LD C,255 - LATCH_COLOUR - LATCH_BACKGROUND
; Changes bits of port FF.
; In:   A new bits, C mask of the bits that stay
; Uses: AF, B
change_latch:
        LD B,A
        LD A,(LATCH_COPY)
        XOR B
        AND C                   ; differences within the mask only
        XOR B
        JP write_latch

; SET(x,y) and RESET(x,y): x 0 to 79, y 0 to 71 or 74. A block takes the text colour.
stmt_set:
        CALL get_block
        OR C
        JR store_block
stmt_reset:
        CALL get_block
        OR C
        XOR C
; Stores a character and its colour.
; In:   A character, DE cell
; Uses: AF, D
store_block:
        LD (DE),A
        LD A,D
        ADD A,TO_COLOUR
        LD D,A
        LD A,(TEXT_COLOUR)
        LD (DE),A
        RET

; POINT(x,y): -1 for a block that is set, 0 for one that is not.
func_point:
        CALL get_block
        AND C
        PUSH HL
        CALL truth
        POP HL
        RET

; Block of the text screen, "(x,y)".
; In:   HL text
; Out:  DE cell, A its character or an empty block when that is none, C bit of the block, HL behind
;       the bracket
; Uses: AF, B
get_block:
        RST 08h
        DEFB '('
        LD BC,BLOCK_ROWS * 256 + BLOCK_COLUMNS
        CALL get_pair
        RST 08h
        DEFB ')'
        PUSH HL
        LD HL,TEXT_SCREEN - COLUMNS
        LD A,D
        LD D,0
        LD BC,COLUMNS
_row:
        ADD HL,BC
        SUB 3
        JR NC,_row
        ADD A,3                 ; row within the cell
        SRL E
        RLA                     ; two blocks in a row
        ADD HL,DE
        EX DE,HL
        POP HL
        CALL bit_mask
        LD C,A
        LD A,(DE)
        CP FIRST_BLOCK
        JR C,_none
        CP FIRST_BLOCK + 40h
        RET C
_none:
        LD A,FIRST_BLOCK
        RET
