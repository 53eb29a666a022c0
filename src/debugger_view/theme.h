#pragma once
/// The colours of the debugger's window: dark, or light where the host's own windows are.

#include "debugger_view/cells.h"

struct ViewTheme {
    CellStyle text;       ///< what most is written in
    CellStyle quiet;      ///< bytes of instructions, numbers beside others
    CellStyle changed;    ///< since the last stop
    CellStyle name;       ///< symbols
    CellStyle title;      ///< of a section that is hidden behind another one
    CellStyle front;      ///< of the one that is shown
    CellStyle focus;      ///< of the one that has the keys
    CellStyle cursor;     ///< of the section that has the keys
    CellStyle rest;       ///< of any other
    CellStyle counter;    ///< the line that PC is on
    CellStyle breakpoint; ///< where one is
    CellStyle off;        ///< where one is that is off
    CellStyle button;
    CellStyle no_button; ///< that does nothing at the moment
    CellStyle bar;       ///< state and hints
    CellStyle past;      ///< the machine is what it was
    CellStyle trouble;   ///< a question, or why something cannot be
    Colour cross;        ///< of the beam
};

/// For a host whose windows have this colour.
const ViewTheme& theme_for(Colour window);
