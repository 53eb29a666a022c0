#pragma once
/// Dialogs that take the input of the whole program.

#include "platform/win32/win32_context.h"

#include <vector>

/// As long as one lives, all windows of the program but one are without input. Windows' own boxes
/// see to the window they belong to.
class Win32ModalScope {
public:
    /// For a form that is about to run.
    Win32ModalScope(Win32Context& context, HWND form);
    /// For a box of Windows' that belongs to the window in front.
    explicit Win32ModalScope(Win32Context& context);
    Win32ModalScope(const Win32ModalScope&) = delete;
    Win32ModalScope& operator=(const Win32ModalScope&) = delete;
    ~Win32ModalScope();

private:
    void hold_others(HWND but);
    Win32Context& context_;
    std::vector<HWND> held_;
    bool is_form_;
};
