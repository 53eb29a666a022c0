; The machine's own words, stored as FF and a second byte from 80 on: the statements that they lead
; to, in the order of their codes. Those that are functions are syntax errors as statements.

extended_statement_table:
        DEFW stmt_colour        ; 80 COLOUR
        DEFW stmt_fcolour       ; 81 FCOLOU
        DEFW error_sn           ; 82 KEYPAD
        DEFW error_sn           ; 83 JOY
        DEFW stmt_plot          ; 84 PLOT
        DEFW show_graphics      ; 85 FGR
        DEFW show_text          ; 86 LGR
        DEFW stmt_fcls          ; 87 FCLS
        DEFW stmt_play          ; 88 PLAY
        DEFW stmt_circle        ; 89 CIRCLE
        DEFW stmt_scale         ; 8A SCALE
        DEFW stmt_shape         ; 8B SHAPE
        DEFW stmt_nshape        ; 8C NSHAPE
        DEFW stmt_xshape        ; 8D XSHAPE
        DEFW stmt_paint         ; 8E PAINT
        DEFW error_sn           ; 8F CPOINT
        DEFW stmt_nplot         ; 90 NPLOT
        DEFW stmt_sound         ; 91 SOUND
        DEFW stmt_char          ; 92 CHAR
        DEFW stmt_renum         ; 93 RENUM
        DEFW stmt_swap          ; 94 SWAP
        DEFW stmt_fkey          ; 95 FKEY
        DEFW stmt_call          ; 96 CALL
        DEFW cmd_verify         ; 97 VERIFY
        DEFW stmt_bgrd          ; 98 BGRD
        DEFW stmt_nbgrd         ; 99 NBGRD
