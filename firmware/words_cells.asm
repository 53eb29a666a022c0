; Cells of the machine's own words.
; A cold start leaves them 0 but for what fkey_defaults fills.
SHAPE_TABLE     EQU 4320h       ; address of the moves that SHAPE draws; programs write it
DRAW_COLOUR     EQU 4322h       ; pattern that FCOLOUR chose
SHAPE_SCALE     EQU 4323h       ; 1-255
PEN             EQU 4324h       ; pattern that is drawn
PEN_MODE        EQU 4325h       ; FF: the pen replaces what it meets, 0: exclusive-or
LAST_POINT      EQU 4326h       ; column, row
STEP_MAJOR      EQU 4328h       ; line: what a step adds to a point, always and now and then
STEP_MINOR      EQU 432Ah
CENTRE          EQU 4328h       ; circle: column, row
BORDER          EQU 4328h       ; fill: pattern of the border
SPAN            EQU 432Ah       ; fill: first and last column of a span
FKEY_NEXT       EQU 432Ch       ; next character that a function key types, or 0
FKEY_TEXTS      EQU 4330h       ; eight texts, each ended by 0
FKEY_END        EQU 4380h
