; Power on, the words that are none of BASIC, errors.

READY_ENTRY     EQU 1A19h       ; a JP to the prompt

; C002: Takes memory below its top, sets the vectors and hooks, starts a disk that wants it.
; Out:  the stack begins below the new string space
disk_start:
        LD HL,(READY_ENTRY + 1)
        LD DE,ready
        RST 18h
        RET NZ                  ; another BASIC
        LD HL,(MEMORY_TOP)
        LD DE,-AREA_SIZE
        ADD HL,DE
        LD B,H
        LD C,L
        LD DE,FIRST_PROGRAM + AREA_ROOM
        RST 18h
        RET C                   ; too little: no disk words
        POP HL
        LD (DISK_WORK),HL
        LD HL,(STRING_SPACE)
        LD DE,-AREA_SIZE
        ADD HL,DE
        LD (STRING_SPACE),HL
        LD (MEMORY_TOP),BC
        INC BC
        LD (DISK_AREA),BC
        CALL clear_variables    ; also sets the stack
        LD HL,(DISK_WORK)
        PUSH HL
        LD HL,0
        LD (PRINT_FILE),HL
        LD (FN_CHAIN),HL
        XOR A
        LD (LOADING),A
        CALL forget_files
        CALL forget_usr
        LD HL,disk_jumps
_jump:
        LD E,(HL)
        INC HL
        LD D,(HL)
        INC HL
        LD A,D
        OR E
        JR Z,_hooked
        LD A,0C3h               ; JP
        LD (DE),A
        INC DE
        LDI
        LDI
        JR _jump
_hooked:
        LD HL,disk_sign_on
        CALL print_text
        LD A,(BOOT_ADDRESS)     ; what disk_probe has read
        DEC A
        RET NZ
        JP BOOT_ADDRESS + BOOT_CODE

; C005: Is there a disk to start from? Reads the boot sector of drive 0 to where it runs, and clears
; that place again unless it is to be started; BREAK prevents the reading.
; Out:  Z if so; no drive's head has a known place any more
; Uses: AF, BC, DE, HL
disk_probe:
        LD HL,HEADS
        LD B,4
_head:
        LD (HL),0FFh
        INC HL
        DJNZ _head
        XOR A
        LD (DISK_DRIVE),A
        CALL test_break
        RET NZ
        CALL ready_drive
        JR C,_none
        LD DE,0
        LD HL,BOOT_ADDRESS
        CALL try_read
        JR C,_none
        LD A,(HL)
        DEC A
        JR NZ,_none
        CALL known_disk
        RET Z
_none:
        LD HL,BOOT_ADDRESS
_clear:
        LD (HL),0
        INC L
        JR NZ,_clear
        INC H                   ; NZ
        RET

        fill_to 0C0ABh
disk_sign_on:
        DEFM "TARVELIN DISK SYSTEM 1.0"
        DEFB RETURN, 0

; A line typed at the prompt: DIR and FORMAT, with a drive or without.
; In:   HL text
; Out:  HL kept when it is none of them
; Uses: AF, BC, DE
        fill_to 0C107h
serve_line:
        PUSH HL
        CALL disk_word
        POP HL
        RET NZ
        POP HL                  ; BASIC's part of the line
        CALL call_de
        JP ready
call_de:
        PUSH DE
        RET

; CMD "word": the same in a program.
        fill_to 0C116h
word_cmd:
        CALL eval_string
        PUSH HL
        EX DE,HL
        LD C,A
        LD B,0
        LD DE,(DISK_AREA)
        OR A
        JR Z,_ended
        LDIR
_ended:
        XOR A
        LD (DE),A
        LD HL,(DISK_AREA)
        CALL disk_word
        JP NZ,error_fc
        CALL call_de
        POP HL
        RET

; In:   HL text ended by 0
; Out:  Z if it is a word of the disk ROM: DE its routine, DISK_DRIVE set
; Uses: AF, BC, HL
disk_word:
        CALL skip_spaces
        LD DE,word_texts
_word:
        PUSH HL
