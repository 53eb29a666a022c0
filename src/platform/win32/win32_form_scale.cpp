#include "platform/win32/win32_form_scale.h"

#include "platform/win32/win32_context.h"

#include <cmath>

namespace {

constexpr double HEADING_SCALE = 1.6; ///< of its letters
constexpr int POINTS_PER_INCH = 96;

/// The screen's canvas, with a font in it.
class MeasuringCanvas {
public:
    explicit MeasuringCanvas(HFONT font)
        : canvas_(GetDC(nullptr)), before_(SelectObject(canvas_, font)) {}
    MeasuringCanvas(const MeasuringCanvas&) = delete;
    MeasuringCanvas& operator=(const MeasuringCanvas&) = delete;
    ~MeasuringCanvas() {
        SelectObject(canvas_, before_);
        ReleaseDC(nullptr, canvas_);
    }
    operator HDC() const { return canvas_; }

private:
    HDC canvas_;
    HGDIOBJ before_;
};

/// That of message boxes, for one pixel in a point.
LOGFONTW message_font() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    return metrics.lfMessageFont;
}

/// Of the metrics that Windows gives.
double system_ratio() {
    const HDC screen = GetDC(nullptr);
    const int dots = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return double(dots) / POINTS_PER_INCH;
}

} // namespace

Win32FormScale::Win32FormScale(double ratio) : ratio_(ratio) {
    LOGFONTW font = message_font();
    const double height = double(font.lfHeight) * ratio / system_ratio();
    font.lfHeight = LONG(std::lround(height));
    font.lfWidth = 0;
    fonts_[size_t(FormFont::usual)].reset(CreateFontIndirectW(&font));
    LOGFONTW strong = font;
    strong.lfWeight = FW_BOLD;
    fonts_[size_t(FormFont::strong)].reset(CreateFontIndirectW(&strong));
    LOGFONTW heading = font;
    heading.lfHeight = LONG(std::lround(height * HEADING_SCALE));
    fonts_[size_t(FormFont::heading)].reset(CreateFontIndirectW(&heading));
    LOGFONTW link = font;
    link.lfUnderline = TRUE;
    fonts_[size_t(FormFont::link)].reset(CreateFontIndirectW(&link));

    const MeasuringCanvas canvas(this->font());
    TEXTMETRICW metrics{};
    GetTextMetricsW(canvas, &metrics);
    line_ = int(metrics.tmHeight);
    SIZE digit{};
    GetTextExtentPoint32W(canvas, L"0", 1, &digit);
    digit_ = int(digit.cx);
}

int Win32FormScale::pixels(int points) const { return int(std::lround(points * ratio_)); }

Size Win32FormScale::measure(const std::string& text, int width, FormFont use, UINT format) const {
    const MeasuringCanvas canvas(font(use));
    const std::wstring shown = wide(text.empty() ? " " : text); // an empty one has a height as well
    RECT area{0, 0, width, 0};
    DrawTextW(canvas, shown.c_str(), int(shown.size()), &area, format | DT_CALCRECT);
    return {text.empty() ? 0 : int(area.right), int(area.bottom)};
}

Size Win32FormScale::label_size(const std::string& text) const {
    return measure(text, 0, FormFont::usual, DT_SINGLELINE);
}

Size Win32FormScale::text_size(const std::string& text, int width, FormFont use) const {
    const UINT wrapped = width ? DT_WORDBREAK | DT_EDITCONTROL : 0;
    return measure(text, width, use, DT_NOPREFIX | DT_EXPANDTABS | wrapped);
}
