/// A picture with lines of text below it that can be chosen, as one of several, or pressed.

#include "platform/win32/win32_context.h"
#include "platform/win32/win32_form_control.h"
#include "platform/win32/win32_picture.h"

#include <algorithm>
#include <utility>

namespace {

// Points.
constexpr int MARGIN = 8;     ///< around picture and text
constexpr int TEXT_SPACE = 5; ///< between picture and text
constexpr int TEXT_EDGE = 4;  ///< around the text
constexpr int ROUNDING = 8;

constexpr size_t LINES = 2; ///< of text below one that is chosen, for which there is always room
constexpr int ALL = 100;    ///< percent of a colour that is mixed in
constexpr int FAINT = 60;   ///< of text that does not stand out
constexpr int EMPTY_TINT = 6;
constexpr int EDGE_TINT = 25;
constexpr int HOVER_TINT = 9;
constexpr int CHOSEN_TINT = 18;

COLORREF mixed(COLORREF under, COLORREF over, int percent) {
    const auto mix = [percent](int low, int high) {
        return BYTE(low + (high - low) * percent / ALL);
    };
    return RGB(mix(GetRValue(under), GetRValue(over)), mix(GetGValue(under), GetGValue(over)),
               mix(GetBValue(under), GetBValue(over)));
}

/// Drawn in memory first, so that it does not flicker.
class MemoryCanvas {
public:
    MemoryCanvas(HDC screen, const RECT& area)
        : screen_(screen), area_(area), canvas_(CreateCompatibleDC(screen)),
          bitmap_(CreateCompatibleBitmap(screen, area.right, area.bottom)),
          before_(SelectObject(canvas_, bitmap_)) {}
    MemoryCanvas(const MemoryCanvas&) = delete;
    MemoryCanvas& operator=(const MemoryCanvas&) = delete;
    ~MemoryCanvas() {
        BitBlt(screen_, 0, 0, area_.right, area_.bottom, canvas_, 0, 0, SRCCOPY);
        SelectObject(canvas_, before_);
        DeleteObject(bitmap_);
        DeleteDC(canvas_);
    }
    operator HDC() const { return canvas_; }

private:
    HDC screen_;
    RECT area_;
    HDC canvas_;
    HBITMAP bitmap_;
    HGDIOBJ before_;
};

std::vector<std::wstring> lines_of(const std::string& caption) {
    std::vector<std::wstring> lines;
    for (size_t start = 0; start <= caption.size() && lines.size() < LINES;) {
        const size_t end = std::min(caption.find('\n', start), caption.size());
        lines.push_back(wide(std::string_view(caption).substr(start, end - start)));
        start = end + 1;
    }
    return lines;
}

class PictureButton final : public Win32Control {
public:
    PictureButton(const FormControl& described, HWND parent, Win32ControlHost& host)
        : Win32Control(described, host), is_pressed_(kind_ == ControlKind::picture_button),
          whole_(described.picture_area) {
        picture_.set(described.picture);
        create(parent, L"BUTTON", spoken(), BS_OWNERDRAW);
    }

    int value() override { return is_chosen_; }
    void set_value(int value) override {
        is_chosen_ = value != 0 && !is_pressed_;
        InvalidateRect(window_, nullptr, FALSE);
    }
    void set_text(const std::string& text) override {
        text_ = text;
        set_window_text(spoken());
        tell_cut_text();
        InvalidateRect(window_, nullptr, FALSE);
    }
    void set_picture(const FormPicture& picture) override {
        picture_.set(picture);
        InvalidateRect(window_, nullptr, FALSE);
    }
    void set_percent(int percent) { percent_ = percent; }

