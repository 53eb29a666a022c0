#pragma once
#include "platform/clipboard.h"

struct WebClipboard final : public Clipboard {
    std::optional<std::string> text() override { return {}; }
    bool set_text(const std::string& /*text*/) override { return false; }
};
