#pragma once
#include "platform/clipboard.h"

/// The machine's bytes are Latin-1 with lines ended by CR LF, the host's are Unicode and LF.
class QtClipboard final : public Clipboard {
public:
    std::optional<std::string> text() override;
    bool set_text(const std::string& text) override;
};
