#pragma once
/// What would be seen: the main window, what is drawn into it, its status bar, and the whole
/// screen. Nothing here sends messages of its own; its driver does.

#include "platform/pane.h"
#include "platform/picture_tube.h"
#include "platform/status_bar.h"
#include "platform/surface.h"
#include "platform/window.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/// Pixels that the frame adds around the client area.
constexpr int HEADLESS_FRAME = 4;
constexpr int HEADLESS_CAPTION = 20;
constexpr int HEADLESS_MENU = 20;
constexpr int HEADLESS_STATUS_BAR = 23;
constexpr int HEADLESS_FILM_BAR = 40;
constexpr int HEADLESS_OVERLAY = 24; ///< with a row of text
constexpr Size HEADLESS_CELL{8, 12};
constexpr Size HEADLESS_DEBUGGER{120, 50}; ///< cells, where no size is wanted
constexpr Colour HEADLESS_SHADOW = 0x808080;
constexpr Colour HEADLESS_HIGHLIGHT = 0xFFFFFF;

struct HeadlessWindow final : public Window {
    explicit HeadlessWindow(Size screen_pixels) : screen(screen_pixels) {}

    bool create(const std::string& title) override;
    void show() override { shown = exists; }
    void destroy() override;
    void set_title(const std::string& title) override { caption = title; }
    std::string title() override { return caption; }
    Size outer_size(Size client) override;
    Rectangle outer_rectangle() override { return outer; }
    Size client_size() override;
    Rectangle client_on_screen() override;
    Size screen_size() override { return screen; }
    Rectangle available_area() override { return {0, 0, screen.width, screen.height}; }
    double pixel_ratio() override { return ratio; }
    void move(const Rectangle& rectangle) override;
    void set_fixed_size(Size size) override;
    void set_least_size(Size size) override { least = size; }
    void set_maximized(bool on) override;
    bool maximized() override { return is_maximized; }
    void invalidate() override { ++invalidations; }
    void set_full_screen(bool on) override;
    void show_cursor(bool on) override { cursor_shown = on; }
    void set_menu(const std::vector<MenuEntry>& menus) override { menu = menus; }
    void check_item(int id, bool checked) override;
    void set_item_text(int id, const std::string& text) override;
    void set_item_state(int id, ItemState state) override;
    void popup_menu(const std::vector<MenuEntry>& entries, int x, int y) override {
        popup = entries;
        popup_place = {x, y};
    }
    void claim_keys(std::span<const KeyChord> chords) override {
        claimed.assign(chords.begin(), chords.end());
    }
    void place_keyboard(KeyboardPlace place, const Rectangle& wanted, int closed) override;
    Rectangle keyboard_rectangle() override;
    void place_debugger(bool open, const Rectangle& wanted, int closed) override;
    Rectangle debugger_rectangle() override { return debugger_open ? debugger : Rectangle{}; }
    bool has_debugger() override { return true; }
    void set_readable(const std::string& name, std::function<ReadableText()> text) override {
        readable_name = name;
        readable = std::move(text);
    }

    /// The menu's own state; false, empty and hidden for an id that it does not hold.
    bool checked(int id) const;
    std::string item_text(int id) const;
    ItemState item_state(int id) const;

    bool creation_fails = false; ///< set by the driver
    bool exists = false, shown = false, destroyed = false;
    std::string caption;
    Size screen;
    Rectangle outer{100, 100, 748, 644};
    Rectangle windowed; ///< outer, while full screen
    Rectangle normal;   ///< outer, while maximized
    Size fixed;         ///< zero: sizable
    Size least;
    double ratio = 1; ///< set by the driver
    bool full_screen = false, is_maximized = false, cursor_shown = true;
    KeyboardPlace keyboard_place = KeyboardPlace::hidden;
    Rectangle keyboard; ///< as it was wanted
    int keyboard_closed = 0;
    bool debugger_open = false;
    Rectangle debugger; ///< its pane; the driver may size it
    int debugger_closed = 0;
    int invalidations = 0;
    std::vector<MenuEntry> menu, popup;
    Size popup_place; ///< from the screen's corner
    std::vector<KeyChord> claimed;
    std::string readable_name;
    std::function<ReadableText()> readable;
};

/// A picture that was presented, without its pixels.
struct HeadlessCopy {
    Size size;
    int bits = 0;
    int x = 0, y = 0;
};

struct HeadlessStretch {
    HeadlessCopy picture;
    Rectangle target;
    Scaling how;
};

