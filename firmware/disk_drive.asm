; The controller: selecting a drive, moving its head, sectors.

DRIVE_SELECT    EQU 0FFE0h      ; one bit per drive
FDC_COMMAND     EQU 0FFECh      ; written; read: status
FDC_STATUS      EQU 0FFECh
FDC_TRACK       EQU 0FFEDh
FDC_SECTOR      EQU 0FFEEh
FDC_DATA        EQU 0FFEFh

COMMAND_RESTORE EQU 03h         ; slowest steps
COMMAND_SEEK    EQU 1Bh         ; with the head loaded
COMMAND_READ    EQU 88h
COMMAND_WRITE   EQU 0A8h
COMMAND_ADDRESS EQU 0C4h
COMMAND_FORMAT  EQU 0F4h
COMMAND_STOP    EQU 0D0h

; Bit 0 of the status is 1 while a command runs.
STATUS_REQUEST_BIT EQU 1
STATUS_LOST     EQU 04h
STATUS_CRC      EQU 08h
STATUS_MISSING  EQU 10h
STATUS_FAULT    EQU 20h
STATUS_PROTECTED_BIT EQU 6
STATUS_NOT_READY EQU 80h
READ_ERRORS     EQU STATUS_NOT_READY + STATUS_MISSING + STATUS_CRC + STATUS_LOST
WRITE_ERRORS    EQU READ_ERRORS + STATUS_FAULT

TRIES           EQU 3

; Selects DISK_DRIVE, stops what the controller does, waits until the disk turns.
; Out:  carry if there is none
; Uses: AF, BC
ready_drive:
        LD A,(DISK_DRIVE)
        LD B,A
        INC B
        LD A,80h
_bit:
        RLCA
        DJNZ _bit
        LD (DRIVE_SELECT),A
        LD A,COMMAND_STOP
        CALL send_command
        LD BC,0
_wait:
        LD A,(FDC_STATUS)
        INC A
        SCF
        RET Z                   ; FF: no disk at all
        DEC A
        RLA
        RET NC
        CALL short_pause
        DEC BC
        LD A,B
        OR C
        JR NZ,_wait
        SCF
        RET

; In:   A command
send_command:
        LD (FDC_COMMAND),A
; The controller needs a moment before its status is true.
short_pause:
        PUSH BC
        LD B,6
_count:
        DJNZ _count
        POP BC
        RET

; In:   A command
; Out:  A status when it has ended
; Uses: F, BC
run_command:
        CALL send_command
        LD BC,0
_busy:
        CALL short_pause
        LD A,(FDC_STATUS)
        RRCA
        RET NC
        DEC BC
        LD A,B
        OR C
        JR NZ,_busy
        LD A,COMMAND_STOP
        JR send_command

; Moves the head of the drive.
; In:   D track
; Uses: AF, BC
seek_track:
        PUSH HL
        CALL head_cell
        LD A,(HL)
        CP D
        JR Z,_there
        INC A
        JR NZ,_known
        LD A,COMMAND_RESTORE
        CALL run_command
        LD (HL),0
_known:
        LD A,(HL)
        LD (FDC_TRACK),A
        LD (HL),D
        CP D
        JR Z,_there
        LD A,D
        LD (FDC_DATA),A
        LD A,COMMAND_SEEK
        CALL run_command
_there:
        POP HL
        LD A,D
        LD (FDC_TRACK),A
        RET
; Out:  HL where the track of the drive is remembered
; Uses: AF
head_cell:
        LD A,(DISK_DRIVE)
        ADD A,LOW HEADS
        LD L,A
        LD H,HIGH HEADS
        RET

; Reads a sector.
; In:   D track, E sector, HL where to
; Out:  carry if it could not be read, A status; DE, HL kept
; Uses: AF, BC
try_read:
        LD B,TRIES
_again:
        PUSH BC
        PUSH HL
        CALL seek_track
        LD A,E
        LD (FDC_SECTOR),A
        LD A,COMMAND_READ
        CALL send_command
        LD B,0
_wait:
        LD A,(FDC_STATUS)
        BIT STATUS_REQUEST_BIT,A
        JR Z,_none
        LD A,(FDC_DATA)
        LD (HL),A
        INC HL
        DJNZ _wait
        LD A,(FDC_STATUS)
        AND READ_ERRORS
        JR Z,_good
_failed:
        CALL head_cell
        LD (HL),0FFh            ; the next try begins at track 0
        POP HL
        POP BC
        DJNZ _again
        SCF
        RET
_none:
        BIT 7,A
        JR NZ,_failed
        RRCA
        JR NC,_failed
        JR _wait
_good:
        POP HL
        POP BC
        RET

; Reads a sector or reports the error.
; In:   D track, E sector, HL where to
; Out:  DE, HL kept
; Uses: AF, BC
read_sector:
        CALL ready_drive
        JR C,no_disk
        CALL try_read
        RET NC
; Without a disk no ID field comes by.
disk_failed:
        LD A,COMMAND_ADDRESS
        CALL send_command
_wait:
        LD A,(FDC_STATUS)
        BIT STATUS_REQUEST_BIT,A
        JR NZ,_disk
        RRCA
        JR C,_wait
        JR no_disk
_disk:
        LD A,COMMAND_STOP
        CALL send_command
        LD E,ERR_DISK
        DEFB 1                  ; LD BC, over the next LD E
no_disk:
        LD E,ERR_NO_DISK
        JP raise_error

; Writes a sector or reports the error.
; In:   D track, E sector, HL where from
; Out:  DE, HL kept
; Uses: AF, BC
write_sector:
        CALL ready_drive
        JR C,no_disk
        LD B,TRIES
_again:
        PUSH BC
        PUSH HL
        CALL seek_track
        LD A,E
        LD (FDC_SECTOR),A
        LD A,COMMAND_WRITE
        CALL send_command
        LD B,0
_wait:
        LD A,(FDC_STATUS)
        BIT STATUS_REQUEST_BIT,A
        JR Z,_none
        LD A,(HL)
        LD (FDC_DATA),A
        INC HL
        DJNZ _wait
_end:
        CALL short_pause
        LD A,(FDC_STATUS)
        RRCA
        JR C,_end
        RLCA
        AND WRITE_ERRORS
        JR Z,_good
_failed:
        BIT STATUS_PROTECTED_BIT,A
        JR NZ,protected
        CALL head_cell
        LD (HL),0FFh
        POP HL
        POP BC
        DJNZ _again
        JR disk_failed
_none:
        BIT STATUS_PROTECTED_BIT,A
        JR NZ,_failed
        BIT 7,A
        JR NZ,_failed
        RRCA
        JR C,_wait
        RLCA
        JR _failed
_good:
        POP HL
        POP BC
        RET
protected:
        LD E,ERR_PROTECTED
        JP raise_error
