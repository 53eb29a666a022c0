#include "platform/win32/win32_status_bar.h"

#include "platform/win32/win32_canvas.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int LEAST_HEIGHT = 24;      ///< points: the lamps have their place in that many
constexpr int TIP_WIDTH = 400;        ///< points, of a tip of several lines
constexpr UINT_PTR WHOLE_TEXT = 1000; ///< number of the tip that shows a text longer than the bar
constexpr int NO_BUTTON = -1;
constexpr int USUAL_DPI = 96;

Colour system_colour(int index) {
    const COLORREF colour = GetSysColor(index);
    return Colour(GetRValue(colour)) << 16 | Colour(GetGValue(colour)) << 8 | GetBValue(colour);
}

TTTOOLINFOW tool(HWND bar, UINT_PTR number) {
    TTTOOLINFOW info = {};
    info.cbSize = sizeof info;
    info.hwnd = bar;
    info.uId = number;
    return info;
}

} // namespace

Win32StatusBar::~Win32StatusBar() {
    destroy();
    if (font_) DeleteObject(font_);
}

// ---- the control -------------------------------------------------------------------------------

bool Win32StatusBar::create(std::span<const int> right_edges, int drawn_part) {
    destroy();
    const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_BAR_CLASSES};
    InitCommonControlsEx(&classes);
    bar_ = CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | CCS_BOTTOM, 0, 0, 0, 0,
                           context_.window, reinterpret_cast<HMENU>(INT_PTR{ID}), context_.instance,
                           nullptr);
    if (!bar_) return false;
    edges_.assign(right_edges.begin(), right_edges.end());
    tip_texts_.assign(edges_.size(), L"");
    drawn_part_ = drawn_part;
    dpi_ = 0; // the new control has the system's font
    SetWindowSubclass(bar_, bar_procedure, 0, reinterpret_cast<DWORD_PTR>(this));
    tips_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                            WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0, bar_, nullptr,
                            context_.instance, nullptr);
    lay_out();
    send(SB_SETTEXTW, WPARAM(drawn_part) | SBT_OWNERDRAW);
    tell_parent();
    return true;
}

void Win32StatusBar::destroy() {
    if (!bar_) return;
    if (tips_) DestroyWindow(std::exchange(tips_, nullptr));
    RemoveWindowSubclass(bar_, bar_procedure, 0);
    DestroyWindow(std::exchange(bar_, nullptr));
    over_.clear();
    tools_ = 0;
    hot_ = pressed_ = NO_BUTTON;
    tell_parent();
}

/// The room for everything else is another one now, as with another size of the window.
void Win32StatusBar::tell_parent() {
    if (!context_.window) return;
    RECT client;
    GetClientRect(context_.window, &client);
    SendMessageW(context_.window, WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.right, client.bottom));
}

int Win32StatusBar::pixels() const {
    if (!bar_) return 0;
    RECT area;
    GetWindowRect(bar_, &area);
    return int(area.bottom - area.top);
}

void Win32StatusBar::lay_out() {
    if (!bar_) return;
    set_font();
    // The least height of what is between the borders; how high these are, each version of the
    // control sees differently.
    const int least = context_.pixels(LEAST_HEIGHT);
    for (int inside = least - 4; inside <= least; inside += std::max(least - pixels(), 1)) {
        send(SB_SETMINHEIGHT, WPARAM(inside));
        send(WM_SIZE, 0);
        if (pixels() >= least) break;
    }
    set_parts();
    place_tools();
}

