#pragma once
/// The clipboard of the browser, which the page has to ask for: its text comes as a message.
/// The machine's bytes are Latin-1 with lines ended by CR LF, the page's are Unicode and LF.

#include "platform/clipboard.h"

struct WebClipboard final : public Clipboard {
    std::optional<std::string> text() override;
    bool set_text(const std::string& text) override;
};
