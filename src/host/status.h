#pragma once
/// The status bar: configuration, drive lamps, cassette, messages.

enum StatusPart : int { PART_CONFIGURATION, PART_LAMPS, PART_CASSETTE, PART_MESSAGES };

/// Creates the bar once, with its parts and lamps.
void CreateStatusBar();
void DestroyStatusBar();
int StatusBarHeight(); ///< 0 without a bar
void StatusBarRedraw();
/// Draws the lamps' bevels, and the lamps too when `lamps` is set.
void led_redraw(int lamps);
