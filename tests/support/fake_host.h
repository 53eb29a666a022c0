#pragma once
/// Stand-in for the application shell: records what the machine tells it.

#include "wall/report.h"

#include <string>
#include <vector>

struct FakeHost {
    std::string status[4];
    std::string title;
    std::vector<Report> reports;
    int lamp = -1;
    int screen_updates = 0;
    int screenshots = 0;
    int captured_frames = 0;
    int frames_told = 0; ///< by frame_ran
    int pictures_ahead = 0;
    bool canvas = true;
    std::string save_path;   ///< the answer when a save is to be named; empty cancels
    bool save_waits = false; ///< for the answer
    int save_questions = 0;
    int breakpoints = 0;      ///< reached
    bool stands_still = true; ///< there
};
extern FakeHost fake_host;
