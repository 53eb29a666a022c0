#pragma once
/// Forms of Windows' own controls, which are laid out by the sizes of their texts.

#include "platform/forms.h"
#include "platform/win32/win32_context.h"
#include "platform/win32/win32_picture.h"

class Win32Keyboard;

class Win32Forms final : public Forms {
public:
    Win32Forms(Win32Context& context, Win32Keyboard& keyboard);
    std::unique_ptr<Form> create(const FormDescription& description, FormHandler handler) override;

private:
    Win32Context& context_;
    Win32Keyboard& keyboard_;
    GdiPlus gdi_plus_;
};
