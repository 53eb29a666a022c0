#include "host/screen_keyboard_picture.h"

#include "host/engraving.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using enum ScreenKey::Kind;

constexpr int KEY_HEIGHT = 4;
constexpr int SWITCH_HEIGHT = 2; ///< of what stands on the keyboard's edge
constexpr int FIRST_ROW = 3;     ///< below the edge

constexpr double LEGEND_EDGE = 0.09; ///< in key widths

constexpr uint8_t ROW_CURSOR = 6, ROW_SHIFT = 7;

/// What MOD SEL adds to a code, below and from 40 on.
constexpr uint8_t GRAPHICS_OF_MARKS = 0xA0, GRAPHICS_OF_LETTERS = 0x40;
constexpr uint8_t FIRST_LETTER = 0x40;

constexpr Colour CASE_TOP = 0x3A3A3E, CASE = 0x2A2A2D;
constexpr Colour SKIRT = 0x17171A, SKIRT_EDGE = 0x0C0C0E;
constexpr Colour FACE_TOP = 0x5A5A60, FACE = 0x48484D;
constexpr Colour OTHER_TOP = 0x7A4A40, OTHER = 0x663C33; ///< keys of the edge of the keyboard
constexpr Colour LIT_TOP = 0xFFCB5C, LIT = 0xF2A81D;
constexpr Colour NEXT_TOP = 0x9C7A35, NEXT = 0x866626;
constexpr Colour LEGEND = 0xFFFFFF, WEAK_LEGEND = 0xA9A9AE;
constexpr Colour GRAPHICS = 0x9DE0A8, WEAK_GRAPHICS = 0x8FBF97;
constexpr Colour CELL = 0x2C2C30;
constexpr Colour HOST = 0x86CBFF;
constexpr Colour ON_LIGHT = 0x201404, WEAK_ON_LIGHT = 0x6B4A10;
constexpr Colour EDGE_TEXT = 0xD6D0C4;

/// One row of keys of the same width, with what they give.
ScreenKey letter(int left, int top, char code) {
    static constexpr const char* NAMES[] = {"@", "A", "B", "C", "D", "E", "F", "G", "H",
                                            "I", "J", "K", "L", "M", "N", "O", "P", "Q",
                                            "R", "S", "T", "U", "V", "W", "X", "Y", "Z"};
    const int index = code - '@';
    return {.left = left,
            .top = top,
            .width = 4,
            .row = uint8_t(index / 8),
            .column = uint8_t(index % 8),
            .legend = NAMES[index],
            .code = uint8_t(code),
            .shifted_code = uint8_t(code + 0x20)};
}

ScreenKey mark(int left, int top, const char* legend, const char* shifted) {
    // 0 to 9, : and ; follow each other in the matrix, and behind them , - . /
    const int index = legend[0] - (legend[0] < '0' ? ',' - 12 : '0');
    return {.left = left,
            .top = top,
            .width = 4,
            .row = uint8_t(4 + index / 8),
            .column = uint8_t(index % 8),
            .legend = legend,
            .shifted = shifted,
            .code = uint8_t(legend[0]),
            .shifted_code = uint8_t(shifted[0])};
}

