#include "platform/win32/win32_forms.h"

#include "platform/win32/win32_form.h"

#include <utility>

Win32Forms::Win32Forms(Win32Context& context, Win32Keyboard& keyboard)
    : context_(context), keyboard_(keyboard) {
    INITCOMMONCONTROLSEX classes{};
    classes.dwSize = sizeof classes;
    classes.dwICC = ICC_BAR_CLASSES | ICC_LISTVIEW_CLASSES | ICC_STANDARD_CLASSES;
    InitCommonControlsEx(&classes);
}

std::unique_ptr<Form> Win32Forms::create(const FormDescription& description, FormHandler handler) {
    return std::make_unique<Win32Form>(context_, &keyboard_, description, std::move(handler));
}
