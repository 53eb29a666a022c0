#pragma once
/// The status bar: configuration, drive lamps, cassette, messages.

/// Creates the bar once, with its parts and lamps.
void CreateStatusBar();
void DestroyStatusBar();
int StatusBarHeight(); ///< 0 without a bar
void StatusBarRedraw();
/// Draws the lamps' bevels, and the lamps too when `lamps` is set.
void led_redraw(int lamps);
