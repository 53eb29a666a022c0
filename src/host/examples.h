#pragma once
/// The project's own programs, for the menu. They are files in the place of installation, or in the
/// build folder of a program that is not installed.

#include <array>
#include <cstddef>
#include <string>

struct Example {
    const char* label; ///< in the menu
    const char* file;
    const char* tip;
};

inline constexpr auto examples = std::to_array<Example>({
    {"&Night Raiders", "raiders.bas", "Shoots the bats and beetles that are after your cabbages."},
    {"&Maze", "maze.bas", "Gems and ghosts in a cellar that is new each time."},
    {"&Catch", "catch.bas", "Keeps the basket under the apples."},
    {"The Drowned &Bell", "bell.bas", "An adventure in words."},
    {"&Prelude in C", "prelude.bas", "Music by Bach, whose notes fall onto a keyboard."},
    {"M&usic", "music.bas", "A round for the three voices of the sound generator."},
    {"&Tune", "tune.cmd", "A dance of melody, chords and drums."},
    {"C&olours", "colours.cmd", "Sixteen colours and characters of the program's own."},
    {"Bounc&e", "bounce.cmd", "Balls in front of each other, with their shadows."},
    {"&Graphics", "graphics.bas", "Four pictures, drawn one after the other."},
    {"&Sketch", "sketch.bas", "Draws with the joystick or the keys."},
    {"G&lyphs", "glyphs.bas", "Makes characters for a program of yours."},
    {"&Joysticks", "sticks.cmd", "Shows what both joysticks and their keypads do."},
});

/// The path of its file; empty when it is not there.
std::string example_path(const Example& example);
/// The path of a PNG file with a scene of it, which may be missing.
std::string example_picture(const Example& example);
/// Switches the machine off and on and starts the example, so that it does not matter what ran
/// before. Screenshots go to the current folder.
void start_example(const Example& example);
/// Greys the menu's items whose files are not there.
void show_examples();