void Win32StatusBar::set_font() {
    const int dpi = int(std::lround(context_.ratio * USUAL_DPI));
    if (std::exchange(dpi_, dpi) == dpi) return;
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, UINT(dpi));
    const HFONT before = std::exchange(font_, CreateFontIndirectW(&metrics.lfStatusFont));
    send(WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
    if (tips_) SendMessageW(tips_, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    if (before) DeleteObject(before);
}

void Win32StatusBar::set_parts() {
    std::vector<int> edges;
    for (const int edge : edges_) edges.push_back(edge < 0 ? -1 : context_.pixels(edge));
    send(SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
}

RECT Win32StatusBar::in_pixels(const Rectangle& points) const {
    return {context_.pixels(points.left), context_.pixels(points.top),
            context_.pixels(points.right), context_.pixels(points.bottom)};
}

void Win32StatusBar::redraw() {
    if (!bar_) return;
    lay_out();
    InvalidateRect(bar_, nullptr, TRUE);
}

// ---- texts -------------------------------------------------------------------------------------

void Win32StatusBar::set_text(int part, const std::string& text) {
    if (!bar_ || !has(part) || part == drawn_part_) return;
    const std::wstring shown = wide(text);
    send(SB_SETTEXTW, WPARAM(part) | SBT_NOTABPARSING, reinterpret_cast<LPARAM>(shown.c_str()));
}

void Win32StatusBar::set_tip(int part, const std::string& text) {
    if (bar_ && has(part)) tip_texts_[size_t(part)] = wide(text);
}

void Win32StatusBar::show_over(const std::string& text) {
    if (!bar_) return;
    over_ = wide(text);
    if (!over_.empty()) {
        send(SB_SETTEXTW, SB_SIMPLEID | SBT_NOBORDERS | SBT_NOTABPARSING,
             reinterpret_cast<LPARAM>(over_.c_str()));
    }
    send(SB_SIMPLE, over_.empty() ? FALSE : TRUE);
    show_whole(over_);
}

/// A text that the bar has no room for is shown above it as well.
void Win32StatusBar::show_whole(const std::wstring& text) {
    if (!tips_) return;
    TTTOOLINFOW info = tool(bar_, WHOLE_TEXT);
    const HDC dc = GetDC(bar_);
    const HGDIOBJ before = SelectObject(dc, font_);
    SIZE extent = {};
    GetTextExtentPoint32W(dc, text.c_str(), int(text.size()), &extent);
    SelectObject(dc, before);
    ReleaseDC(bar_, dc);
    RECT bar;
    GetWindowRect(bar_, &bar);
    SendMessageW(tips_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&info));
    if (extent.cx + pixels() / 2 <= bar.right - bar.left) return;
    info.uFlags = TTF_TRACK | TTF_ABSOLUTE;
    info.lpszText = const_cast<wchar_t*>(text.c_str()); // which is copied
    SendMessageW(tips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&info));
    SendMessageW(tips_, TTM_TRACKPOSITION, 0,
                 MAKELPARAM(bar.left, bar.top - 3 * (bar.bottom - bar.top)));
    SendMessageW(tips_, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&info));
}

// ---- tips --------------------------------------------------------------------------------------

/// The first that has the pointer is shown: buttons come before the parts that they lie in.
void Win32StatusBar::place_tools() {
    if (!tips_) return;
    for (size_t n = 0; n < tools_; ++n) {
        TTTOOLINFOW info = tool(bar_, n);
        SendMessageW(tips_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&info));
    }
    tools_ = buttons_.size() + edges_.size();
    for (size_t n = 0; n < tools_; ++n) {
        TTTOOLINFOW info = tool(bar_, n);
        info.uFlags = TTF_SUBCLASS;
        info.lpszText = LPSTR_TEXTCALLBACKW;
        if (n < buttons_.size()) {
            info.rect = in_pixels(buttons_[n].area);
        } else {
            send(SB_GETRECT, n - buttons_.size(), reinterpret_cast<LPARAM>(&info.rect));
        }
        SendMessageW(tips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&info));
    }
    SendMessageW(tips_, TTM_SETMAXTIPWIDTH, 0, context_.pixels(TIP_WIDTH)); // allows several lines
}

void Win32StatusBar::give_tip(LPARAM detail) {
    auto& info = *reinterpret_cast<NMTTDISPINFOW*>(detail);
    const size_t number = info.hdr.idFrom;
    shown_tip_.clear();
    if (number < buttons_.size()) {
        if (buttons_[number].tip) shown_tip_ = wide(buttons_[number].tip());
    } else if (number - buttons_.size() < tip_texts_.size()) {
        shown_tip_ = tip_texts_[number - buttons_.size()];
    }
    info.lpszText = shown_tip_.data();
}

// ---- buttons -----------------------------------------------------------------------------------

void Win32StatusBar::set_buttons(const std::vector<StatusButton>& buttons) {
    buttons_ = buttons;
    place_tools();
}

int Win32StatusBar::button_at(POINT pixel) const {
    if (!over_.empty()) return NO_BUTTON;
    for (size_t n = 0; n < buttons_.size(); ++n) {
        const RECT area = in_pixels(buttons_[n].area);
        if (PtInRect(&area, pixel)) return int(n);
    }
    return NO_BUTTON;
}

