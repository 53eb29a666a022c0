; Files of data: OPEN, CLOSE, PRINT #, INPUT #, LINE INPUT #, EOF, LOC, LOF.

; Number of a file, # before it or not.
; In:   HL text
; Out:  IX file, A its mode, HL behind
; Uses: all
file_number:
        LD A,(HL)
        CP '#'
        JR NZ,_number
        RST 10h
_number:
        CALL get_byte
        CALL file_of_number
        LD A,(IX + FILE_MODE)
        RET

; OPEN "I", number, "name"; "O" to write, "E" to write at the end
        fill_to 0CC96h
word_open:
        CALL eval_string
        OR A
        JP Z,fail_mode
        LD A,(DE)
        CALL capital
        PUSH AF
        RST 08h
        DEFB ','
        CALL file_number
        OR A
        JP NZ,fail_open
        PUSH IX
        RST 08h
        DEFB ','
        CALL parse_name
        POP IX
        POP AF
        PUSH HL
        CP 'O'
        JR Z,_mode
        CP 'I'
        JR Z,_mode
        CP 'E'
        JP NZ,open_random
_mode:
        PUSH AF
        CALL mount_disk
        POP AF
        CP 'O'
        JR Z,_output
        CP 'E'
        JR Z,_extend
        PUSH IX
        CALL find_closed_file
        POP IX
        CALL open_input
        POP HL
        RET
_extend:
        CALL find_file
        JR NZ,_output
        CALL open_text
        CALL go_to_end
        POP HL
        RET
_output:
        LD A,TYPE_TEXT
        CALL open_output
        POP HL
        RET

; CLOSE, CLOSE number, number ...
        fill_to 0CCFFh
word_close:
        JP Z,close_files
_file:
        CALL file_number
        PUSH HL
        CALL close_file
        POP HL
        DEC HL
        RST 10h
        CP ','
        RET NZ
        RST 10h
        JR _file

; PRINT # number, list
        fill_to 0CD12h
serve_print:
        POP DE                  ; BASIC's error
        CALL file_number
        OR A
        JP Z,fail_not_open
        CP MODE_OUTPUT
        JP NZ,fail_mode
        DEC HL
        RST 10h
        JR Z,_list
        RST 08h
        DEFB ','
_list:
        CALL begin_redirection
        LD DE,end_redirection
        PUSH DE
        JP print_list

; What goes to the printer goes to a file.
; In:   IX file
; Out:  HL kept
; Uses: AF, DE
begin_redirection:
        PUSH HL
        LD (PRINT_FILE),IX
        LD HL,(PRINTER_DRIVER)
        LD (PRINTER_KEPT),HL
        LD HL,print_to_file
        LD (PRINTER_DRIVER),HL
        LD HL,PRINT_COLUMN
        LD A,(HL)
        LD (COLUMN_KEPT),A
        LD A,(IX + FILE_COLUMN)
        LD (HL),A
        LD A,1
        LD (OUTPUT_DEVICE),A
        POP HL
        RET
; Back to the printer, if it was so.
; Out:  DE, HL kept
; Uses: AF
end_redirection:
        PUSH HL
        LD HL,(PRINT_FILE)
        LD A,H
        OR L
        JR Z,_end
        PUSH IX
        LD IX,(PRINT_FILE)
        LD HL,PRINT_COLUMN
        LD A,(HL)
        LD (IX + FILE_COLUMN),A
        POP IX
        LD A,(COLUMN_KEPT)
        LD (HL),A
        LD HL,(PRINTER_KEPT)
        LD (PRINTER_DRIVER),HL
        LD HL,0
        LD (PRINT_FILE),HL
        XOR A
        LD (OUTPUT_DEVICE),A
_end:
        POP HL
        RET
; In place of the printer's driver.
; In:   C character
print_to_file:
        PUSH IX
        LD IX,(PRINT_FILE)
        LD A,C
        CALL put_char
        POP IX
        RET

; INPUT # number, variables; LINE INPUT # number, variable
; In:   HL text behind the word
; Out:  HL kept, without # before the number
        fill_to 0CD8Ch
serve_input:
        LD A,(HL)
        CP '#'
        RET NZ
        POP DE
        PUSH HL
        LD HL,stmt_input + 3
        RST 18h                 ; Z: not LINE INPUT
        POP HL
        PUSH AF
        CALL direct_mode
        JP Z,error_id           ; the line buffer serves the files
        CALL file_number
        LD (INPUT_FILE),IX
        OR A
        JP Z,fail_not_open
        DEC A
        JP NZ,fail_mode
        RST 08h
        DEFB ','
        POP AF
        JR NZ,_line
_variable:
        CALL begin_value
        CALL find_variable
        PUSH HL
        PUSH DE
        PUSH BC
        LD IX,(INPUT_FILE)
        CALL read_item
        POP BC
        PUSH BC
        BIT 0,B
        LD HL,LINE_BUFFER
        JR NZ,_string
        CALL parse_number
        JR _taken
_string:
        LD BC,0
        CALL text_string
_taken:
        POP BC
        POP DE
        CALL assign
        POP HL
        DEC HL
        RST 10h
        CP ','
        RET NZ
        RST 10h
        JR _variable
_line:
        CALL begin_value
        CALL find_variable
        BIT 0,B
        JP Z,error_tm
        PUSH HL
        PUSH DE
        PUSH BC
        LD IX,(INPUT_FILE)
        CALL read_text_line
        JP C,fail_end
        LD HL,LINE_BUFFER
        LD BC,0
        CALL text_string
        POP BC
        POP DE
        CALL assign
        POP HL
        RET

; EOF(n): -1 when all is read
        fill_to 0CE71h
function_eof:
        CALL file_argument
        CP MODE_INPUT
        JP NZ,random_eof
        LD HL,0
        LD A,(IX + FILE_LEFT)
        OR (IX + FILE_LEFT + 1)
        JR NZ,_value
        LD A,(IX + FILE_BLOCK)
        CP NO_BLOCK
        JR NZ,_value
        DEC HL
_value:
        JP set_integer
; LOC(n): sectors read or written; of a random file the last record
        fill_to 0CE8Fh
function_loc:
        CALL file_argument
        LD L,(IX + FILE_COUNT)
        LD H,(IX + FILE_COUNT + 1)
        JP set_word
; LOF(n): sectors of the file, or records
        fill_to 0CE9Bh
function_lof:
        CALL file_argument
        CP MODE_RANDOM
        JP Z,random_lof
        CALL use_disk
        LD A,(IX + FILE_FIRST)
        CALL count_sectors
        JP C,fail_damaged
        JP set_word
; In:   number in the accumulator
; Out:  IX open file, A mode
file_argument:
        CALL to_integer
        LD A,H
        OR A
        JP NZ,fail_number
        LD A,L
        CALL file_of_number
        LD A,(IX + FILE_MODE)
        OR A
        RET NZ
        JP fail_not_open
