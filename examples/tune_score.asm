; The score of the tune.

; Notes count semitones from the C of 65.4 Hz.
G4      equ     31
A4      equ     33
B4      equ     35
C5      equ     36
CS5     equ     37
D5      equ     38
E5      equ     40
FS5     equ     42
G5      equ     43
A5      equ     45
B5      equ     47
C6      equ     48
REST    equ     0FEh
FINISH  equ     0FFh

; Chords by their root; two a bar.
MINOR   equ     80h
CC      equ     0
CD      equ     2
CEM     equ     4+MINOR
CG      equ     7
CA      equ     9
CAM     equ     9+MINOR
CBM     equ     11+MINOR

order:  dw      opening,verse,middle,finale,0

; A section: chords, drums of a bar and of the last one, then the melody. All last eight bars.
opening:
        dw      verse_chords,light_drums,roll_in
        db      D5,4,B4,2,D5,2,G5,6,FS5,2
        db      E5,4,G5,2,E5,2,B4,8
        db      C5,2,D5,2,E5,2,G5,2,E5,4,D5,2,C5,2
        db      A4,6,B4,2,C5,4,D5,4
        db      D5,4,B4,2,D5,2,G5,6,A5,2
        db      B5,4,A5,2,G5,2,E5,8
        db      C5,2,E5,2,G5,2,E5,2,FS5,2,A5,2,FS5,2,D5,2
        db      G5,12,REST,4,FINISH

verse:  dw      verse_chords,dance_drums,dance_fill
        db      D5,4,B4,2,D5,2,G5,6,FS5,2
        db      E5,4,G5,2,E5,2,B4,6,B4,2
        db      C5,2,D5,2,E5,2,G5,2,E5,4,D5,2,C5,2
        db      A4,4,A4,2,B4,2,C5,4,D5,4
        db      D5,4,B4,2,D5,2,G5,6,A5,2
        db      B5,4,A5,2,G5,2,E5,6,D5,2
        db      C5,2,E5,2,G5,2,E5,2,FS5,2,A5,2,FS5,2,D5,2
        db      G5,10,REST,2,D5,2,G5,2,FINISH

middle: dw      middle_chords,middle_drums,roll_in
        db      E5,6,FS5,2,G5,4,B5,4
        db      FS5,8,D5,4,B4,4
        db      E5,6,D5,2,C5,4,E5,4
        db      D5,12,REST,2,B4,2
        db      C5,2,B4,2,C5,2,D5,2,E5,4,A5,4
        db      G5,6,FS5,2,E5,8
        db      E5,2,CS5,2,E5,2,G5,2,A5,4,G5,4
        db      FS5,2,G5,2,FS5,2,E5,2,D5,8,FINISH

finale: dw      verse_chords,dance_drums,dance_fill
        db      D5,2,G5,1,A5,1,B5,2,A5,1,G5,1,D5,4,G5,4
        db      E5,2,G5,1,FS5,1,E5,2,B4,2,E5,8
        db      C5,1,D5,1,E5,1,G5,1,E5,4,G5,1,E5,1,D5,1,C5,1,E5,4
        db      D5,2,C5,1,B4,1,A4,4,B4,2,C5,2,D5,4
        db      D5,2,G5,1,A5,1,B5,2,D5,2,G5,6,A5,2
        db      B5,2,C6,1,B5,1,A5,2,G5,2,E5,8
        db      C5,1,E5,1,G5,1,C6,1,B5,2,G5,2,A5,1,FS5,1,D5,1,FS5,1,A5,2,C6,2
        db      B5,2,G5,2,D5,2,B4,2,G4,8,FINISH

verse_chords:
        db      CG,CG,CEM,CEM,CC,CC,CD,CD
        db      CG,CG,CEM,CEM,CC,CD,CG,CG
middle_chords:
        db      CEM,CEM,CBM,CBM,CC,CC,CG,CG
        db      CAM,CAM,CEM,CEM,CA,CA,CD,CD

; K kick, S snare, H hat.
light_drums:
        db      "K...H...K...H.H."
middle_drums:
        db      "K..HS..HK.K.S..H"
dance_drums:
        db      "K.H.S.H.K.KHS.HH"
dance_fill:
        db      "K.H.S.HSK.SSK.S."
roll_in:
        db      "K.H.S.H.K.S.SSSS"
