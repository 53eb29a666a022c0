; 01ED-0280: the cassette routines.
;
; A tape carries 1200 bits a second. Every bit begins with a change of level; a one changes a second
; time in its middle. The levels themselves mean nothing, so a tape may be played either way round.
; A leader of AA and the sync byte 66 come before the data; bytes have their high bit first.
;
; An emulator may put traps at 01EE, 01FB, 0221 (27 bytes, two and then NOPs), 023F and 0264, and
; goes on at 01F8, 0219, 0223, 0241 and 0270. So the routines keep these places exactly, nothing
; else lives here, and at a trap the stack is what the place behind it expects.

SYNC            EQU 66h
LEADER          EQU 0AAh
LEADER_BYTES    EQU 255
LEADER_BITS     EQU 64          ; in a row before the sync byte is looked for

; Time between two changes of level is counted in looks at the port, one every 50 T states: a
; recorder that plays 44100 or 22050 samples a second then moves by whole ones. The routines see the
; middle of a one 13 looks after its start and the next bit 32 looks after the start of a zero; what
; lies halfway decides. TAPE_SPEED holds four times that count.
FIRST_SPEED     EQU 4 * 23
SHORTEST_HALF   EQU 7           ; looks; a one outside of these says nothing about the speed
LONGEST_HALF    EQU 40
CONFIRMING      EQU 2           ; further looks that must see a change
HALF_BIT        EQU 52          ; of 16 T states, with the rest of the code 417 us

; Like fill_to, for code that runs on to the address.
run_to MACRO address
        IF $ > address
        .ERROR code runs into a fixed address
        ENDIF
        DEFS address - $, 0
        ENDM

; 01ED: Byte from the cassette.
; Out:  A
; Uses: F
        fill_to 01EDh
read_byte:
        PUSH DE
        LD D,1                  ; 01EE: falls out behind the eighth bit
_bit:
        CALL read_bit
        JR NC,_bit
        run_to 01F8h
        POP DE
        RET

; 01FA: Bit from the cassette. Returns in the second half of the bit; the next call must come
; before a quarter of the next bit has passed.
; In:   D bits so far
; Out:  D shifted to the left with the new bit in it, A the same; carry what fell out
; Uses: F
read_bit:
        PUSH BC
        IN A,(LATCH)            ; 01FB
        CALL await_start
        CALL decision_time
        LD B,A
        CALL await_change       ; carry: in time, a one
        CALL C,follow_speed
        LD A,C
        LD (TAPE_LEVEL),A
        LD A,D
        RLA
        run_to 0219h
        LD D,A
        POP BC
        RET

; 021F: Byte to the cassette.
; In:   A
        run_to 021Fh
write_byte:
        PUSH BC
        PUSH AF
        PUSH HL                 ; 0221
        LD HL,LATCH_COPY
        LD C,A
        LD B,8
_bit:
        SCF
        CALL write_half
        RLC C
        CALL write_half
        DJNZ _bit
        POP HL
        run_to 023Ch
        POP AF
        POP BC
        RET

; 023F: Leader and sync byte to the cassette.
; Uses: AF, B
        run_to 023Fh
write_leader:
        LD B,LEADER_BYTES
; 0241: The same without the trap, at which an emulator begins another tape: for a record behind
; others.
; In:   B LEADER_BYTES
write_record_leader:
        LD A,LEADER
_byte:
        CALL write_byte
        DJNZ _byte
        LD A,SYNC
        JR write_byte

; 024C: Finds a leader and reads to the end of the sync byte behind it. The BREAK key gives up.
; Out:  A sync byte
; Uses: F
        run_to 024Ch
find_sync:
        PUSH DE
        PUSH BC
        LD E,SYNC
; In:   E another byte that ends the search; DE and BC of the caller on the stack
search_sync:
        LD A,FIRST_SPEED
        LD (TAPE_SPEED),A
        run_to 025Fh
_restart:
        CALL check_break
        LD B,LEADER_BITS
_leader:
        CALL read_bit           ; 0264
        ADD A,A
        XOR D
        OR 1                    ; FF when each bit differs from its neighbour
        INC A
        JR NZ,_restart
        DJNZ _leader
; With traps, whole bytes come here instead of bits.
_sync:
        CALL check_break        ; 0270
        CALL read_bit
        CP SYNC
        JR Z,_found
        CP E
        JR NZ,_sync
_found:
        POP BC
        POP DE
        RET

        run_to 0281h
