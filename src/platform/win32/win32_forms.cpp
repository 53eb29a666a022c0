#include "platform/win32/win32_forms.h"

#include "platform/win32/win32_form.h"

#include <utility>

Win32Forms::Win32Forms(Win32Context& context, Win32Keyboard& keyboard)
    : context_(context), keyboard_(keyboard) {}

std::unique_ptr<Form> Win32Forms::create(const FormDescription& description, FormHandler handler) {
    return std::make_unique<Win32Form>(context_, &keyboard_, description, std::move(handler));
}
