; Words of BASIC: their letters, and the routines behind them.

; The words in the order of their tokens, the last letter with bit 7: first those of two bytes, FF
; and 80 to 99, then those of 80 to FA. Of two words that begin alike the longer comes first.
keyword_table:
        DEFB "COLOU", 'R'+80h, "FCOLO", 'U'+80h, "KEYPA", 'D'+80h, "JO", 'Y'+80h
        DEFB "PLO", 'T'+80h, "FG", 'R'+80h, "LG", 'R'+80h, "FCL", 'S'+80h, "PLA", 'Y'+80h
        DEFB "CIRCL", 'E'+80h, "SCAL", 'E'+80h, "SHAP", 'E'+80h, "NSHAP", 'E'+80h
        DEFB "XSHAP", 'E'+80h, "PAIN", 'T'+80h, "CPOIN", 'T'+80h, "NPLO", 'T'+80h
        DEFB "SOUN", 'D'+80h, "CHA", 'R'+80h, "RENU", 'M'+80h, "SWA", 'P'+80h, "FKE", 'Y'+80h
        DEFB "CAL", 'L'+80h, "VERIF", 'Y'+80h, "BGR", 'D'+80h, "NBGR", 'D'+80h
; 80
        DEFB "EN", 'D'+80h, "FO", 'R'+80h, "RESE", 'T'+80h, "SE", 'T'+80h, "CL", 'S'+80h
        DEFB "CM", 'D'+80h, "RANDO", 'M'+80h, "NEX", 'T'+80h
; 88
        DEFB "DAT", 'A'+80h, "INPU", 'T'+80h, "DI", 'M'+80h, "REA", 'D'+80h, "LE", 'T'+80h
        DEFB "GOT", 'O'+80h, "RU", 'N'+80h, "I", 'F'+80h
; 90
        DEFB "RESTOR", 'E'+80h, "GOSU", 'B'+80h, "RETUR", 'N'+80h, "RE", 'M'+80h
        DEFB "STO", 'P'+80h, "ELS", 'E'+80h, "TRO", 'N'+80h, "TROF", 'F'+80h
; 98
        DEFB "DEFST", 'R'+80h, "DEFIN", 'T'+80h, "DEFSN", 'G'+80h, "DEFDB", 'L'+80h
        DEFB "LIN", 'E'+80h, "EDI", 'T'+80h, "ERRO", 'R'+80h, "RESUM", 'E'+80h
; A0
        DEFB "OU", 'T'+80h, "O", 'N'+80h, "OPE", 'N'+80h, "FIEL", 'D'+80h, "GE", 'T'+80h
        DEFB "PU", 'T'+80h, "CLOS", 'E'+80h, "LOA", 'D'+80h
; A8
        DEFB "MERG", 'E'+80h, "NAM", 'E'+80h, "KIL", 'L'+80h, "LSE", 'T'+80h, "RSE", 'T'+80h
        DEFB "SAV", 'E'+80h, "SYSTE", 'M'+80h, "LPRIN", 'T'+80h
; B0
        DEFB "DE", 'F'+80h, "POK", 'E'+80h, "PRIN", 'T'+80h, "CON", 'T'+80h, "LIS", 'T'+80h
        DEFB "LLIS", 'T'+80h, "DELET", 'E'+80h, "AUT", 'O'+80h
; B8
        DEFB "CLEA", 'R'+80h, "CLOA", 'D'+80h, "CSAV", 'E'+80h, "NE", 'W'+80h, "TAB", '('+80h
        DEFB "T", 'O'+80h, "F", 'N'+80h, "USIN", 'G'+80h
; C0
        DEFB "VARPT", 'R'+80h, "US", 'R'+80h, "ER", 'L'+80h, "ER", 'R'+80h, "STRING", '$'+80h
        DEFB "INST", 'R'+80h, "POIN", 'T'+80h, "TIME", '$'+80h
; C8
        DEFB "ME", 'M'+80h, "INKEY", '$'+80h, "THE", 'N'+80h, "NO", 'T'+80h, "STE", 'P'+80h
        DEFB '+'+80h, '-'+80h, '*'+80h
; D0
        DEFB '/'+80h, '['+80h, "AN", 'D'+80h, "O", 'R'+80h, '>'+80h, '='+80h, '<'+80h
        DEFB "SG", 'N'+80h
; D8
        DEFB "IN", 'T'+80h, "AB", 'S'+80h, "FR", 'E'+80h, "IN", 'P'+80h, "PO", 'S'+80h
        DEFB "SQ", 'R'+80h, "RN", 'D'+80h, "LO", 'G'+80h
; E0
        DEFB "EX", 'P'+80h, "CO", 'S'+80h, "SI", 'N'+80h, "TA", 'N'+80h, "AT", 'N'+80h
        DEFB "PEE", 'K'+80h, "CV", 'I'+80h, "CV", 'S'+80h
; E8
        DEFB "CV", 'D'+80h, "EO", 'F'+80h, "LO", 'C'+80h, "LO", 'F'+80h, "MKI", '$'+80h
        DEFB "MKS", '$'+80h, "MKD", '$'+80h, "CIN", 'T'+80h
; F0
        DEFB "CSN", 'G'+80h, "CDB", 'L'+80h, "FI", 'X'+80h, "LE", 'N'+80h, "STR", '$'+80h
        DEFB "VA", 'L'+80h, "AS", 'C'+80h, "CHR", '$'+80h
; F8
        DEFB "LEFT", '$'+80h, "RIGHT", '$'+80h, "MID", '$'+80h
        DEFB 0

; What 80 to BB do.
statement_table:
        DEFW stmt_end, stmt_for, stmt_reset, stmt_set
        DEFW stmt_cls, disk_cmd, stmt_random, stmt_next
        DEFW stmt_data, word_input, stmt_dim, stmt_read
        DEFW stmt_let, stmt_goto, stmt_run, stmt_if
        DEFW stmt_restore, stmt_gosub, stmt_return, stmt_rem
        DEFW stmt_stop, stmt_else, stmt_tron, stmt_troff
        DEFW stmt_defstr, stmt_defint, stmt_defsng, stmt_defdbl
        DEFW stmt_line, stmt_edit, stmt_error, stmt_resume
        DEFW stmt_out, stmt_on, disk_open, disk_field
        DEFW disk_get, disk_put, disk_close, disk_load
        DEFW disk_merge, disk_name, disk_kill, disk_lset
        DEFW disk_rset, disk_save, cmd_system, stmt_lprint
        DEFW disk_def, stmt_poke, stmt_print, stmt_cont
        DEFW stmt_list, stmt_llist, stmt_delete, stmt_auto
        DEFW stmt_clear, cmd_cload, cmd_csave, stmt_new

; What D7 to FA do.
function_table:
        DEFW func_sgn, num_int, num_abs, func_fre
        DEFW func_inp, func_pos, func_sqr, func_rnd
        DEFW func_log, func_exp, func_cos, func_sin
        DEFW func_tan, func_atn, func_peek, disk_cvi
        DEFW disk_cvs, disk_cvd, disk_eof, disk_loc
        DEFW disk_lof, disk_mki, disk_mks, disk_mkd
        DEFW to_integer, to_single, to_double, num_fix
        DEFW func_len, func_str, func_val, func_asc
        DEFW func_chr, func_left, func_right, func_mid