std::vector<ScreenKey> make_keys() {
    std::vector<ScreenKey> keys;
    int left = 0, top = FIRST_ROW;
    const auto other = [&](int width, unsigned row, unsigned column, const char* legend,
                           const char* shifted = "", uint8_t code = 0) {
        keys.push_back({.left = left,
                        .top = top,
                        .width = width,
                        .row = uint8_t(row),
                        .column = uint8_t(column),
                        .legend = legend,
                        .shifted = shifted,
                        .code = code});
        left += width;
    };
    const auto take_letters = [&](std::string_view codes) {
        for (const char code : codes) {
            keys.push_back(letter(left, top, code));
            left += 4;
        }
    };
    const auto take_mark = [&](const char* legend, const char* shifted) {
        keys.push_back(mark(left, top, legend, shifted));
        left += 4;
    };
    const auto function_key = [&](unsigned column, const char* legend, const char* shifted) {
        left = 63;
        other(4, 3, column, legend, shifted);
        left = 1;
        top += KEY_HEIGHT;
    };

    left = 1;
    other(6, ROW_CURSOR, 1, "CLEAR");
    for (const auto& [legend, shifted] : {std::array{"1", "!"},
                                          {"2", "\""},
                                          {"3", "#"},
                                          {"4", "$"},
                                          {"5", "%"},
                                          {"6", "&"},
                                          {"7", "'"},
                                          {"8", "("},
                                          {"9", ")"},
                                          {"0", ""},
                                          {":", "*"},
                                          {"-", "="}}) {
        take_mark(legend, shifted);
    }
    other(6, ROW_CURSOR, 2, "BREAK");
    function_key(4, "F1", "F5");

    other(4, ROW_SHIFT, 4, "CTRL");
    other(4, ROW_CURSOR, 3, "\u2191", "", '[');
    take_letters("QWERTYUIOP@");
    other(4, ROW_CURSOR, 5, "\u2190");
    other(4, ROW_CURSOR, 6, "\u2192");
    function_key(5, "F2", "F6");

    other(5, ROW_SHIFT, 3, "RPT");
    other(4, ROW_CURSOR, 4, "\u2193");
    take_letters("ASDFGHJKL");
    take_mark(";", "+");
    other(11, ROW_CURSOR, 0, "RETURN");
    function_key(6, "F3", "F7");

    other(11, ROW_SHIFT, 0, "SHIFT");
    take_letters("ZXCVBNM");
    take_mark(",", "<");
    take_mark(".", ">");
    take_mark("/", "?");
    other(9, ROW_SHIFT, 0, "SHIFT");
    function_key(7, "F4", "F8");

    left = 8;
    other(8, ROW_SHIFT, 1, "MOD SEL");
    other(34, ROW_CURSOR, 7, "", "", ' ');
    keys.back().kind = space;
    left = 63;
    other(4, 0, 0, "RESET");
    keys.back().kind = reset;

    keys.push_back({.left = 37, .width = 15, .legend = "BY CHARACTER", .kind = by_character});
    keys.push_back({.left = 52, .width = 15, .legend = "BY POSITION", .kind = by_position});
    return keys;
}

bool is_on_edge(const ScreenKey& key) { return key.top < FIRST_ROW; }

/// Keys that belong to no character are of another colour.
bool is_other(const ScreenKey& key) { return key.code == 0 && key.row != ROW_CURSOR; }

double quarter_in(Size picture) {
    return std::min(double(picture.width) / SCREEN_KEYBOARD.width,
                    double(picture.height) / SCREEN_KEYBOARD.height);
}

/// What is drawn for a key, in pixels.
struct Brush {
    Drawing& drawing;
    double unit; ///< width of a key

    Lettering lettering(double height) const {
        return {height * unit, std::max(height * unit * 0.125, 1.0)};
    }
    /// Not wider than `room`: the letters become smaller.
    Lettering fitted(std::string_view text, double height, double room) const {
        const Lettering wanted = lettering(height);
        const double width = engraved_width(text, wanted);
        return width <= room ? wanted : lettering(height * room / width);
    }
    void centred(std::string_view text, const Lettering& how, const Area& area,
                 Colour colour) const {
        const double width = engraved_width(text, how);
        // Whole pixels: upright lines of small letters are sharp.
        engrave(drawing,
                {std::round((area.left + area.right - width) / 2),
                 std::round((area.top + area.bottom - how.height) / 2)},
                text, how, colour);
    }
    void pattern(const std::array<uint8_t, 8>& rows, double left, double top, double size,
                 Colour colour) const {
        const Area area = {std::round(left), std::round(top), std::round(left) + size,
                           std::round(top) + size};
        drawing.fill({area.left - unit * 0.02, area.top - unit * 0.02, area.right + unit * 0.02,
                      area.bottom + unit * 0.02},
                     unit * 0.03, CELL);
        drawing.draw_pattern(rows, area, colour);
    }
};

struct Colours {
    Colour top, face, legend, weak_legend, graphics, weak_graphics;
};

Colours colours_of(const ScreenKey& key, KeyLook::Light light) {
    using enum KeyLook::Light;
    switch (light) {
    case pressed:
    case locked: return {LIT_TOP, LIT, ON_LIGHT, WEAK_ON_LIGHT, GRAPHICS, WEAK_GRAPHICS};
    case next: return {NEXT_TOP, NEXT, LEGEND, LEGEND, GRAPHICS, WEAK_GRAPHICS};
    case off: break;
    }
    const bool other = is_other(key);
    return {other ? OTHER_TOP : FACE_TOP,
            other ? OTHER : FACE,
            LEGEND,
            WEAK_LEGEND,
            GRAPHICS,
            WEAK_GRAPHICS};
}

/// The upper face, on which the legends stand.
Area face_of(const Area& area, double unit, bool down) {
    const double sink = down ? unit * 0.03 : 0;
    return {area.left + unit * 0.09, area.top + unit * 0.05 + sink, area.right - unit * 0.09,
            area.bottom - unit * 0.27 + sink};
}