/// Under the pointer a button has an edge, raised or pressed.
void Win32StatusBar::set_look(int hot, int pressed) {
    const int before = std::exchange(hot_, hot);
    const bool same = std::exchange(pressed_, pressed) == pressed && before == hot;
    if (same) return;
    for (const int button : {before, hot}) {
        if (button < 0 || size_t(button) >= buttons_.size()) continue;
        const RECT area = in_pixels(buttons_[size_t(button)].area);
        InvalidateRect(bar_, &area, TRUE);
    }
}

void Win32StatusBar::draw_button() const {
    if (hot_ < 0 || size_t(hot_) >= buttons_.size() || !over_.empty()) return;
    RECT area = in_pixels(buttons_[size_t(hot_)].area);
    const HDC dc = GetDC(bar_);
    DrawEdge(dc, &area, pressed_ == hot_ ? BDR_SUNKENOUTER : BDR_RAISEDINNER, BF_RECT);
    ReleaseDC(bar_, dc);
}

void Win32StatusBar::press(int button) {
    if (button != NO_BUTTON) context_.post(Event::Kind::status_button, button);
}

void Win32StatusBar::pointer_moved(POINT pixel) {
    const int button = button_at(pixel);
    if (button != NO_BUTTON && hot_ == NO_BUTTON) {
        TRACKMOUSEEVENT leaves = {sizeof leaves, TME_LEAVE, bar_, 0};
        TrackMouseEvent(&leaves);
    }
    set_look(button, pressed_);
}

LRESULT CALLBACK Win32StatusBar::bar_procedure(HWND bar, UINT message, WPARAM wide, LPARAM detail,
                                               UINT_PTR /*id*/, DWORD_PTR self) {
    return reinterpret_cast<Win32StatusBar*>(self)->handle_bar(bar, message, wide, detail);
}

LRESULT Win32StatusBar::handle_bar(HWND bar, UINT message, WPARAM wide, LPARAM detail) {
    const POINT pixel = {GET_X_LPARAM(detail), GET_Y_LPARAM(detail)}; // of a mouse's message
    switch (message) {
    case WM_PAINT: {
        const LRESULT result = DefSubclassProc(bar, message, wide, detail);
        draw_button();
        return result;
    }
    case WM_NOTIFY:
        if (reinterpret_cast<const NMHDR*>(detail)->code != UINT(TTN_GETDISPINFOW)) break;
        give_tip(detail);
        return 0;
    case WM_MOUSEMOVE: pointer_moved(pixel); break;
    case WM_MOUSELEAVE: set_look(NO_BUTTON, NO_BUTTON); break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: set_look(button_at(pixel), button_at(pixel)); break;
    case WM_LBUTTONUP: {
        const int button = button_at(pixel);
        const bool is_pressed = button == pressed_;
        set_look(button, NO_BUTTON);
        if (is_pressed) press(button);
        break;
    }
    case WM_RBUTTONUP: press(button_at(pixel)); break;
    default: break;
    }
    return DefSubclassProc(bar, message, wide, detail);
}

// ---- the drawn part ----------------------------------------------------------------------------

bool Win32StatusBar::handle(UINT message, WPARAM wide, LPARAM detail, LRESULT& result) {
    if (message != WM_DRAWITEM || wide != ID || !bar_) return false;
    drawn_part_dc_ = reinterpret_cast<const DRAWITEMSTRUCT*>(detail)->hDC;
    if (context_.sink) context_.sink->draw_status();
    drawn_part_dc_ = nullptr;
    result = TRUE;
    return true;
}

void Win32StatusBar::fill_rectangle(const Rectangle& area, Colour colour) {
    if (!bar_ || !over_.empty()) return;
    const HDC dc = drawn_part_dc_ ? drawn_part_dc_ : GetDC(bar_);
    const RECT pixels = in_pixels(area);
    SetDCBrushColor(dc, to_windows(colour));
    FillRect(dc, &pixels, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
    if (!drawn_part_dc_) ReleaseDC(bar_, dc);
}

Colour Win32StatusBar::background_colour() { return system_colour(COLOR_BTNFACE); }

Colour Win32StatusBar::shadow_colour() { return system_colour(COLOR_BTNSHADOW); }

Colour Win32StatusBar::highlight_colour() { return system_colour(COLOR_BTNHIGHLIGHT); }
