; Codes of the words in a program text, errors, and what a disk ROM may take over.

; Words of one byte: 80 to BB are statements, D7 to FA functions of one argument. The words of
; this machine are FF and a byte from 80.
FIRST_TOKEN     EQU 80h
STATEMENT_TOKENS EQU 60
FIRST_FUNCTION  EQU TOKEN_SGN
EXTENDED        EQU 0FFh
EXTENDED_WORDS  EQU 26
TOKEN_NEXT      EQU 087h
TOKEN_DATA      EQU 088h
TOKEN_INPUT     EQU 089h
TOKEN_GOTO      EQU 08Dh
TOKEN_RUN       EQU 08Eh
TOKEN_IF        EQU 08Fh
TOKEN_RESTORE   EQU 090h
TOKEN_GOSUB     EQU 091h
TOKEN_REM       EQU 093h
TOKEN_ELSE      EQU 095h
TOKEN_ERROR     EQU 09Eh
TOKEN_RESUME    EQU 09Fh
TOKEN_PRINT     EQU 0B2h
TOKEN_TAB       EQU 0BCh
TOKEN_TO        EQU 0BDh
TOKEN_FN        EQU 0BEh
TOKEN_USING     EQU 0BFh
TOKEN_USR       EQU 0C1h
TOKEN_ERL       EQU 0C2h
TOKEN_INKEY     EQU 0C9h
TOKEN_THEN      EQU 0CAh
TOKEN_NOT       EQU 0CBh
TOKEN_STEP      EQU 0CCh
TOKEN_PLUS      EQU 0CDh
TOKEN_MINUS     EQU 0CEh
TOKEN_GREATER   EQU 0D4h
TOKEN_EQUAL     EQU 0D5h
TOKEN_SGN       EQU 0D7h
TOKEN_MID       EQU 0FAh
TOKEN_QUOTE     EQU 0FBh
WORD_FCOLOU     EQU 081h
WORD_KEYPAD     EQU 082h
WORD_JOY        EQU 083h
WORD_CPOINT     EQU 08Fh

; Codes of errors: twice their place in the list of their letters.
ERR_NF          EQU 0           ; NEXT without FOR
ERR_SN          EQU 2           ; syntax
ERR_RG          EQU 4           ; RETURN without GOSUB
ERR_OD          EQU 6           ; out of data
ERR_FC          EQU 8           ; value out of range
ERR_OV          EQU 10          ; overflow
ERR_OM          EQU 12          ; out of memory
ERR_UL          EQU 14          ; no such line
ERR_BS          EQU 16          ; subscript
ERR_DD          EQU 18          ; second DIM
ERR_DZ          EQU 20          ; division by zero
ERR_ID          EQU 22          ; not as a direct statement
ERR_TM          EQU 24          ; type
ERR_OS          EQU 26          ; out of string space
ERR_LS          EQU 28          ; string too long
ERR_ST          EQU 30          ; string formula too complex
ERR_CN          EQU 32          ; cannot continue
ERR_NR          EQU 34          ; no RESUME
ERR_RW          EQU 36          ; RESUME without error
ERR_UE          EQU 38          ; undefined error number
ERR_MO          EQU 40          ; missing operand
ERR_FD          EQU 42          ; file data
ERR_L3          EQU 44          ; a word of disk BASIC
ERR_LAST        EQU ERR_L3

; Jumps that a disk ROM replaces; without one the words are an L3 error.
DISK_VECTORS    EQU 4152h
DISK_VECTOR_COUNT EQU 27
disk_cvi        EQU DISK_VECTORS + 0
disk_fn         EQU DISK_VECTORS + 3
disk_cvs        EQU DISK_VECTORS + 6
disk_def        EQU DISK_VECTORS + 9
disk_cvd        EQU DISK_VECTORS + 12
disk_eof        EQU DISK_VECTORS + 15
disk_loc        EQU DISK_VECTORS + 18
disk_lof        EQU DISK_VECTORS + 21
disk_mki        EQU DISK_VECTORS + 24
disk_mks        EQU DISK_VECTORS + 27
disk_mkd        EQU DISK_VECTORS + 30
disk_cmd        EQU DISK_VECTORS + 33
disk_time       EQU DISK_VECTORS + 36
disk_open       EQU DISK_VECTORS + 39
disk_field      EQU DISK_VECTORS + 42
disk_get        EQU DISK_VECTORS + 45
disk_put        EQU DISK_VECTORS + 48
disk_close      EQU DISK_VECTORS + 51
disk_load       EQU DISK_VECTORS + 54
disk_merge      EQU DISK_VECTORS + 57
disk_name       EQU DISK_VECTORS + 60
disk_kill       EQU DISK_VECTORS + 63
disk_ampersand  EQU DISK_VECTORS + 66
disk_lset       EQU DISK_VECTORS + 69
disk_rset       EQU DISK_VECTORS + 72
DISK_CELL       EQU DISK_VECTORS + 75   ; of the disk ROM
disk_save       EQU DISK_VECTORS + 78

; Calls that a disk ROM replaces; without one they return.
DISK_HOOKS      EQU DISK_VECTORS + 3 * DISK_VECTOR_COUNT
DISK_HOOK_COUNT EQU 7
hook_usr        EQU DISK_HOOKS + 0
hook_error      EQU DISK_HOOKS + 3
hook_ready      EQU DISK_HOOKS + 6
hook_print      EQU DISK_HOOKS + 9
hook_input      EQU DISK_HOOKS + 12
hook_run        EQU DISK_HOOKS + 15
hook_line       EQU DISK_HOOKS + 18     ; HL line typed in direct mode, kept; "ready" if served
