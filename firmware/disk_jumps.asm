; What the vectors and hooks of BASIC lead to.

; Places and what they jump to.
disk_jumps:
        DEFW disk_load, word_load
        DEFW disk_save, word_save
        DEFW disk_merge, word_merge
        DEFW disk_kill, word_kill
        DEFW disk_name, word_name
        DEFW disk_cmd, word_cmd
        DEFW disk_open, word_open
        DEFW disk_close, word_close
        DEFW disk_eof, function_eof
        DEFW disk_loc, function_loc
        DEFW disk_lof, function_lof
        DEFW hook_error, serve_error
        DEFW hook_print, serve_print
        DEFW hook_input, serve_input
        DEFW hook_run, serve_run
        DEFW hook_line, serve_line
        DEFW hook_ready, jump_ready
        DEFW hook_usr, jump_usr
        DEFW disk_def, jump_def
        DEFW disk_fn, jump_fn
        DEFW disk_ampersand, jump_ampersand
        DEFW disk_cvi, jump_cvi
        DEFW disk_cvs, jump_cvs
        DEFW disk_cvd, jump_cvd
        DEFW disk_mki, jump_mki
        DEFW disk_mks, jump_mks
        DEFW disk_mkd, jump_mkd
        DEFW disk_field, jump_field
        DEFW disk_get, jump_get
        DEFW disk_put, jump_put
        DEFW disk_lset, jump_lset
        DEFW disk_rset, jump_rset
        DEFW 0

; Words whose places may change have their jumps here, at the end of the ROM.
        fill_to 0DFA0h
jump_ready:
        JP serve_ready
jump_usr:
        JP serve_usr
jump_def:
        JP word_def
jump_fn:
        JP function_fn
jump_ampersand:
        JP function_octal
jump_cvi:
        JP function_cvi
jump_cvs:
        JP function_cvs
jump_cvd:
        JP function_cvd
jump_mki:
        JP function_mki
jump_mks:
        JP function_mks
jump_mkd:
        JP function_mkd
jump_field:
        JP word_field
jump_get:
        JP word_get
jump_put:
        JP word_put
jump_lset:
        JP word_lset
jump_rset:
        JP word_rset
