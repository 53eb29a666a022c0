#include "host/engraving.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

/// A letter on a grid: x from 0 to A, y from 0, the top of capitals, to C, their foot, and F.
/// Strokes stand behind each other with a blank between them. A stroke is a chain of points, each a
/// digit for x and one for y; "~" begins a curve: the point that draws it, then its end.
struct Letter {
    char32_t code;
    std::string_view strokes;
    char mark = 0; ///< an accent over it
};

constexpr double GRID_HEIGHT = 12; ///< of capitals
constexpr double GAP = 3;          ///< between letters
constexpr double BLANK = 4;
constexpr char32_t CAPITAL_SHARP_S = 0x1E9E; ///< drawn as the small one
constexpr int CURVE_STEPS = 6;
constexpr double MARK_ABOVE = 5; ///< an accent stands so much above the letter

constexpr std::string_view O = "04~0040~808488~8C4C~0C0804";
constexpr std::string_view A = "0C408C 1979";
constexpr std::string_view E = "80000C8C 0666";
constexpr std::string_view I = "000C";
constexpr std::string_view U = "0008~0C4C~8C8880";

constexpr auto letters = std::to_array<Letter>({
    {'A', A},
    {'B', "000C4C~8C89~864606 46~7673~704000"},
    {'C', "83~8040~000408~0C4C~8C89"},
    {'D', "000C3C~8C8785~803000"},
    {'E', E},
    {'F', "80000C 0666"},
    {'G', "83~8040~000408~0C4C~8C898747"},
    {'H', "000C 808C 0686"},
    {'I', I},
    {'J', "6069~6C3C~0C09"},
    {'K', "000C 7007 347C"},
    {'L', "000C7C"},
    {'M', "0C0047808C"},
    {'N', "0C008C80"},
    {'O', O},
    {'P', "0C0050~8083~865606"},
    {'Q', "04~0040~808488~8C4C~0C0804 598C"},
    {'R', "0C0050~8083~865606 468C"},
    {'S', "82~8040~0003~0646~8689~8C4C~0C0A"},
    {'T', "0080 404C"},
    {'U', U},
    {'V', "004C80"},
    {'W', "002C538CA0"},
    {'X', "008C 800C"},
    {'Y', "004680 464C"},
    {'Z', "00800C8C"},
    {'0', "03~0030~606369~6C3C~0C0903"},
    {'1', "03303C"},
    {'2', "03~0030~6063~660C6C"},
    {'3', "02~0030~6063~6636~6669~6C3C~0C0A"},
    {'4', "5C500979"},
    {'5', "60000535~6568~6C3C~0C0A"},
    {'6', "50~0108~0C3C~6C68~6535~0508"},
    {'7', "00602C"},
    {'8', "36~0603~0030~6063~6636~0609~0C3C~6C69~6636"},
    {'9', "1C~6B64~6030~0004~0737~6764"},
    {'!', "0008 0C0C"},
    {'"', "0003 3033"},
    {'#', "202C 606C 0484 0888"},
    {'$', "82~8040~0003~0646~8689~8C4C~0C0A 4040 404C"},
    {'%', "800C 02~0010~2022~2414~0402 6A~6878~888A~8C7C~6C6A"},
    {'&', "8C24~1030~5052~5426~0709~0C3C~6C77"},
    {'\'', "0003"},
    {'(', "20~0306~092C"},
    {')', "00~2326~290C"},
    {'*', "3139 0367 0763"},
    {'+', "3339 0666"},
    {',', "1B0E"},
    {'-', "0656"},
    {'.', "0C0C"},
    {'/', "600C"},
    {':', "0404 0B0B"},
    {';', "1414 1B0E"},
    {'<', "62066A"},
    {'=', "0464 0868"},
    {'>', "02660A"},
    {'?', "03~0030~6063~653638 3C3C"},
    {'@', "9B~7C5C~0C06~0050~A0A6~A989~797774 76~7454~3436~3959~7976"},
    {'[', "30000C3C"},
    {'\\', "006C"},
    {']', "00303C0C"},
    {'^', "033063"},
    {'_', "0E6E"},
    {'`', "0022"},
    {'{', "30~1013~1606~1619~1C3C"},
    {'|', "000E"},
    {'}', "00~2023~2636~2629~2C0C"},
    {'~', "07~1536~5875"},
    {U'\u00A3', "81~7050~2025~290C8C 0767"},
    {U'\u00A7', "62~6030~0003~0638~6869~6C3C~0C0B 37~0704~0433"},
    {U'\u00A8', "0101 3131"},
    {U'\u00B0', "02~0020~4042~4424~0402"},
    {U'\u00B4', "2002"},
    {U'\u00C0', A, '`'},
    {U'\u00C1', A, '\''},
    {U'\u00C2', A, '^'},
    {U'\u00C3', A, '~'},
    {U'\u00C4', A, '"'},
    {U'\u00C5', A, 'o'},
    {U'\u00C6', "0C50A0 505CAC 1959 5696"},
    {U'\u00C7', "83~8040~000408~0C4C~8C89 4C3F"},
    {U'\u00C8', E, '`'},
    {U'\u00C9', E, '\''},
    {U'\u00CA', E, '^'},
    {U'\u00CB', E, '"'},
    {U'\u00CC', I, '`'},
    {U'\u00CD', I, '\''},
    {U'\u00D1', "0C008C80", '~'},
    {U'\u00D2', O, '`'},
    {U'\u00D3', O, '\''},
    {U'\u00D4', O, '^'},
    {U'\u00D5', O, '~'},
    {U'\u00D6', O, '"'},
    {U'\u00D8', "04~0040~808488~8C4C~0C0804 0C80"},
    {U'\u00D9', U, '`'},
    {U'\u00DA', U, '\''},
    {U'\u00DC', U, '"'},
    {U'\u00DF', "0C03~0030~6063~6536~7779~7C3C"},
    {U'\u2190', "8606 330639"},
    {U'\u2191', "404C 144074"},
    {U'\u2192', "0686 538659"},
    {U'\u2193', "404C 184C78"},
    {U'\u21E7', "4085656B2B250540"}, // the shift key
});

