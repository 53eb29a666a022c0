#pragma once
/// What the keys of the debugger's window do in every section, and its buttons.

#include "debugger_view/services.h"
#include "platform/events.h"

#include <span>

struct DebugAction {
    uint8_t key;
    uint8_t modifiers;
    const char* label; ///< of the button; null without one
    void (*act)();
    /// Whether it does anything at the moment.
    bool (*possible)();
};
std::span<const DebugAction> debug_actions();
/// That of the key; null without one.
const DebugAction* debug_action_of(const Event& event);
