#pragma once
/// Stand-in for the application shell: records what the machine tells it.

#include <string>
#include <vector>

struct FakeHost {
    std::string status[4];
    std::string title;
    std::vector<std::string> warnings;
    int lamp = -1;
    int screen_updates = 0;
    int screenshots = 0;
    int captured_frames = 0;
    bool canvas = true;
};
extern FakeHost fake_host;
