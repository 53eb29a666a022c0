; Functions of numbers and of the machine.

; In:   argument in the accumulator
; Out:  result in the accumulator
func_sgn:
        CALL num_sign
        LD L,A
        RLA
        SBC A,A
        LD H,A
        JP set_integer

func_peek:
        CALL to_address
        LD A,(DE)
        JP set_byte

func_inp:
        CALL value_byte
        LD C,A
        LD B,A
        IN A,(C)
        JP set_byte

; POS(x): column of the cursor, or of the printer.
func_pos:
        CALL get_column
        JP set_byte

; FRE(text): room for strings after a garbage collection; FRE(number): free memory.
func_fre:
        RST 20h
        JR NZ,free_memory
        CALL take_string
        CALL collect_garbage
        LD DE,(STRING_SPACE)
        JR space_between
free_memory:
        LD HL,0
        ADD HL,SP
        LD DE,(FREE_SPACE)
space_between:
        OR A
        SBC HL,DE
        JP set_word

; Functions that read their own text.
; In:   HL text behind the word, A character
; Out:  HL behind, result in the accumulator
func_mem:
        PUSH HL
        CALL free_memory
        POP HL
        RET

; VARPTR(variable)
func_varptr:
        RST 08h
        DEFB '('
        CALL search_variable
        JP NZ,error_fc
        EX DE,HL
        CALL set_integer
        EX DE,HL
        JP close_parenthesis

; USR(value): calls the program at USR_ADDRESS, with the value in the accumulator.
func_usr:
        CALL hook_usr
        LD DE,(USR_ADDRESS)
        PUSH DE
        JP call_function

; INKEY$: a key that was pressed, or nothing.
func_inkey:
        LD A,(INKEY_CODE)
        OR A
        CALL Z,key_entry
        LD C,A
        XOR A
        LD (INKEY_CODE),A
        CP C
        LD A,C
        LD C,0
        RL C                    ; no character for no key
        JP equal_characters
