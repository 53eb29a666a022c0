#pragma once
/// The program without a display, started anew for every run. Settings are in memory, files in the
/// process's own folder.

#include "platform/headless/headless.h"

struct FuzzShell {
    FuzzShell();
    ~FuzzShell();
    FuzzShell(const FuzzShell&) = delete;
    FuzzShell& operator=(const FuzzShell&) = delete;

    /// Starts with the settings that stand in the platform. The machine has been on for a while.
    void start();

    HeadlessPlatform host;
    bool started = false;
};
