; The words of the graphics screen: FCOLOUR, FCLS, PLOT, NPLOT, CIRCLE, CPOINT.
;
; Statements take HL at the first character behind the word, A that character with the flags of
; next_character, and return HL at the end of the statement. They use all registers but SP. A point
; is a pair of registers with the row above the column: D row, E column. A pattern is a colour
; repeated in the four pixels of a byte: 00, 55, AA, FF for colours 1 to 4.

PLOT_WIDTH      EQU COLUMNS * 4

; A comma and a colour, or the colour alone, 1 to 4.
; In:   HL text
; Out:  A pattern, HL behind it
; Uses: AF, BC, DE
comma_colour:
        RST 08h
        DEFB ','
get_colour:
        CALL choice_of_four
        JP colour_pattern

; Number from 0 on.
; In:   HL text, C what it must be below
; Out:  A number, HL behind it, BC kept; FC error out of range
; Uses: F, DE
get_limited:
        PUSH BC
        CALL get_byte
        JR check_choice

; Number from 1 on: up to 4, behind a comma, or neither.
; In:   HL text, C greatest value
; Out:  A number - 1, HL behind it, BC kept; FC error out of range
; Uses: F, DE
choice_of_four:
        LD C,4
        JR get_choice
comma_choice:
        RST 08h
        DEFB ','
get_choice:
        PUSH BC
        CALL get_byte
        DEC A
check_choice:
        POP BC
        CP C
        RET C
        JP error_fc

; Point of the graphics screen, "x,y".
; In:   HL text
; Out:  D row, E column, HL behind it; FC error outside the screen
; Uses: AF, BC
get_point:
        LD BC,GRAPHICS_ROWS * 256 + PLOT_WIDTH
; The same for a screen of B rows, C columns.
get_pair:
        CALL get_limited
        PUSH AF
        LD C,B
        RST 08h
        DEFB ','
        CALL get_limited
        POP DE
        LD E,D
        LD D,A
        RET

; FCOLOUR n. The word ends before the R, which a listing may have.
stmt_fcolour:
        CP 'R'
        JR NZ,_colour
        DEC HL
        LD A,(HL)
        INC HL
        CP WORD_FCOLOU          ; an R behind a blank is a variable
        JR NZ,_colour
        RST 10h
_colour:
        CALL get_colour
        LD (DRAW_COLOUR),A
        RET

; FCLS [n]: without a colour the background.
stmt_fcls:
        LD A,0
        CALL NZ,get_colour
        PUSH HL
        CALL fill_pattern
        POP HL
        RET

; NPLOT x,y [TO x,y ...] and PLOT: the same in the background colour and in the chosen one.
stmt_nplot:
        XOR A
        JR plot_points
stmt_plot:
        LD A,(DRAW_COLOUR)
plot_points:
        CALL set_pen
        CALL get_point
        LD (LAST_POINT),DE
        CALL draw_pixel
_more:
        LD A,(HL)
        CP TOKEN_TO
        RET NZ
        RST 10h
        CALL get_point
        PUSH HL
        LD HL,(LAST_POINT)
        LD (LAST_POINT),DE
        CALL draw_line
        POP HL
        JR _more

; In:   A pattern to draw with from now on, replacing what is there
set_pen:
        LD C,0FFh
set_pen_mode:
        LD (PEN),A
        LD A,C
        LD (PEN_MODE),A
        RET

; CIRCLE x,y,r: what lies outside the screen is left out.
stmt_circle:
        LD A,(DRAW_COLOUR)
        CALL set_pen
        CALL get_point
        LD (CENTRE),DE
        CALL comma_byte         ; leaves no carry
        PUSH HL
        LD B,A                  ; the point of the octant: B from the radius down, C from 0 up
        LD C,0
        LD D,C
        LD E,A
        LD HL,1
        SBC HL,DE               ; negative while the point lies within the circle
