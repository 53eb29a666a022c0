; Tune: a dance for the three voices of the sound generator, with its notes running by.
;
; Voice A sings the melody, with a soft attack and a vibrato on long notes. Voice B plays bass
; notes, and between them the three notes of the chord in such quick turns that they sound as one.
; Voice C is the drums: a falling tone, and noise, both faded by the envelope generator.
;
; A tick is a frame of 44335 cycles, 50 a second; a step, which is a sixteenth note, lasts six.
; There is no interrupt to count them: the delay at the end of a tick makes up its length.
;
; The program expects nothing from the firmware and never returns to it.

        include "machine.asm"

STACK   equ     6800h

; Registers of the sound generator.
PERIOD_A        equ     0       ; low byte, then the upper four bits
PERIOD_B        equ     2
PERIOD_C        equ     4
NOISE           equ     6
VOLUME_A        equ     8
VOLUME_B        equ     9
VOLUME_C        equ     10
ENVELOPE        equ     11      ; period, in units of 256 clocks for the whole ramp
SHAPE           equ     13

BY_ENVELOPE     equ     10h     ; volume: follow the envelope
FALLING         equ     0       ; shape: fall once, then silence
ALL_TONES       equ     38h     ; mixer
DRUM_NOISE      equ     1Ch     ; mixer: tones on A and B, noise on C

STEP_TICKS      equ     6
SECTION_BARS    equ     8

; Programmable characters in use.
NOTE    equ     80h             ; upper half first and held, lower half first and held
CHORD   equ     84h
DOT     equ     85h
HEAD    equ     86h             ; the line ahead of the notes
KICK    equ     87h
SNARE   equ     88h
HAT     equ     89h
FULL    equ     8Ah             ; a lit segment of a level
EMPTY   equ     8Bh

HEADING equ     1
LABELS  equ     5
DIM     equ     11

; The notes run over 32 columns, two bars, and 18 rows.
ROLL            equ     SCREEN+2*COLUMNS+8
ROLL_COLUMNS    equ     32
ROLL_ROWS       equ     18
BASS_ROW        equ     10      ; the first of six
DRUM_ROW        equ     17
LEVEL_CELLS     equ     30      ; two for each step of volume

        org     5800h

start:  di
        ld      sp,STACK
        call    set_up_video
        call    clear
        call    define_characters
        call    draw_labels
        call    colour_levels
        call    silence

tick:   call    delay
        ld      hl,ticks_left
        dec     (hl)
        call    z,next_step
        call    play_melody
        call    play_chord
        call    play_drum
        call    draw_levels
        jr      tick

; A round takes 31 cycles, the five wait cycles of RAM included. The work of a tick takes about
; 4250 cycles, and that of a step 6300 more.
TICK_ROUNDS     equ     1293
STEP_ROUNDS     equ     203     ; less in the tick that begins a step

delay:  ld      bc,TICK_ROUNDS
        ld      a,(ticks_left)
        dec     a
        jr      nz,wait
        ld      bc,TICK_ROUNDS-STEP_ROUNDS
wait:   dec     bc
        ld      a,b
        or      c
        jr      nz,wait
        ret

; ---- steps ---------------------------------------------------------------------------------------

ticks_left:                     ; of this step
        db      1
step:   db      0               ; of the section, 16 a bar
bar:    db      0               ; of the tune, in decimal digits

next_step:
        ld      (hl),STEP_TICKS
        call    next_note
        call    next_bar
        call    next_chord
        call    next_drum
        call    draw_step
        ld      hl,step
        inc     (hl)
        ret

; Counts the bars on the screen.
next_bar:
        ld      a,(step)
        and     15
        ret     nz
        ld      a,(bar)
        inc     a
        daa
        ld      (bar),a
        ld      hl,SCREEN+COLUMNS-2
        ld      c,a
        rrca
        rrca
        rrca
        rrca
        call    put_digit
        ld      a,c
put_digit:
        and     15
        add     a,'0'
        ld      (hl),a
        inc     hl
        ret

; Takes the next section of the tune; its melody comes back in HL.
next_section:
        ld      hl,(order_data)
        ld      e,(hl)
        inc     hl
        ld      d,(hl)
        inc     hl
        ld      a,d
        or      e
        jr      nz,begin_section
        ld      (bar),a         ; the end: once more from the start
        ld      hl,order
        ld      (order_data),hl
        jr      next_section
begin_section:
        ld      (order_data),hl
        xor     a
        ld      (step),a
        ex      de,hl
        ld      de,chord_data   ; three pointers, in the order of the variables
        ld      bc,6
        ldir
        ret

order_data:
        dw      order
chord_data:
        dw      0
drum_data:
        dw      0               ; the pattern of a bar
fill_data:
        dw      0               ; the pattern of the last one

