#pragma once
/// The look of a picture tube that the user has chosen, as long as this computer can draw it: every
/// picture of the machine has to be shown, and in time.

#include "platform/pane.h"

#include <cstdint>

/// The setting: a TubeLook as a number, whatever this computer can do.
uint32_t kept_tube_look();
/// Takes the setting over; an unknown number is off. The tube starts with the first picture.
void keep_tube_look(uint32_t look);
/// The user's command. It starts the tube, or says in the status bar why there is none.
void choose_tube_look(TubeLook look);

/// The look that pictures have at the moment.
TubeLook shown_tube_look();
/// How the next picture is to be drawn in an area of so many units. Starts the tube when needed.
TubeLook tube_look_for(Size area);
/// To be told after each picture. A tube that is too slow for the machine's pictures is off until
/// the user chooses it again or the area is a good deal smaller, and the status bar says so.
void tube_picture_shown();
