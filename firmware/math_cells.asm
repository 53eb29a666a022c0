; Cells of numbers. No code: an order of the modules must not matter for what they are.

ACC_BELOW       EQU 411Bh       ; scratch; while a number becomes text: exponent of its first digit
ACC_GUARD       EQU 411Ch       ; 8 bits below a double
ACC_LOW         EQU 411Dh
ACC_HIGH        EQU 4123h
ACC_EXPONENT    EQU 4124h
SIGN            EQU 4125h       ; bit 7: sign of what is worked on
LEFT_GUARD      EQU 4126h
LEFT            EQU 4127h
LEFT_SINGLE     EQU 412Bh
LEFT_HIGH       EQU 412Dh
LEFT_EXPONENT   EQU 412Eh
LEFT_TYPE       EQU 412Fh
NUMBER_TEXT     EQU 4130h
WIDE_BELOW      EQU 430Fh       ; the eleventh byte of a quotient by ten
WIDE            EQU 4310h       ; ten bytes for products, quotients and decimal scaling
WIDE_TOP        EQU WIDE + 9
WIDE_POINT      EQU WIDE + 10   ; bytes before the binary point
WIDE_FIRST      EQU WIDE + 11   ; low byte of the address of the lowest byte in use

; While a number becomes text
FIRST_EXPONENT  EQU ACC_BELOW   ; power of ten of the first digit
DIGITS_VALID    EQU ACC_GUARD   ; digits that count; those behind are 0
DIGITS          EQU LEFT_GUARD  ; nine bytes, two digits each, the first on top

BIAS            EQU 128
