#pragma once
#include "platform/clipboard.h"
#include "platform/win32/win32_context.h"

class Win32Clipboard final : public Clipboard {
public:
    explicit Win32Clipboard(const Win32Context& context) : context_(context) {}
    std::optional<std::string> text() override;
    bool set_text(const std::string& text) override;

private:
    const Win32Context& context_;
};
