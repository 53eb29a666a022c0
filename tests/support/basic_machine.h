#pragma once
/// The machine at its BASIC prompt, for programs given as text: types them in and gives the screen
/// that they leave.

#include "platform/headless/headless.h"

#include <string>
#include <vector>

/// A ROM to try in place of the built-in one: the file that BASIC_ROM in the environment names,
/// empty without that.
std::vector<uint8_t> trial_rom();

class BasicMachine {
public:
    BasicMachine();
    /// Powers standard model `slot` on, with this BASIC ROM in place of its own when it is not
    /// empty, and a disk ROM when one follows in the same bytes, and answers the question for the
    /// memory size.
    void boot(int slot, const std::vector<uint8_t>& rom = {});
    /// Types the text ("\n" is Enter) and runs until the machine waits for a key again; false when
    /// `frames` frames were not enough.
    bool type(const std::string& text, int frames = 50 * 60);
    /// The rows of the text screen without the blanks at their ends; empty rows at the end are left
    /// out.
    std::vector<std::string> screen() const;
    /// Emulated frames of the last `type`.
    int frames() const { return frames_; }
    HeadlessPlatform& platform() { return platform_; }

private:
    bool run_until_idle(int frames);
    HeadlessPlatform platform_;
    int frames_ = 0;
};