/// The legend and the one above it, each of which is weak while the key gives the other.
void draw_two_legends(const Brush& brush, const ScreenKey& key, const KeyLook& look,
                      const Area& face, const Colours& colours) {
    using enum KeyLook::Gives;
    const bool has_graphics = key.code != 0;
    const bool upper = look.gives == shifted || (look.gives == shifted_graphics && !has_graphics);
    const bool lower = look.gives == plain || (look.gives == graphics && !has_graphics);
    const Colour above = upper ? colours.legend : colours.weak_legend;
    const Colour below = lower ? colours.legend : colours.weak_legend;
    const double unit = brush.unit, left = face.left + LEGEND_EDGE * unit;
    if (has_graphics) {
        const Lettering how = brush.lettering(0.22);
        engrave(brush.drawing, {left, face.top + unit * 0.07}, key.shifted, how, above);
        engrave(brush.drawing, {left, face.top + unit * 0.38}, key.legend, how, below);
    } else {
        const Lettering how = brush.lettering(0.19);
        const double middle = (face.top + face.bottom) / 2;
        brush.centred(key.shifted, how, {face.left, face.top, face.right, middle}, above);
        brush.centred(key.legend, how, {face.left, middle, face.right, face.bottom}, below);
    }
}

void draw_legends(const Brush& brush, const ScreenKey& key, const KeyLook& look, const Area& face,
                  const Colours& colours) {
    if (*key.shifted) return draw_two_legends(brush, key, look, face, colours);
    const double unit = brush.unit;
    const std::string_view legend = key.legend;
    if (key.code) {
        engrave(brush.drawing, {face.left + LEGEND_EDGE * unit, face.top + unit * 0.09}, legend,
                brush.lettering(0.30), colours.legend);
        return;
    }
    const bool word = legend.size() > 1 && uint8_t(legend[0]) < 0x80; // else an arrow
    brush.centred(legend, brush.fitted(legend, word ? 0.19 : 0.28, face.width() - unit * 0.1), face,
                  colours.legend);
}

void draw_graphics(const Brush& brush, const ScreenKey& key, const KeyLook& look, const Area& face,
                   const Colours& colours) {
    using enum KeyLook::Gives;
    if (!graphics_code(key, false)) return;
    const double unit = brush.unit;
    // Whole pixels of the screen for those of the character, or for two of them.
    const double size = std::max(std::round(unit * 0.27 / 4), 2.0) * 4;
    if (size > unit * 0.34) return;
    const double left = face.right - size - unit * 0.07;
    const double low = face.bottom - size - unit * 0.06;
    brush.pattern(look.graphics, left, low, size,
                  look.gives == graphics ? LEGEND : colours.weak_graphics);
    if (!graphics_code(key, true)) return;
    brush.pattern(look.graphics2, left, face.top + unit * 0.06, size,
                  look.gives == shifted_graphics ? LEGEND : colours.weak_graphics);
}

/// A button on the edge of the keyboard.
void draw_button(const Brush& brush, const ScreenKey& key, const KeyLook& look, const Area& area) {
    const double unit = brush.unit;
    const bool on = look.light != KeyLook::Light::off;
    const Area face = {area.left, area.top + unit * 0.06, area.right - unit * 0.06,
                       area.bottom - unit * 0.06};
    brush.drawing.fill(area, 0, CASE_TOP, CASE_TOP);
    brush.drawing.fill(face, unit * 0.08, on ? LIT_TOP : FACE, on ? LIT : SKIRT);
    brush.centred(key.legend, brush.fitted(key.legend, 0.18, face.width() - unit * 0.3), face,
                  on ? ON_LIGHT : LEGEND);
}

} // namespace

std::span<const ScreenKey> screen_keys() {
    static const std::vector<ScreenKey> keys = make_keys();
    return keys;
}

std::string spoken_name(const ScreenKey& key) {
    constexpr std::pair<std::string_view, const char*> ARROWS[] = {{"\u2190", "Cursor left"},
                                                                   {"\u2191", "Cursor up"},
                                                                   {"\u2192", "Cursor right"},
                                                                   {"\u2193", "Cursor down"}};
    if (key.kind == space) return "Space";
    const std::string_view legend = key.legend;
    for (const auto& [arrow, name] : ARROWS) {
        if (legend == arrow) return name;
    }
    return std::string(legend) + (*key.shifted ? " " : "") + key.shifted;
}

