#pragma once
#include "platform/status_bar.h"
#include "platform/web/web_context.h"

class WebStatusBar final : public StatusBar {
public:
    explicit WebStatusBar(WebContext& context) : context_(context) {}
    bool create(std::span<const int> right_edges, int drawn_part) override;
    void destroy() override;
    bool exists() override { return exists_; }
    int height() override;
    void set_text(int part, const std::string& text) override;
    void set_tip(int part, const std::string& text) override;
    void set_buttons(const std::vector<StatusButton>& buttons) override;
    void show_over(const std::string& text) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;
    Colour background_colour() override;
    Colour shadow_colour() override;
    Colour highlight_colour() override;
    void redraw() override;

private:
    WebContext& context_;
    bool exists_ = false;
};