_octants:
        PUSH HL
        CALL _exchange
        CALL _exchange
        POP HL
        LD A,B
        OR A
        JR Z,_done              ; radius 0
        LD D,0
        BIT 7,H
        JR NZ,_within
        DEC B
        LD E,B
        SBC HL,DE
        SBC HL,DE
_within:
        INC C
        LD E,C
        ADD HL,DE
        ADD HL,DE
        INC HL
        LD A,B
        CP C
        JR NC,_octants
_done:
        POP HL
        RET

; Exchanges B and C and draws the four points that differ from the centre by B columns and C rows.
_exchange:
        LD A,B
        LD B,C
        LD C,A
        LD HL,(CENTRE)
        LD A,H
        ADD A,C
        CALL NC,_row
        LD A,H
        SUB C
        RET C
_row:
        LD D,A
        LD A,L
        ADD A,B
        LD E,A
        CALL NC,draw_pixel
        LD A,L
        SUB B
        RET C
        LD E,A
; Draws a pixel with the pen; nothing happens outside the screen.
; In:   D row, E column
; Uses: AF
draw_pixel:
        PUSH HL
        PUSH BC
        CALL pixel_address
        JR NC,_outside
        LD A,(PEN_MODE)
        AND (HL)
        LD B,A
        LD A,(PEN)
        XOR B
        AND C
        XOR (HL)
        LD (HL),A
_outside:
        POP BC
        POP HL
        RET

; Place of a pixel.
; In:   D row, E column
; Out:  HL address, C mask of its two bits, carry; no carry outside the screen
; Uses: AF, B
pixel_address:
        LD A,D
        CP GRAPHICS_ROWS
        RET NC
        LD A,E
        CP PLOT_WIDTH
        RET NC
        LD H,0
        LD L,D
        LD B,H
        LD C,D
        ADD HL,HL
        ADD HL,HL
        ADD HL,BC               ; row * 5
        ADD HL,HL
        ADD HL,HL
        ADD HL,HL
        RRCA
        RRCA
        AND 3Fh
        LD C,A
        LD B,HIGH GRAPHICS_SCREEN
        ADD HL,BC
        LD A,E
        AND 3
        LD B,A
        INC B
        LD A,3
_shift:
        RRCA
        RRCA
        DJNZ _shift
        LD C,A
        SCF
        RET

; Draws a line. The point moves one pixel along the longer side at each step, and along the shorter
; one whenever the error runs out.
; In:   D row, E column of one end, H and L of the other, both on the screen
; Uses: AF, BC, DE, HL
draw_line:
        LD BC,1
        LD A,L
        SUB E
        JR NC,_right
        NEG
        DEC BC
        DEC BC
_right:
        LD (STEP_MINOR),BC
        LD L,A                  ; columns
        LD BC,100h
        LD A,H
        SUB D
        JR NC,_down
        NEG
        LD B,0FFh
_down:
        LD (STEP_MAJOR),BC
        LD H,A                  ; rows
        CP L
        JR NC,_steep
        LD H,L
        LD L,A
        PUSH HL
        LD HL,(STEP_MINOR)
        LD (STEP_MAJOR),HL
        LD (STEP_MINOR),BC
        POP HL
_steep:
        LD B,H                  ; H longer side, L shorter side
        INC B
        LD C,H
        SRL C                   ; error
_pixel:
        CALL draw_pixel
        LD A,C
        SUB L
        PUSH HL
        JR NC,_straight
        ADD A,H
        LD HL,(STEP_MINOR)
        ADD HL,DE
        EX DE,HL
_straight:
        LD C,A
        LD HL,(STEP_MAJOR)
        ADD HL,DE
        EX DE,HL
        POP HL
        DJNZ _pixel
        RET

; CPOINT(x,y): colour of a pixel, 1 to 4.
func_cpoint:
        RST 08h
        DEFB '('
        CALL get_point
        RST 08h
        DEFB ')'
        PUSH HL
        CALL pixel_address
        LD A,(HL)
_shift:
        RLCA
        RLCA
        RLC C
        RLC C
        JR NC,_shift            ; until the mask has come round
        AND 3
        INC A
        JP byte_result
