; Errors in words, and as jumps.

; In the order of their codes, BASIC's first.
messages:
        DEFM "NEXT WITHOUT FOR"
        DEFB 0
        DEFM "SYNTAX ERROR"
        DEFB 0
        DEFM "RETURN WITHOUT GOSUB"
        DEFB 0
        DEFM "OUT OF DATA"
        DEFB 0
        DEFM "ILLEGAL FUNCTION CALL"
        DEFB 0
        DEFM "OVERFLOW"
        DEFB 0
        DEFM "OUT OF MEMORY"
        DEFB 0
        DEFM "UNDEFINED LINE"
        DEFB 0
        DEFM "SUBSCRIPT OUT OF RANGE"
        DEFB 0
        DEFM "REDIMENSIONED ARRAY"
        DEFB 0
        DEFM "DIVISION BY ZERO"
        DEFB 0
        DEFM "ILLEGAL DIRECT"
        DEFB 0
        DEFM "TYPE MISMATCH"
        DEFB 0
        DEFM "OUT OF STRING SPACE"
        DEFB 0
        DEFM "STRING TOO LONG"
        DEFB 0
        DEFM "STRING FORMULA TOO COMPLEX"
        DEFB 0
        DEFM "CAN'T CONTINUE"
        DEFB 0
        DEFM "NO RESUME"
        DEFB 0
        DEFM "RESUME WITHOUT ERROR"
        DEFB 0
        DEFM "UNPRINTABLE ERROR"
        DEFB 0
        DEFM "MISSING OPERAND"
        DEFB 0
        DEFM "BAD FILE DATA"
        DEFB 0
        DEFM "WORD NOT AVAILABLE"
        DEFB 0
        DEFM "NO DISK"
        DEFB 0
        DEFM "DISK NOT FORMATTED"
        DEFB 0
        DEFM "DISK ERROR"
        DEFB 0
        DEFM "WRITE PROTECTED"
        DEFB 0
        DEFM "DISK FULL"
        DEFB 0
        DEFM "DIRECTORY FULL"
        DEFB 0
        DEFM "NOT FOUND"
        DEFB 0
        DEFM "FILE EXISTS"
        DEFB 0
        DEFM "BAD FILE NAME"
        DEFB 0
        DEFM "BAD FILE NUMBER"
        DEFB 0
        DEFM "FILE NOT OPEN"
        DEFB 0
        DEFM "FILE OPEN"
        DEFB 0
        DEFM "BAD FILE MODE"
        DEFB 0
        DEFM "END OF FILE"
        DEFB 0
        DEFM "WRONG FILE TYPE"
        DEFB 0
        DEFM "DISK DAMAGED"
        DEFB 0
        DEFM "DISK CHANGED"
        DEFB 0
        DEFM "UNDEFINED FUNCTION"
        DEFB 0
        DEFM "FIELD OVERFLOW"
        DEFB 0
        DEFM "BAD RECORD NUMBER"
        DEFB 0

; Errors of one place each, to be jumped at.
fail_format:
        LD E,ERR_FORMAT
        DEFB 1                  ; LD BC, over the next LD E
fail_full:
        LD E,ERR_FULL
        DEFB 1
fail_directory:
        LD E,ERR_DIRECTORY
        DEFB 1
fail_not_found:
        LD E,ERR_NOT_FOUND
        DEFB 1
fail_exists:
        LD E,ERR_EXISTS
        DEFB 1
fail_name:
        LD E,ERR_NAME
        DEFB 1
fail_number:
        LD E,ERR_NUMBER
        DEFB 1
fail_not_open:
        LD E,ERR_NOT_OPEN
        DEFB 1
fail_open:
        LD E,ERR_OPEN
        DEFB 1
fail_mode:
        LD E,ERR_MODE
        DEFB 1
fail_end:
        LD E,ERR_END
        DEFB 1
fail_type:
        LD E,ERR_TYPE
        DEFB 1
fail_damaged:
        LD E,ERR_DAMAGED
        DEFB 1
fail_changed:
        LD E,ERR_CHANGED
        DEFB 1
fail_function:
        LD E,ERR_FUNCTION
        DEFB 1
fail_field:
        LD E,ERR_FIELD
        DEFB 1
fail_record:
        LD E,ERR_RECORD
        JP raise_error
