; The words of the sound generator and of what hangs on its ports: SOUND, PLAY, JOY, KEYPAD.

MIXER           EQU 7           ; register: bits 0-2 switch the tones off, 6-7 port directions
VOLUMES         EQU 8           ; registers of the three volumes
PORT_A_OUT      EQU 40h
CHANNELS        EQU 3
OCTAVES         EQU 8
NOTES           EQU 12
LONGEST_PERIOD  EQU 0FFFh
STICK_LEVELS    EQU 64

; SOUND r,v: register 0 to 15, any byte.
stmt_sound:
        LD C,16
        CALL get_limited
        PUSH AF
        CALL comma_byte
        LD C,A
        POP AF
; Writes a register of the sound generator.
; In:   A register, C value
write_sound:
        OUT (SOUND_REGISTER),A
        PUSH AF
        LD A,C
        OUT (SOUND_DATA),A
        POP AF
        RET

; PLAY(channel,octave,note,volume): the channel sounds until the next PLAY or SOUND changes it.
; The brackets may be left out. Channel 1 to 3, octave 1 to 8, note 1 (C) to 12 (B), volume 0 to 15;
; the A of octave 4 has 440 Hz.
stmt_play:
        CP '('
        JR NZ,_values
        RST 10h
_values:
        LD C,CHANNELS
        CALL get_choice
        PUSH AF
        LD C,OCTAVES
        CALL comma_choice
        PUSH AF
        LD C,NOTES
        CALL comma_choice
        PUSH AF
        RST 08h
        DEFB ','
        LD C,16
        CALL get_limited
        LD D,A                  ; volume
        LD A,(HL)
        CP ')'
        JR NZ,_play
        RST 10h
_play:
        POP AF
        EX (SP),HL              ; the octave, above the text
        LD B,H
        INC B
        INC B
        INC B
        LD HL,octave_periods
        CALL word_at
_octave:
        SRL H
        RR L
        DJNZ _octave
        JR NC,_rounded
        INC HL
_rounded:
        LD A,H
        CP HIGH LONGEST_PERIOD + 1
        JR C,_in_range
        LD HL,LONGEST_PERIOD    ; the lowest note is a little too high
_in_range:
        POP BC                  ; text
        POP AF                  ; channel
        PUSH BC
        LD E,A
        ADD A,A
        LD C,L
        CALL write_sound
        INC A
        LD C,H
        CALL write_sound
        LD A,E
        CALL bit_mask
        CPL
        LD B,A                  ; all but the channel's bit
        CALL read_mixer
        AND B
        OUT (SOUND_DATA),A
        LD A,E
        ADD A,VOLUMES
        LD C,D
        CALL write_sound
        POP HL
        RET

; Periods of octave 1, C to B, in eighths of the generator's unit, 16 clocks of 2.21675 MHz: the
; higher octaves are rounded only once.
octave_periods:
        DEFW 33892, 31990, 30194, 28500, 26900, 25390
        DEFW 23965, 22620, 21351, 20152, 19021, 17954

; Mixer register with port A set to write and port B to read, which a program may have changed.
; Out:  A value, the register is selected
read_mixer:
        LD A,MIXER
        OUT (SOUND_REGISTER),A
        IN A,(SOUND_DATA)
        AND 3Fh
        OR PORT_A_OUT
        RET

; JOY1X, JOY1Y, JOY2X, JOY2Y: position of a stick, 0 (left, down) to 63. Port B compares it with
; the level on port A: bits 7 to 4 are 0 when the level has reached the position.
func_joy:
        CALL get_side
        ADD A,A
        LD D,A
        LD B,'X'
        CALL get_of_two
        ADD A,D
        XOR 7
        CALL bit_mask
        LD B,A
        PUSH HL
        LD E,0
_level:
        CALL exchange_ports
        AND B
        JR Z,_reached
        INC E
        LD A,E
        CP STICK_LEVELS - 1
        JR NZ,_level
_reached:
        LD A,E
; Ends a function: A is its value, the text pointer lies on the stack.
byte_result:
        CALL set_byte
        POP HL
        RET

; KEYPAD1, KEYPAD2: key of a keypad, counted from the upper left: 1 to 9, 10 and 12 the first and
; the second button, which lie on the left and right of the zero, 11 the zero; 0 while none is down.
; Bits 2 to 0 of port A, for the second keypad 5 to 3, select the left, middle and right column with
; a 0; bits 0 to 3 of port B are its keys from top to bottom, 0 for one that is down.
func_keypad:
        CALL get_side
        PUSH HL
        LD E,0FEh
        JR Z,_first
        LD E,0F7h
_first:
        LD B,3
_column:
        CALL exchange_ports
        CPL
        AND 0Fh
        JR NZ,_found
        RLC E
        DJNZ _column
        JR byte_result
_found:
        LD C,A
        LD A,B
_row:
        RRC C
        JR C,byte_result
        ADD A,3
        JR _row

; Digit 1 or 2 of JOY and KEYPAD.
; In:   HL text
; Out:  A digit - 1 with its flags, HL next character
; Uses: BC
get_side:
        LD B,'1'
; In:   B the first of two characters
get_of_two:
        LD A,(HL)
        SUB B
        CP 2
        JP NC,error_sn
        LD C,A
        RST 10h
        LD A,C
        OR A
        RET

; Writes port A and reads port B.
; In:   E value for port A
; Out:  A value of port B
; Uses: AF, C
exchange_ports:
        CALL read_mixer
        OUT (SOUND_DATA),A
        LD C,E
        LD A,PORT_A
        CALL write_sound
        INC A
        OUT (SOUND_REGISTER),A
        IN A,(SOUND_DATA)
        RET
