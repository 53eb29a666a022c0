#include "platform/win32/win32_modal.h"

Win32ModalScope::Win32ModalScope(Win32Context& context, HWND form)
    : context_(context), is_form_(true) {
    hold_others(form);
    context_.modal.push_back(form);
}

Win32ModalScope::Win32ModalScope(Win32Context& context) : context_(context), is_form_(false) {
    hold_others(context_.front());
}

Win32ModalScope::~Win32ModalScope() {
    for (const HWND window : held_) EnableWindow(window, TRUE);
    if (is_form_) context_.modal.pop_back();
}

void Win32ModalScope::hold_others(HWND but) {
    struct Search {
        HWND but;
        std::vector<HWND>& found;
    } search{but, held_};
    const auto collect = [](HWND window, LPARAM data) -> BOOL {
        auto& [kept, found] = *reinterpret_cast<Search*>(data);
        if (window != kept && IsWindowVisible(window) && IsWindowEnabled(window)) {
            found.push_back(window);
        }
        return TRUE;
    };
    EnumThreadWindows(GetCurrentThreadId(), collect, reinterpret_cast<LPARAM>(&search));
    for (const HWND window : held_) EnableWindow(window, FALSE);
}
