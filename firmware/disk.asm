; The disk ROM: 8 KB at C000, for four drives behind a WD1771.
;
; BASIC finds "DR" at C000 when the machine is switched on. It calls C005 before it asks for the
; memory size, which it does not do where a disk is to be started, and C002 behind it. Direct words
; that are no words of BASIC come by way of hook_line, the others by the disk vectors and the other
; hooks.
;
; A disk has T tracks (35, 40 or 80) of S sectors (10 or 18) of 256 bytes, counted from 0. Half a
; track is a block. Track 0 sector 0 is the boot sector, track D = T / 2 the directory: sector 0 of
; it is the map of the blocks, the others hold entries of 16 bytes.
;
; The words keep their places (fill_to), or have their jumps in disk_jumps.asm: a machine that was
; kept as a snapshot has jumps to them.
;
; disk_basic.asm, made by the build, has the addresses of what BASIC provides.

ROWS            EQU 25          ; unused here, the same code serves 24
        INCLUDE system.asm
        INCLUDE token_codes.asm
        INCLUDE control_cells.asm
        INCLUDE expr_cells.asm
        INCLUDE math_cells.asm
        INCLUDE disk_basic.asm
        INCLUDE disk_cells.asm

        ORG 0C000h
        DEFM "DR"
        JP disk_start
        JP disk_probe
        INCLUDE disk_start.asm
        INCLUDE disk_drive.asm
        INCLUDE disk_strings.asm
        INCLUDE disk_directory.asm
        INCLUDE disk_files.asm
        INCLUDE disk_chains.asm
        INCLUDE disk_numbers.asm
        INCLUDE disk_programs.asm
        INCLUDE disk_data.asm
        INCLUDE disk_format.asm
        INCLUDE disk_lines.asm
        INCLUDE disk_same.asm
        INCLUDE disk_sectors.asm
        INCLUDE disk_functions.asm
        INCLUDE disk_random.asm
        INCLUDE disk_errors.asm
        INCLUDE disk_jumps.asm
        fill_to 0E000h
