; PAINT and the shapes: SCALE, SHAPE, NSHAPE, XSHAPE.

; PAINT x,y,fill,border: fills the area around a point up to the pixels of the border colour. What
; has the fill colour already is a border too.
;
; A list of seeds on the stack: each is a point from which a span to both sides is filled, and each
; run of open pixels right above and below the span leaves a seed. OM error when the list would meet
; the variables. To the right, four pixels of one colour in one byte are looked at as one wide
; pixel; where a span ends within it, the rest of it belongs to the same run.
stmt_paint:
        CALL get_point
        PUSH DE
        CALL comma_colour
        LD (PEN),A
        CALL comma_colour
        LD (BORDER),A
        POP DE
        PUSH HL
        LD H,0FFh
        PUSH HL                 ; ends the list
_seed:
        CALL poll_statement
        CALL pixel_address
        CALL _is_open
        JR Z,_next_seed
_left:
        LD A,E
        OR A
        JR Z,_first
        DEC E
        RLC C
        RLC C
        JR NC,_same
        DEC HL
_same:
        CALL _is_open
        JR NZ,_left
        CALL _step_right
_first:
        LD (SPAN),A
_fill:
        CALL _unlike_pen
        XOR (HL)
        LD (HL),A
        CALL _step_right
        CP PLOT_WIDTH
        JR Z,_filled
        CALL _is_open
        JR NZ,_fill
        LD A,E
_filled:
        DEC A
        LD (SPAN + 1),A
        DEC D
        CALL _leave_seeds
        INC D
        INC D
        CALL _leave_seeds
_next_seed:
        POP DE
        LD A,D
        INC A
        JR NZ,_seed
        POP HL
        RET

; Leaves a seed for each run of open pixels beside the span.
; In:   D row; one outside the screen has none
; Out:  seeds on the stack, D kept
; Uses: AF, BC, E, HL, IX
_leave_seeds:
        POP IX
        LD A,(SPAN)
        LD E,A
        CALL pixel_address
        LD B,1                  ; else within a run
        JR NC,_end
_look:
        CALL _is_open
        JR NZ,_open
        LD B,2
_open:
        DJNZ _go_on
        CALL check_stack
        PUSH DE                 ; the first of a run
_go_on:
        CALL _step_right
        LD A,(SPAN + 1)
        CP E
        JR NC,_look
_end:
        JP (IX)

; In:   HL address, C mask of a pixel
; Out:  Z if it has the colour of the border or of the fill
; Uses: AF
_is_open:
        LD A,(BORDER)
        XOR (HL)
        AND C
        RET Z
_unlike_pen:
        LD A,(PEN)
        XOR (HL)
        AND C
        RET

; One pixel to the right.
; In, out: E column, HL address, C mask
; Out:  A column
; Uses: F
_step_right:
        LD A,E
        ADD A,4
        INC C
        JR Z,_byte
        DEC C
        INC E
        LD A,E
        RRC C
        RRC C
        RET NC
_byte:
        LD E,A
        INC HL
        LD A,(HL)
        RRCA
        RRCA
        XOR (HL)
        LD C,0FFh
        LD A,E
        RET Z
        LD C,0C0h
        RET

; SCALE n: every move of a shape is made n times, 1 to 255.
stmt_scale:
        LD C,255
        CALL get_choice
        INC A
        LD (SHAPE_SCALE),A
        RET

; SHAPE x,y draws a shape in the chosen colour, NSHAPE erases it, XSHAPE changes the pixels under it
; by exclusive-or with the colour, so that a second one takes it off again.
;
; The word at 4320 is the address of the shape: one byte for each move, ended by a byte whose count
; is 0. The pixel is drawn, then the point moves.
;   bits 2-0  direction: 0 up, then clockwise in eighths: 2 right, 4 down, 6 left
;   bits 6-3  count 1 to 15
;   bit 7     the pen is up: move without drawing
stmt_nshape:
        LD C,0FFh
        XOR A
        JR draw_shape
stmt_xshape:
        LD C,0
        DEFB SKIP_TWO
stmt_shape:
        LD C,0FFh
        LD A,(DRAW_COLOUR)
draw_shape:
        CALL set_pen_mode
        CALL get_point
        PUSH HL
        LD HL,(SHAPE_TABLE)
_move:
        LD C,(HL)
        INC HL
        LD A,C
        RRCA
        RRCA
        RRCA
        AND 0Fh
        JR Z,_done
        LD B,A
        PUSH HL
        LD A,C
        AND 7
        LD HL,directions
        CALL word_at
_step:
        PUSH BC
        LD A,(SHAPE_SCALE)
        LD B,A
_pixel:
        BIT 7,C
        CALL Z,draw_pixel
        EX DE,HL
        ADD HL,DE
        EX DE,HL
        DJNZ _pixel
        POP BC
        DJNZ _step
        POP HL
        JR _move
_done:
        POP HL
        RET

; What a move adds to a point.
directions:
        DEFW -100h, -0FFh, 1, 101h, 100h, 0FFh, -1, -101h

; Word of a table.
; In:   HL table, A index
; Out:  HL word
; Uses: AF
word_at:
        ADD A,A
        ADD A,L
        LD L,A
        ADC A,H
        SUB L
        LD H,A
        JR load_word
; Word behind a byte, and word at an address.
; In:   HL
; Out:  HL word
; Uses: A
following_word:
        INC HL
load_word:
        LD A,(HL)
        INC HL
        LD H,(HL)
        LD L,A
        RET