struct HeadlessFill {
    Rectangle area;
    Colour colour = 0;
    bool operator==(const HeadlessFill&) const = default;
};

struct HeadlessText {
    int x = 0, y = 0;
    std::string text;
    Colour colour = 0, background = 0;
};

struct HeadlessPane final : public Pane {
    HeadlessPane(HeadlessWindow& window, StatusBar& status_bar, bool keep_pictures,
                 PaneId id = PaneId::picture)
        : window_(window), status_bar_(status_bar), keep_pictures_(keep_pictures), id_(id) {}

    Size size() override;
    void show(bool on) override { shown = on; }
    void copy_bitmap(const BitmapView& picture, int x, int y) override;
    void stretch_bitmap(const BitmapView& picture, const Rectangle& target,
                        const Scaling& how) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;
    Size cell_size() override { return HEADLESS_CELL; }
    void text(int x, int y, const std::string& text, Colour colour, Colour background) override;
    void line(int x, int y, int length, Colour colour) override {
        lines.push_back({{x, y, x + length, y + 1}, colour});
    }
    void set_reading(const SliderReading& given) override { reading = given; }
    void set_buttons(const std::vector<PaneButton>& given) override { buttons = given; }
    void set_message(const std::string& text, int rows) override {
        message = text;
        message_height_ = HEADLESS_OVERLAY + (rows - 1) * HEADLESS_CELL.height;
    }

    /// The texts as rows of cells from the pane's top, without blanks behind the last character.
    std::vector<std::string> rows() const;
    /// What the pane holds, where pictures are kept; black where nothing was drawn.
    Colour pixel(int x, int y) const;

    bool shown = false;
    int copies = 0, stretches = 0, fills = 0;
    HeadlessCopy last_copy;
    HeadlessStretch last_stretch;
    HeadlessFill last_fill;
    std::vector<HeadlessText> texts; ///< what no later one, fill or picture lies over
    std::vector<HeadlessFill> lines; ///< that begin where none of these came later
    SliderReading reading;
    std::string message;
    std::vector<PaneButton> buttons;

private:
    void forget(const Rectangle& area);
    void set_pixel(int x, int y, Colour colour);
    void fit_to_size();

    HeadlessWindow& window_;
    StatusBar& status_bar_;
    bool keep_pictures_;
    PaneId id_;
    int message_height_ = HEADLESS_OVERLAY;
    Size size_;
    std::vector<Colour> pixels_;
};

struct HeadlessStatusBar final : public StatusBar {
    bool create(std::span<const int> right_edges, int drawn_part) override;
    void destroy() override { present = false; }
    bool exists() override { return present; }
    int height() override { return present ? HEADLESS_STATUS_BAR : 0; }
    void set_text(int part, const std::string& text) override;
    void set_tip(int part, const std::string& text) override;
    void fill_rectangle(const Rectangle& area, Colour colour) override;
    void set_buttons(const std::vector<StatusButton>& given) override { buttons = given; }
    void show_over(const std::string& text) override { over = text; }
    Colour background_colour() override { return background; }
    Colour shadow_colour() override { return HEADLESS_SHADOW; }
    Colour highlight_colour() override { return HEADLESS_HIGHLIGHT; }
    void redraw() override { ++redraws; }

    bool creation_fails = false; ///< set by the driver
    Colour background = 0xC0C0C0;
    std::vector<StatusButton> buttons;
    std::string over; ///< all parts
    bool present = false;
    int drawn = -1;
    int redraws = 0;
    std::vector<int> edges;
    std::vector<std::string> texts, tips; ///< by part; those of the last bar stay readable
    std::vector<HeadlessFill> fills;      ///< until cleared, the first thousand
};

/// Draws nothing, and takes as long as its driver says.
struct HeadlessPictureTube final : public PictureTube {
    std::string start() override {
        started = failure.empty();
        return failure;
    }
    void stop() override { started = false; }
    int64_t take_draw_time() override { return started ? draw_time : 0; }

    std::string failure;   ///< set by the driver: what a start answers
    int64_t draw_time = 0; ///< likewise, in microseconds
    bool started = false;
};

struct HeadlessSurface final : public Surface {
    std::string create(Size size) override;
    bool exists() override { return present_now; }
    void release() override { present_now = false; }
    void present(const BitmapView& picture, const Rectangle& target, const Scaling& how,
                 bool clear) override;

    std::string failure; ///< set by the driver: what creation answers
    bool present_now = false;
    Size size;
    int presents = 0, clears = 0;
    HeadlessCopy last_picture;
    Rectangle last_target;
    Scaling last_scaling;
};
