#pragma once
/// The panel of the ten slots, with a picture of each.

/// Shows it, until the user closes it or loads a state.
void ui_states();