    /// The title of one that is pressed is never cut.
    bool takes_width() const override { return is_pressed_; }
    int wanted_width() const override {
        const int text = is_pressed_ ? scale().text_size(text_).width : 0;
        return std::max(area().width, text) + 2 * pixels(MARGIN);
    }
    int wanted_height(int /*width*/) const override {
        const int lines = is_pressed_ ? 1 : int(LINES);
        return area().height + lines * scale().line() + pixels(TEXT_SPACE) + 2 * pixels(MARGIN);
    }
    void move(const RECT& place) override {
        Win32Control::move(place);
        tell_cut_text();
    }
    void commanded(WORD code) override {
        if (code != BN_CLICKED) return;
        host_.raise(*this, is_pressed_ ? FormEvent::Kind::pressed : FormEvent::Kind::changed);
    }
    void draw(const DRAWITEMSTRUCT& asked) override {
        const MemoryCanvas canvas(asked.hDC, asked.rcItem);
        SetBkMode(canvas, TRANSPARENT);
        draw_frame(canvas, asked);
        draw_picture(canvas, asked.rcItem);
        draw_caption(canvas, asked.rcItem, (asked.itemState & ODS_DISABLED) != 0);
    }

protected:
    std::optional<LRESULT> handle(UINT message, WPARAM wparam, LPARAM lparam) override {
        switch (message) {
        case WM_GETDLGCODE: {
            const auto* key = reinterpret_cast<const MSG*>(lparam);
            const bool enter = key && key->message == WM_KEYDOWN && key->wParam == VK_RETURN;
            return DLGC_BUTTON | DLGC_WANTARROWS | (enter ? DLGC_WANTMESSAGE : 0);
        }
        case WM_KEYDOWN: return key_down(wparam);
        case WM_LBUTTONDBLCLK: activate(); return 0;
        case WM_MOUSEMOVE: hover(true); return std::nullopt;
        case WM_MOUSELEAVE: hover(false); return std::nullopt;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: InvalidateRect(window_, nullptr, FALSE); return std::nullopt;
        case WM_ERASEBKGND: return TRUE;
        default: return std::nullopt;
        }
    }

private:
    std::string spoken() const {
        std::string text = without_access_key(text_);
        for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) {
            text.replace(at, 1, ", ");
        }
        return text;
    }
    Size area() const {
        return {pixels(whole_.width) * percent_ / ALL, pixels(whole_.height) * percent_ / ALL};
    }
    void activate() {
        if (is_pressed_) return host_.raise(*this, FormEvent::Kind::pressed);
        host_.press_default();
    }
    std::optional<LRESULT> key_down(WPARAM key) {
        switch (key) {
        case VK_RETURN: activate(); return 0;
        case VK_LEFT: host_.move_among_pictures(*this, -1, 0); return 0;
        case VK_RIGHT: host_.move_among_pictures(*this, 1, 0); return 0;
        case VK_UP: host_.move_among_pictures(*this, 0, -1); return 0;
        case VK_DOWN: host_.move_among_pictures(*this, 0, 1); return 0;
        default: return std::nullopt;
        }
    }
    void hover(bool on) {
        if (std::exchange(is_hovered_, on) == on) return;
        InvalidateRect(window_, nullptr, FALSE);
        if (!on) return;
        TRACKMOUSEEVENT leaving{sizeof leaving, TME_LEAVE, window_, 0};
        TrackMouseEvent(&leaving);
    }
    FormFont heading_font() const { return is_pressed_ ? FormFont::usual : FormFont::strong; }
    FormFont font_of(size_t line) const { return line ? FormFont::usual : heading_font(); }

    void tell_cut_text() {
        if (is_pressed_) return;
        RECT client{};
        GetClientRect(window_, &client);
        const std::vector<std::wstring> lines = lines_of(text_);
        bool is_cut = false;
        for (size_t n = 0; n < lines.size(); ++n) {
            const int wanted = scale().text_size(narrow(lines[n]), 0, font_of(n)).width;
            is_cut |= wanted > client.right - 2 * pixels(TEXT_EDGE);
        }
        host_.set_tip(window_, is_cut ? text_ : "");
    }

