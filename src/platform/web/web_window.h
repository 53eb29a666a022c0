#pragma once
/// The main window is the page itself: its size is what the browser gives it.

#include "platform/web/web_context.h"
#include "platform/web/web_menu.h"
#include "platform/window.h"

class WebWindow final : public Window {
public:
    explicit WebWindow(WebContext& context) : context_(context) {}

    bool create(const std::string& title) override;
    void show() override;
    void destroy() override;
    void set_title(const std::string& title) override;
    std::string title() override { return title_; }
    Size outer_size(Size client) override { return client; }
    Rectangle outer_rectangle() override { return client_on_screen(); }
    Size client_size() override { return context_.client; }
    Rectangle client_on_screen() override {
        return {0, 0, context_.client.width, context_.client.height};
    }
    Size screen_size() override { return context_.client; }
    Rectangle available_area() override { return client_on_screen(); }
    double pixel_ratio() override { return context_.ratio; }
    void move(const Rectangle& /*outer*/) override {}
    void set_fixed_size(Size /*outer*/) override {}
    void set_least_size(Size /*outer*/) override {}
    void set_maximized(bool /*on*/) override {}
    bool maximized() override { return true; } // the page is as large as it can be
    void invalidate() override { context_.post_once(Event::Kind::paint); }
    void set_full_screen(bool on) override;
    void show_cursor(bool on) override;
    void set_menu(const std::vector<MenuEntry>& menus) override { menu_.set(menus); }
    void check_item(int id, bool checked) override { menu_.check(id, checked); }
    void set_item_text(int id, const std::string& text) override { menu_.set_text(id, text); }
    void set_item_state(int id, ItemState state) override { menu_.set_state(id, state); }
    void popup_menu(const std::vector<MenuEntry>& entries, int x, int y) override {
        menu_.popup(entries, x, y);
    }
    void claim_keys(std::span<const KeyChord> chords) override;
    void place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) override;
    Rectangle keyboard_rectangle() override;
    void place_debugger(bool /*open*/, const Rectangle& /*wanted*/, int /*closed*/) override {}
    Rectangle debugger_rectangle() override { return {}; }
    bool has_debugger() override { return false; } // a page has no other window
    void set_readable(const std::string& name, std::function<ReadableText()> text) override;

private:
    WebContext& context_;
    WebMenu menu_;
    std::string title_;
};