; ---- melody --------------------------------------------------------------------------------------

melody_data:
        dw      no_melody       ; a note and its steps each
melody_note:
        db      REST
melody_left:                    ; steps
        db      1
melody_age:                     ; ticks
        db      0
melody_period:
        dw      0
note_begins:                    ; 0 in the step that begins it, else 1
        db      0
no_melody:
        db      FINISH

next_note:
        ld      a,1
        ld      (note_begins),a
        ld      hl,melody_left
        dec     (hl)
        ret     nz
        ld      hl,(melody_data)
        ld      a,(hl)
        cp      FINISH
        call    z,next_section
        ld      a,(hl)
        ld      (melody_note),a
        inc     hl
        ld      a,(hl)
        ld      (melody_left),a
        inc     hl
        ld      (melody_data),hl
        xor     a
        ld      (melody_age),a
        ld      (note_begins),a
        ld      a,(melody_note)
        cp      REST
        call    nz,period_of
        ld      (melody_period),de
        jp      print_note

; The volume follows the age of the note; just before the next one it drops, to set them apart.
play_melody:
        ld      hl,melody_age
        ld      c,(hl)
        inc     (hl)
        jr      nz,age_counted
        ld      (hl),128        ; goes on in the same place of the vibrato
age_counted:
        ld      e,0
        ld      a,(melody_note)
        cp      REST
        jr      z,melody_volume
        ld      a,(melody_left)
        dec     a
        jr      nz,not_the_end
        ld      a,(ticks_left)
        cp      2
        ld      e,6
        jr      c,melody_volume
not_the_end:
        ld      a,c
        cp      ATTACK_TICKS
        jr      c,attacking
        ld      a,ATTACK_TICKS-1
attacking:
        ld      hl,attack
        call    entry
        ld      e,(hl)
melody_volume:
        ld      a,e
        ld      (levels),a
        ld      a,VOLUME_A
        call    sound
        ld      hl,(melody_period)
        ld      a,c
        cp      16
        jr      c,melody_tone
        push    hl
        and     7
        ld      hl,vibrato
        call    entry
        ld      a,(hl)
        pop     hl
        ld      e,a
        rla                     ; the sign
        sbc     a,a
        ld      d,a
        add     hl,de
melody_tone:
        ld      a,PERIOD_A
        jp      tone

attack: db      11,13,14,13,13,12,12,11,11,10
ATTACK_TICKS    equ     10
vibrato:
        db      0,1,2,1,0,-1,-2,-1

; ---- chords --------------------------------------------------------------------------------------

chord:  db      0               ; its root, and MINOR
bass_root:
        db      0
bass_note:                      ; 0 while the chord sounds
        db      0
chord_age:                      ; ticks
        db      0
chord_periods:                  ; the bass note, or three notes of the chord
        dw      0,0,0

; Bass, chord, fifth, chord: an eighth note each.
next_chord:
        ld      a,(step)
        rra
        ret     c
        and     3
        ld      c,a
        call    z,take_chord
        xor     a
        ld      (chord_age),a
        ld      a,c
        rra
        jr      c,take_notes
        rra
        ld      a,(bass_root)
        jr      nc,take_bass
        add     a,7             ; the fifth, or the same an octave lower
        cp      16
        jr      c,take_bass
        sub     12
take_bass:
        ld      (bass_note),a
        call    period_of
        ld      (chord_periods),de
        ret

; All bass notes lie between E and the D sharp above.
take_chord:
        ld      hl,(chord_data)
        ld      a,(hl)
        inc     hl
        ld      (chord_data),hl
        ld      (chord),a
        and     15
        cp      4
        jr      nc,root_found
        add     a,12
root_found:
        ld      (bass_root),a
        jp      print_chord

take_notes:
        xor     a
        ld      (bass_note),a
        ld      a,(chord)
        and     15
        add     a,12            ; the octave from the G below the middle C
        cp      19
        jr      nc,low_root
        add     a,12
low_root:
        ld      c,a
        call    period_of
        ld      (chord_periods),de
        ld      a,(chord)
        rla                     ; carry: MINOR
        ld      a,c
        sbc     a,-4            ; four semitones up, or three
        call    period_of
        ld      (chord_periods+2),de
        ld      a,c
        add     a,7
        call    period_of
        ld      (chord_periods+4),de
        ret

play_chord:
        ld      hl,chord_age
        ld      a,(hl)
        inc     (hl)
        srl     a
        ld      c,a             ; 0 to 5
        ld      hl,chord_periods
        ld      a,(bass_note)
        or      a
        jr      z,play_notes
        ld      a,c             ; 13 to 11
        srl     a
        ld      e,a
        ld      a,13
        jr      chord_volume
play_notes:
        ld      a,c
        cp      3
        jr      c,which_note
        sub     3
