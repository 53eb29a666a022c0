; Errors: their entries, the program's own handling, the message.

; Entries of single errors, to be jumped at from anywhere.
; Out:  do not return
error_sn:
        LD E,ERR_SN
        DEFB 1                  ; LD BC, over the next LD E
error_fc:
        LD E,ERR_FC
        DEFB 1
error_ov:
        LD E,ERR_OV
        DEFB 1
error_om:
        LD E,ERR_OM
        DEFB 1
error_tm:
        LD E,ERR_TM
        DEFB 1
error_bs:
        LD E,ERR_BS
        DEFB 1
error_dd:
        LD E,ERR_DD
        DEFB 1
error_dz:
        LD E,ERR_DZ
        DEFB 1
error_ul:
        LD E,ERR_UL
        DEFB 1
error_mo:
        LD E,ERR_MO
        DEFB 1
error_os:
        LD E,ERR_OS
        DEFB 1
error_ls:
        LD E,ERR_LS
        DEFB 1
error_st:
        LD E,ERR_ST
        DEFB 1
error_id:
        LD E,ERR_ID
        DEFB 1
error_cn:
        LD E,ERR_CN
        DEFB 1
error_fd:
        LD E,ERR_FD
        DEFB 1
error_l3:
        LD E,ERR_L3
; Any error.
; In:   E code
raise_error:
        LD SP,(SAVED_STACK)     ; loops and calls stay for the program's own handling
        CALL hook_error
        LD A,E
        LD (ERROR_CODE),A
        CALL reset_devices
        CALL direct_mode
        LD (ERROR_LINE),BC
        JR Z,_direct
        LD (EDIT_LINE),BC
        LD HL,(STATEMENT)
        LD (ERROR_TEXT),HL
        CALL remember_position
        LD HL,(ON_ERROR)
        LD A,H
        OR L
        JR Z,_unhandled
        LD A,(IN_HANDLER)
        OR A
        JR NZ,_unhandled        ; an error in the handling of one
        DEC A
        LD (IN_HANDLER),A
        JP run_line
_direct:
        LD A,E
        CP ERR_OM
        JR NZ,_report           ; STOP and BREAK keep all for CONT
; Loops and calls end, and CONT cannot go on in them.
_unhandled:
        POP BC
        PUSH BC
        LD A,C
        OR A
        JR Z,_ended             ; there are none
        LD HL,(STRING_SPACE)
        DEC HL
        DEC HL
        LD (SAVED_STACK),HL
        XOR A
        LD H,A
        LD L,A
        LD (CONT_TEXT),HL
_ended:
        LD (IN_HANDLER),A
_report:
        CALL text_screen_row
        LD A,'?'
        CALL print_entry
        LD A,(ERROR_CODE)
        CP ERR_LAST + 1
        JR C,_known
        LD A,ERR_UE
_known:
        LD E,A
        LD D,0
        LD HL,error_letters
        ADD HL,DE
        EX DE,HL
        LD A,2
        CALL put_string
        LD HL,error_text
; Ends a run with its message.
; In:   HL text
end_with_text:
        CALL print_text
        CALL direct_mode
        JP Z,ready
        LD HL,in_text
        CALL print_text
        LD H,B
        LD L,C
        CALL print_line_number
        JP ready

error_letters:
        DEFM "NFSNRGODFCOVOMULBSDD/0IDTMOSLSSTCNNRRWUEMOFDL3"
error_text:
        DEFM " ERROR"
        DEFB 0
break_text:
        DEFM "BREAK"
        DEFB 0

; ERROR n: raises the error of number n.
stmt_error:
        CALL get_byte
        DEC A
        ADD A,A
        JP C,error_fc           ; of 0, too
        LD E,A
        JP raise_error

; ERR and ERL.
; In:   HL text behind the word
; Out:  accumulator
func_err:
        PUSH HL
        LD A,(ERROR_CODE)       ; ERR/2+1 is the number of the error
        JP byte_result
func_erl:
        PUSH HL
        LD HL,(ERROR_LINE)
        CALL set_word
        POP HL
        RET

; Numbers from 0 to 65535 as a value.
; In:   HL
; Out:  accumulator, an integer where it fits, single above
; Uses: AF, C, DE, HL
set_word:
        BIT 7,H
        JP Z,set_integer
        LD C,0
        CALL float_word
        JP store_single