    void draw_frame(HDC canvas, const DRAWITEMSTRUCT& asked) const {
        const COLORREF face = GetSysColor(COLOR_BTNFACE);
        const COLORREF highlight = GetSysColor(COLOR_HIGHLIGHT);
        FillRect(canvas, &asked.rcItem, GetSysColorBrush(COLOR_BTNFACE));
        const bool has_focus = GetFocus() == window_;
        const bool is_marked = is_pressed_ ? has_focus : is_chosen_;
        if (is_marked || is_hovered_) {
            const bool strong = is_marked || (asked.itemState & ODS_SELECTED);
            const COLORREF tint = mixed(face, highlight, strong ? CHOSEN_TINT : HOVER_TINT);
            const HGDIOBJ pen = SelectObject(
                canvas, CreatePen(PS_INSIDEFRAME, pixels(2), is_marked ? highlight : tint));
            const HGDIOBJ brush = SelectObject(canvas, CreateSolidBrush(tint));
            RoundRect(canvas, 0, 0, asked.rcItem.right, asked.rcItem.bottom, pixels(ROUNDING),
                      pixels(ROUNDING));
            DeleteObject(SelectObject(canvas, brush));
            DeleteObject(SelectObject(canvas, pen));
        }
        if (has_focus && !is_pressed_) {
            RECT dotted = asked.rcItem;
            InflateRect(&dotted, -pixels(3), -pixels(3));
            DrawFocusRect(canvas, &dotted);
        }
    }
    void draw_picture(HDC canvas, const RECT& client) {
        const Size size = area();
        RECT place{(client.right - size.width) / 2, pixels(MARGIN), 0, 0};
        place.right = place.left + size.width;
        place.bottom = place.top + size.height;
        const COLORREF face = GetSysColor(COLOR_BTNFACE), words = GetSysColor(COLOR_BTNTEXT);
        if (picture_.is_empty()) {
            const HBRUSH tint = CreateSolidBrush(mixed(face, words, EMPTY_TINT));
            FillRect(canvas, &place, tint);
            DeleteObject(tint);
        } else {
            picture_.draw(canvas, place);
        }
        const HBRUSH edge = CreateSolidBrush(mixed(face, words, EDGE_TINT));
        FrameRect(canvas, &place, edge);
        DeleteObject(edge);
    }
    void draw_caption(HDC canvas, const RECT& client, bool is_greyed) const {
        const COLORREF face = GetSysColor(COLOR_BTNFACE), words = GetSysColor(COLOR_BTNTEXT);
        const std::vector<std::wstring> lines = lines_of(text_);
        RECT place{pixels(TEXT_EDGE), pixels(MARGIN) + area().height + pixels(TEXT_SPACE),
                   client.right - pixels(TEXT_EDGE), 0};
        const HGDIOBJ before = GetCurrentObject(canvas, OBJ_FONT);
        for (size_t n = 0; n < lines.size(); ++n) {
            place.bottom = place.top + scale().line();
            SelectObject(canvas, scale().font(font_of(n)));
            SetTextColor(canvas, is_greyed ? GetSysColor(COLOR_GRAYTEXT)
                                           : mixed(face, words, n ? FAINT : ALL));
            DrawTextW(canvas, lines[n].c_str(), int(lines[n].size()), &place,
                      DT_CENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
            OffsetRect(&place, 0, scale().line());
        }
        SelectObject(canvas, before);
    }

    bool is_pressed_;
    Size whole_; ///< of the picture where there is room
    int percent_ = ALL;
    Win32Picture picture_;
    bool is_chosen_ = false;
    bool is_hovered_ = false;
};

} // namespace

std::unique_ptr<Win32Control> make_win32_picture(const FormControl& described, HWND parent,
                                                 Win32ControlHost& host) {
    return std::make_unique<PictureButton>(described, parent, host);
}

void set_picture_percent(Win32Control& picture, int percent) {
    static_cast<PictureButton&>(picture).set_percent(percent);
}
