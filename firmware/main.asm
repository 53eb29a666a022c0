; The firmware of the machine: one source, three 16 KB images.
;
; Built with --equ VERSION=1, 2 or 3:
;   1  the first ROM, 24 rows of text
;   2  25 rows, for the machines of the north
;   3  25 rows, for those of the south
;
; Where things stand is fixed by what published programs call: the vectors and the entries at the
; bottom, 0A7F, 0A9A, 1A19, 28A7, 3852 and 38A9. The modules lie between them in the order in which
; they fit. Unused bytes are FF, which an erased EPROM holds and which runs as RST 38, a harmless
; one.

        IF VERSION = 1
ROWS            EQU 24
        ELSE
ROWS            EQU 25
        ENDIF

; Text colours as the colour RAM counts them. White is colour 16 of the northern palette and
; colour 1 of the southern one, where colour 16 is nearly black.
        IF VERSION = 2
DEFAULT_COLOUR  EQU 15
        ELSE
DEFAULT_COLOUR  EQU 0
        ENDIF

        INCLUDE system.asm
        INCLUDE token_codes.asm
        INCLUDE control_cells.asm
        INCLUDE expr_cells.asm
        INCLUDE math_cells.asm
        INCLUDE words_cells.asm

        ORG 0000h
        INCLUDE vectors.asm
        INCLUDE words_sound.asm

        fill_to 01C9h
        JP clear_text_screen
        INCLUDE printer.asm

; 01ED-0280: cassette. An emulator may put traps at 01EE, 01FB, 0221, 023F and 0264, so nothing
; else may live here.
        INCLUDE cassette.asm
        INCLUDE words_keys.asm
        INCLUDE control_lines.asm
        INCLUDE control_run.asm
        INCLUDE variables.asm

        INCLUDE entries.asm
        INCLUDE expr_functions.asm
        INCLUDE strings_functions.asm
        INCLUDE control_list.asm
        INCLUDE control_edit.asm
        INCLUDE screen.asm
        INCLUDE math_double.asm
        INCLUDE words_graphics.asm
        INCLUDE words_paint.asm
        INCLUDE lineio.asm
        INCLUDE words_screen.asm
        INCLUDE expr_assign.asm
        INCLUDE math_using.asm

        fill_to 1A19h
        JP ready
        INCLUDE math_functions.asm
        INCLUDE tape_commands.asm
        INCLUDE graphics.asm
        INCLUDE control_renum.asm
        INCLUDE control_loops.asm
        INCLUDE print_using.asm
        INCLUDE math_circle.asm
        INCLUDE math_core.asm
        INCLUDE math_print.asm

        fill_to 28A7h
        JP print_text
        INCLUDE math_text.asm
        INCLUDE math_extended.asm
        INCLUDE math_arithmetic.asm
        INCLUDE math_single.asm
        INCLUDE control_input.asm
        INCLUDE keyboard.asm
        INCLUDE control_errors.asm
        INCLUDE print.asm
        INCLUDE strings.asm

        fill_to 3852h
        JP fill_graphics
        INCLUDE disk_search.asm
        INCLUDE words_table.asm

        fill_to 38A9h
        JP show_graphics
        JP show_text            ; 38AC
        INCLUDE tokens.asm
        INCLUDE start.asm
        INCLUDE expr_eval.asm
        fill_to 4000h