which_note:
        add     a,a
        call    entry
        ld      e,c             ; 11 to 6
        ld      a,11
chord_volume:
        sub     e
        ld      (levels+1),a
        ld      e,a
        ld      a,VOLUME_B
        call    sound
        ld      e,(hl)
        inc     hl
        ld      d,(hl)
        ex      de,hl
        ld      a,PERIOD_B
        jp      tone

; ---- drums ---------------------------------------------------------------------------------------

; The drum that sounds, in the order of the records below.
drum_mixer:
        db      ALL_TONES
drum_noise:
        db      0
drum_envelope:
        dw      0
drum_volume:                    ; BY_ENVELOPE, or 0 for the level
        db      0
drum_level:
        db      0
drum_fall:                      ; of the level, every tick
        db      0
drum_period:                    ; of the tone
        dw      0
drum_code:
        db      0
drum_colour:
        db      0
DRUM_SIZE       equ     11

drum_begins:                    ; not 0 in the step that begins it
        db      0

; Drums with an envelope have a level for the screen only, which falls as fast.
kick_record:
        db      ALL_TONES,0
        dw      1100
        db      BY_ENVELOPE,15,2
        dw      480
        db      KICK,6
snare_record:
        db      DRUM_NOISE,11
        dw      1250
        db      BY_ENVELOPE,15,2
        dw      0
        db      SNARE,4
hat_record:
        db      DRUM_NOISE,2
        dw      0
        db      0,9,4
        dw      0
        db      HAT,1

next_drum:
        ld      a,(step)
        ld      c,a
        ld      hl,(drum_data)
        cp      (SECTION_BARS-1)*16
        jr      c,pattern_found
        ld      hl,(fill_data)
pattern_found:
        and     15
        call    entry
        ld      a,(hl)
        cp      '.'
        ld      hl,drum_begins
        ld      (hl),0
        ret     z
        inc     (hl)
        ld      hl,kick_record
        cp      'K'
        jr      z,begin_drum
        ld      hl,snare_record
        cp      'S'
        jr      z,begin_drum
        ld      hl,hat_record
begin_drum:
        ld      de,drum_mixer
        ld      bc,DRUM_SIZE
        ldir
        ld      a,(drum_mixer)
        ld      e,a
        ld      a,MIXER
        call    sound
        ld      a,(drum_noise)
        ld      e,a
        ld      a,NOISE
        call    sound
        ld      hl,(drum_envelope)
        ld      a,ENVELOPE
        call    tone
        ld      e,FALLING       ; writing the shape starts it
        ld      a,SHAPE
        jp      sound

play_drum:
        ld      a,(drum_level)
        ld      (levels+2),a
        ld      e,a
        ld      a,(drum_volume)
        or      a
        jr      z,drum_by_level
        ld      e,a
drum_by_level:
        ld      a,VOLUME_C
        call    sound
        ld      hl,(drum_period)
        ld      a,PERIOD_C
        call    tone
        ld      de,210          ; the tone falls
        add     hl,de
        ld      (drum_period),hl
        ld      a,(drum_fall)
        ld      e,a
        ld      hl,drum_level
        ld      a,(hl)
        sub     e
        jr      nc,drum_sounds
        xor     a
drum_sounds:
        ld      (hl),a
        ret

; ---- sound generator -----------------------------------------------------------------------------

silence:
        ld      e,ALL_TONES
        ld      a,MIXER
        call    sound
        ld      e,0
        ld      a,VOLUME_A
        call    sound
        ld      a,VOLUME_B
        call    sound
        ld      a,VOLUME_C
                                ; falls into the write

; E to register A.
sound:  out     (SOUND_SELECT),a
        ld      a,e
        out     (SOUND_DATA),a
        ret

; HL to the registers A and A+1.
tone:   out     (SOUND_SELECT),a
        inc     a
        ld      e,a
        ld      a,l
        out     (SOUND_DATA),a
        ld      a,e
        ld      e,h
        jr      sound

; The period of note A in DE.
period_of:
        ld      hl,periods
        add     a,a
        call    entry
        ld      e,(hl)
        inc     hl
        ld      d,(hl)
        ret

; HL + A in HL.
entry:  add     a,l
        ld      l,a
        ret     nc
        inc     h
        ret

; Sixteenths of the clock, 2216750 Hz, by the frequency; four octaves from C, 65.4 Hz.
periods:
        dw      2118,1999,1887,1781,1681,1587,1498,1414,1334,1260,1189,1122
        dw      1059,1000,944,891,841,793,749,707,667,630,594,561
        dw      530,500,472,445,420,397,374,353,334,315,297,281
        dw      265,250,236,223,210,198,187,177,167,157,149,140
        dw      132

        include "tune_screen.asm"
        include "tune_score.asm"

        end     start