std::optional<uint8_t> graphics_code(const ScreenKey& key, bool shifted) {
    const uint8_t code = shifted ? key.shifted_code : key.code;
    if (!code) return {};
    return uint8_t(code + (code < FIRST_LETTER ? GRAPHICS_OF_MARKS : GRAPHICS_OF_LETTERS));
}

Area keyboard_area(Size picture) {
    const double quarter = quarter_in(picture);
    const double width = quarter * SCREEN_KEYBOARD.width, height = quarter * SCREEN_KEYBOARD.height;
    const double left = (picture.width - width) / 2, top = (picture.height - height) / 2;
    return {left, top, left + width, top + height};
}

Area area_of(const ScreenKey& key, Size picture) {
    const Area whole = keyboard_area(picture);
    const double quarter = quarter_in(picture);
    const int height = is_on_edge(key) ? SWITCH_HEIGHT : KEY_HEIGHT;
    const double top = is_on_edge(key) ? 0.5 : key.top;
    return {whole.left + key.left * quarter, whole.top + top * quarter,
            whole.left + (key.left + key.width) * quarter, whole.top + (top + height) * quarter};
}

const ScreenKey* key_at(Size picture, double x, double y) {
    const auto keys = screen_keys();
    const auto found = std::ranges::find_if(keys, [=](const ScreenKey& key) {
        const Area area = area_of(key, picture);
        return x >= area.left && x < area.right && y >= area.top && y < area.bottom;
    });
    return found == keys.end() ? nullptr : &*found;
}

void draw_keyboard_case(Drawing& drawing) {
    const Area whole = keyboard_area(drawing.size());
    const double quarter = quarter_in(drawing.size());
    const Brush brush = {drawing, quarter * 4};
    const Size size = drawing.size();
    drawing.fill({0, 0, double(size.width), double(size.height)}, 0, CASE);
    const double edge = whole.top + 2.75 * quarter;
    drawing.fill({0, 0, double(size.width), edge}, 0, CASE_TOP);
    drawing.fill({0, edge, double(size.width), edge + std::max(quarter * 0.12, 1.0)}, 0, SKIRT);

    const Lettering how = brush.lettering(0.17);
    const double top = std::round(whole.top + 1.5 * quarter - how.height / 2);
    const double left = whole.left + 1.4 * quarter;
    engrave(drawing, {left, top}, "COLOUR GENIE", how, EDGE_TEXT);
    const double yours = left + engraved_width("COLOUR GENIE", how) + 2 * quarter;
    engrave(drawing, {yours, top}, "YOUR KEY", how, HOST);
    const double modified = yours + engraved_width("YOUR KEY", how) + 2 * quarter;
    engrave(drawing, {modified, top}, "WITH MOD SEL", how, WEAK_GRAPHICS);
    const double keys = whole.left + 36 * quarter - engraved_width("YOUR KEYS:", how);
    if (keys < modified + engraved_width("WITH MOD SEL", how)) return;
    engrave(drawing, {keys, top}, "YOUR KEYS:", how, EDGE_TEXT);
}

void draw_key(Drawing& drawing, const ScreenKey& key, const KeyLook& look) {
    const Size picture = drawing.size();
    const Area area = area_of(key, picture);
    const Brush brush = {drawing, quarter_in(picture) * 4};
    const double unit = brush.unit;
    if (is_on_edge(key)) return draw_button(brush, key, look, area);
    const bool down = look.light == KeyLook::Light::pressed;
    const Colours colours = colours_of(key, look.light);
    drawing.fill(area, 0, CASE);
    const Area skirt = {area.left + unit * 0.03, area.top + unit * 0.03, area.right - unit * 0.03,
                        area.bottom - unit * 0.03};
    drawing.fill(skirt, unit * 0.1, SKIRT, SKIRT_EDGE);
    const Area face = face_of(area, unit, down);
    drawing.fill(face, unit * 0.08, colours.top, colours.face);
    draw_legends(brush, key, look, face, colours);
    draw_graphics(brush, key, look, face, colours);
    const Area front = {skirt.left, face.bottom, skirt.right, skirt.bottom};
    brush.centred(look.host, brush.fitted(look.host, 0.16, front.width() - unit * 0.14), front,
                  HOST);
    if (look.light != KeyLook::Light::locked) return;
    const double lamp = unit * 0.07; // locked: a lamp in the corner
    drawing.draw(std::array{Drawing::Line{{face.right - lamp * 2, face.top + lamp * 2},
                                          {face.right - lamp * 2, face.top + lamp * 2}}},
                 lamp * 2, 0xD42A1E);
}