/// Accents, over a letter that is eight wide.
constexpr Letter marks[] = {
    {'`', "2143"},         {'\'', "6143"},     {'^', "234063"},
    {'~', "23~3142~5361"}, {'"', "2222 6262"}, {'o', "42~2224~2444~6462~6042"},
};

const Letter* find_letter(char32_t code) {
    if (code >= 'a' && code <= 'z') code -= 'a' - 'A';
    if (code == CAPITAL_SHARP_S) code = U'\u00DF';
    if (code >= 0xE0 && code <= 0xFE && code != 0xF7) code -= 0x20;
    const auto* const found = std::ranges::find(letters, code, &Letter::code);
    return found == letters.end() ? nullptr : found;
}

/// Takes the first character off the text.
char32_t take_character(std::string_view& text) {
    const auto first = uint8_t(text.front());
    const size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    char32_t code = length == 1 ? first : first & (0x7Fu >> length);
    for (size_t n = 1; n < std::min(length, text.size()); ++n) {
        code = code << 6 | (uint8_t(text[n]) & 0x3F);
    }
    text.remove_prefix(std::min(length, text.size()));
    return code;
}

double digit(char c) { return c >= 'A' ? c - 'A' + 10 : c - '0'; }

Point point_at(std::string_view strokes, size_t at) {
    return {digit(strokes[at]), digit(strokes[at + 1])};
}

/// The lines of a letter, on its grid.
std::vector<Drawing::Line> lines_of(std::string_view strokes) {
    std::vector<Drawing::Line> lines;
    Point last;
    bool begins = true;
    for (size_t at = 0; at < strokes.size();) {
        if (strokes[at] == ' ') {
            begins = true;
            ++at;
        } else if (strokes[at] == '~') {
            const Point from = last, pull = point_at(strokes, at + 1);
            const Point end = point_at(strokes, at + 3);
            for (int step = 1; step <= CURVE_STEPS; ++step) {
                const double t = double(step) / CURVE_STEPS, u = 1 - t;
                const Point next = {u * u * from.x + 2 * u * t * pull.x + t * t * end.x,
                                    u * u * from.y + 2 * u * t * pull.y + t * t * end.y};
                lines.push_back({last, next});
                last = next;
            }
            at += 5;
        } else {
            const Point next = point_at(strokes, at);
            if (!begins) lines.push_back({last, next});
            last = next;
            begins = false;
            at += 2;
        }
    }
    return lines;
}

double width_of(const std::vector<Drawing::Line>& lines) {
    double width = 0;
    for (const Drawing::Line& line : lines) width = std::max({width, line.from.x, line.to.x});
    return width;
}

/// A letter with its accent, ready to be drawn.
struct Shape {
    std::vector<Drawing::Line> lines;
    double width = 0;
};

Shape shape_of(const Letter& letter) {
    Shape shape = {lines_of(letter.strokes)};
    shape.width = width_of(shape.lines);
    const auto* const mark = std::ranges::find(marks, char32_t(letter.mark), &Letter::code);
    if (mark == std::end(marks)) return shape;
    const double right = shape.width / 2 - 4;
    for (const auto& [from, to] : lines_of(mark->strokes)) {
        shape.lines.push_back(
            {{from.x + right, from.y - MARK_ABOVE}, {to.x + right, to.y - MARK_ABOVE}});
    }
    return shape;
}

const Shape* shape_for(char32_t code) {
    static const std::vector<Shape> shapes = [] {
        std::vector<Shape> all;
        all.reserve(letters.size());
        for (const Letter& letter : letters) all.push_back(shape_of(letter));
        return all;
    }();
    const Letter* const letter = find_letter(code);
    return letter ? &shapes[size_t(letter - letters.data())] : nullptr;
}

/// Calls `use` with each letter of the text and its place on the grid; returns where the text ends.
template <typename Use>
double for_each_letter(std::string_view text, const Use& use) {
    double place = 0, end = 0;
    while (!text.empty()) {
        const char32_t code = take_character(text);
        if (code == ' ') place += BLANK;
        if (const Shape* shape = shape_for(code)) {
            use(*shape, place);
            end = place + shape->width;
            place = end + GAP;
        }
    }
    return end;
}

} // namespace

double engraved_width(std::string_view text, const Lettering& lettering) {
    const double end = for_each_letter(text, [](const Shape&, double) {});
    return end * lettering.height / GRID_HEIGHT + lettering.line;
}

void engrave(Drawing& drawing, Point place, std::string_view text, const Lettering& lettering,
             Colour colour) {
    // The lines lie inside the letter's box.
    const double scale = (lettering.height - lettering.line) / GRID_HEIGHT;
    const double wide = lettering.height / GRID_HEIGHT;
    const double edge = lettering.line / 2;
    std::vector<Drawing::Line> lines;
    for_each_letter(text, [&](const Shape& shape, double left) {
        lines.clear();
        const auto placed = [&](Point point) {
            return Point{place.x + edge + (left + point.x) * wide,
                         place.y + edge + point.y * scale};
        };
        for (const auto& [from, to] : shape.lines) lines.push_back({placed(from), placed(to)});
        drawing.draw(lines, lettering.line, colour);
    });
}

bool can_be_engraved(std::string_view text) {
    return !text.empty() && shape_for(take_character(text)) != nullptr;
}
