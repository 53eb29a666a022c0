#pragma once
/// Settings in the page's local storage, one item each, so that other pages of the program find a
/// change at once. A number is kept as "#" and its digits, a text as "$" and the text.

#include "platform/settings.h"

struct WebSettings final : public Settings {
    bool open() override;
    void close() override {}
    std::string complaint() override { return {}; }
    std::optional<uint32_t> number(const std::string& name) override;
    std::optional<std::string> text(const std::string& name) override;
    bool set_number(const std::string& name, uint32_t value) override;
    bool set_text(const std::string& name, const std::string& value) override;
};
