#pragma once
/// Stands in for what the folder does not have yet.
#if __has_include("platform/win32/win32_forms.h")
#include "platform/win32/win32_dialogs.h"
#include "platform/win32/win32_forms.h"
#else
#include "platform/headless/headless.h"
class Win32Keyboard;
struct Win32Dialogs {
    explicit Win32Dialogs(Win32Context&) {}
    operator Dialogs&() { return platform.dialogs(); }
    HeadlessPlatform platform{HeadlessOptions()};
};
struct Win32Forms {
    Win32Forms(Win32Context&, Win32Keyboard&) {}
    operator Forms&() { return platform.forms(); }
    HeadlessPlatform platform{HeadlessOptions()};
};
#endif
