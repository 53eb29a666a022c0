#pragma once
#include <optional>
#include <string>

/// The host's clipboard, as text in the machine's bytes.
struct Clipboard {
    virtual ~Clipboard() = default;
    /// Nothing when it holds no text, or when the host has to ask for it first: the text is a
    /// message then.
    virtual std::optional<std::string> text() = 0;
    /// False when the clipboard cannot be used.
    virtual bool set_text(const std::string& text) = 0;
};