_letter:
        LD A,(DE)
        INC DE
        OR A
        JR Z,_same
        LD C,A
        LD A,(HL)
        INC HL
        CALL capital
        CP C
        JR Z,_letter
        POP HL
_skip:
        LD A,(DE)
        INC DE
        OR A
        JR NZ,_skip
        INC DE
        INC DE
        LD A,(DE)
        OR A
        JR NZ,_word
        INC A                   ; NZ
        RET
_same:
        POP BC
        LD C,0
        CALL skip_spaces
        JR Z,_end
        CP ':'
        JR NZ,_drive
        INC HL
        LD A,(HL)
_drive:
        SUB '0'
        CP 4
        JR NC,_other
        LD C,A
        INC HL
        CALL skip_spaces
        RET NZ
_end:
        LD A,C
        LD (DISK_DRIVE),A
        EX DE,HL
        LD E,(HL)
        INC HL
        LD D,(HL)
        XOR A
        RET
_other:
        OR 1
        RET
; Out:  A character, Z at the end
skip_spaces:
        LD A,(HL)
        CP ' '
        INC HL
        JR Z,skip_spaces
        DEC HL
        OR A
        RET
word_texts:
        DEFM "DIR"
        DEFB 0
        DEFW word_dir
        DEFM "FORMAT"
        DEFB 0
        DEFW word_format
        DEFB 0

; An error, before BASIC reports it: variables that were parameters and the printer's driver get back
; what they had, a program half loaded goes, and the error is told in words, unless the program
; handles it. A statement that begins with MID$ is none.
; In:   E code, HL text
; Out:  E kept
        fill_to 0C19Ah
serve_error:
        CALL restore_parameters
        CP TOKEN_MID - FIRST_TOKEN + 1  ; what the search for its word leaves
        JR NZ,_error
        LD A,(HL)
        CP TOKEN_MID
        JR NZ,_error
        LD A,E
        CP ERR_SN
        JR NZ,_error
        LD DE,new_statement
        POP BC
        PUSH DE
        JP word_mid
_error:
        CALL end_redirection
        POP HL
        LD (DISK_WORK),HL
        LD A,E
        LD (ERROR_CODE),A
        CALL drop_program
        LD HL,(DISK_WORK)
        PUSH HL
        LD A,(ERROR_CODE)
        LD E,A
        LD HL,(CURRENT_LINE)
        LD A,H
        AND L
        INC A
        JR Z,_direct
        LD HL,(ON_ERROR)
        LD A,H
        OR L
        JR Z,_program
        LD A,(IN_HANDLER)
        OR A
        RET Z
_program:
        LD HL,(CURRENT_LINE)
        LD (EDIT_LINE),HL
        LD (STOP_LINE),HL
        LD HL,(STATEMENT)
        LD (ERROR_TEXT),HL
        LD (CONT_TEXT),HL
        JR _unhandled
_direct:
        LD A,E
        CP ERR_OM
        JR NZ,_report
_unhandled:
        POP BC
        POP BC
        PUSH BC
        LD A,C
        OR A
        JR Z,_report            ; no loops and calls
        LD HL,(STRING_SPACE)
        DEC HL
        DEC HL
        LD (SAVED_STACK),HL
        LD HL,0
        LD (CONT_TEXT),HL
_report:
        LD HL,(CURRENT_LINE)
        LD (ERROR_LINE),HL
        LD A,E
        LD (ERROR_CODE),A
        PUSH AF
        CALL reset_temporaries
        XOR A
        LD (AUTO_ON),A
        LD (OUTPUT_DEVICE),A
        LD (IN_HANDLER),A
        CALL text_screen_row
        LD A,'?'
        CALL print_entry
        POP AF
        CP ERR_DISK_LAST + 1
        JR C,_known
        LD A,ERR_UE
_known:
        RRCA
        LD B,A
        INC B
        LD HL,messages
        XOR A
_message:
        DEC B
        JP Z,end_with_text
_skip:
        CP (HL)
        INC HL
        JR NZ,_skip
        JR _message
