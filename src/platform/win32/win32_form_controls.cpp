/// The controls of a form that are not tables or pictures.

#include "platform/win32/win32_context.h"
#include "platform/win32/win32_form_control.h"

#include <algorithm>
#include <utility>

#include <shellapi.h>

namespace {

// Points, unless they are characters.
constexpr Size SMALLEST_BUTTON = {75, 23};
constexpr int BUTTON_MARGIN = 10; ///< beside its text
constexpr int MARK = 19;          ///< of a check box, with the room behind it
constexpr int MARK_HEIGHT = 17;
constexpr int FIELD_MARGIN = 4; ///< above and below its text
constexpr int ARROW = 26;       ///< of a list that opens, with the margins of its text
constexpr int SLIDER_HEIGHT = 26;
constexpr int SLIDER_LENGTH = 30;    ///< characters, at least
constexpr int NOTE_WIDTH = 40;       ///< characters in a line
constexpr int WIDEST_NOTE = 90;      ///< characters that one gets a line for
constexpr Size VIEW = {80, 16};      ///< characters and lines
constexpr int WIDEST_FIELD = 40;     ///< characters; fields of longer texts scroll
constexpr int UNLIMITED_FIELD = 6;   ///< characters
constexpr int WIDEST_LIST = 60;      ///< characters
constexpr int LIST_LINES = 12;       ///< of a list that is open
constexpr int SMALL_BUTTON_TEXT = 3; ///< such a button stands at the field it belongs to

/// Text fields have other ends of lines.
std::string with_carriage_returns(const std::string& text) {
    std::string result;
    for (size_t n = 0; n < text.size(); ++n) {
        if (text[n] == '\n' && (n == 0 || text[n - 1] != '\r')) result += '\r';
        result += text[n];
    }
    return result;
}

// ---- words --------------------------------------------------------------------------------------

/// A label or a group's frame shows an access key only where it leads somewhere.
class Words final : public Win32Control {
public:
    Words(const FormControl& described, HWND parent, Win32ControlHost& host)
        : Win32Control(described, host) {
        const DWORD lines = kind_ == ControlKind::note ? SS_EDITCONTROL : 0;
        create(parent, L"STATIC", text_, SS_LEFT | SS_NOPREFIX | lines);
    }
    void set_text(const std::string& text) override {
        text_ = text;
        set_window_text(text);
    }
    bool is_focusable() const override { return false; }
    void take_font() override {
        send(WM_SETFONT, reinterpret_cast<WPARAM>(scale().font(font())), TRUE);
    }
    bool takes_width() const override { return kind_ == ControlKind::note; }
    int wanted_width() const override {
        if (kind_ != ControlKind::note) return size(0).width;
        const int most = scale().digit() * WIDEST_NOTE;
        const int wide_text = size(0).width;
        return wide_text > most ? most : std::max(wide_text, scale().digit() * NOTE_WIDTH);
    }
    int wanted_height(int width) const override {
        return size(kind_ == ControlKind::note ? width : 0).height;
    }

private:
    FormFont font() const {
        return kind_ == ControlKind::heading ? FormFont::heading : FormFont::usual;
    }
    Size size(int width) const {
        const bool as_it_is = GetWindowLongPtrW(window_, GWL_STYLE) & SS_NOPREFIX;
        return as_it_is ? scale().text_size(text_, width, font()) : scale().label_size(text_);
    }
};

class GroupFrame final : public Win32Control {
public:
    GroupFrame(const FormControl& described, HWND parent, Win32ControlHost& host)
        : Win32Control(described, host) {
        create(parent, L"BUTTON", text_, BS_GROUPBOX);
    }
    void set_text(const std::string& text) override {
        text_ = text;
        set_window_text(text);
    }
    bool is_focusable() const override { return false; }
    int wanted_width() const override { return scale().label_size(text_).width + pixels(2 * 12); }
    int wanted_height(int /*width*/) const override { return scale().line(); }
};

// ---- buttons ------------------------------------------------------------------------------------

class PushButton final : public Win32Control {
public:
    PushButton(const FormControl& described, HWND parent, Win32ControlHost& host, DWORD group)
        : Win32Control(described, host),
          is_small_(kind_ == ControlKind::button && text_.size() <= SMALL_BUTTON_TEXT &&
                    text_.find('&') == std::string::npos) {
        const bool is_default = kind_ == ControlKind::default_button;
        create(parent, L"BUTTON", text_,
               (is_default ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON) | WS_TABSTOP | group);
    }
    void set_text(const std::string& text) override {
        text_ = text;
        set_window_text(text);
    }
    int wanted_width() const override {
        if (is_small_) return wanted_height(0) * 3 / 2;
        return std::max(pixels(SMALLEST_BUTTON.width),
                        scale().label_size(text_).width + 2 * pixels(BUTTON_MARGIN));
    }
    int wanted_height(int /*width*/) const override {
        return std::max(pixels(SMALLEST_BUTTON.height), scale().line() + 2 * pixels(FIELD_MARGIN));
    }
    void commanded(WORD code) override {
        if (code == BN_CLICKED) host_.raise(*this, FormEvent::Kind::pressed);
    }

private:
    bool is_small_;
};

/// A check box or a radio button.
class MarkButton final : public Win32Control {
public:
    MarkButton(const FormControl& described, HWND parent, Win32ControlHost& host, DWORD group)
        : Win32Control(described, host) {
        const DWORD radio = BS_AUTORADIOBUTTON | group;
        const DWORD check = BS_AUTOCHECKBOX | WS_TABSTOP | group;
        create(parent, L"BUTTON", text_, kind_ == ControlKind::radio ? radio : check);
    }
    int value() override { return send(BM_GETCHECK) == BST_CHECKED; }
    void set_value(int value) override { send(BM_SETCHECK, value ? BST_CHECKED : BST_UNCHECKED); }
    void set_text(const std::string& text) override {
        text_ = text;
        set_window_text(text);
    }
    int wanted_width() const override {
        return scale().label_size(text_).width + pixels(MARK) + pixels(FIELD_MARGIN);
    }
    int wanted_height(int /*width*/) const override {
        return std::max(pixels(MARK_HEIGHT), scale().line());
    }
    void commanded(WORD code) override {
        if (code == BN_CLICKED) host_.raise(*this, FormEvent::Kind::changed);
    }
};

// ---- fields -------------------------------------------------------------------------------------

int field_width(const Win32FormScale& scale, int limit) {
    const int characters = std::min(limit ? limit : UNLIMITED_FIELD, WIDEST_FIELD);
    // Two more for the frame, the cursor and letters that are wider than a digit.
    return scale.digit() * (characters + 2);
}

std::wstring cut_at(const std::string& text, int limit) {
    std::wstring shown = wide(text);
    if (limit && shown.size() > size_t(limit)) shown.resize(size_t(limit));
    return shown;
}

class Edit final : public Win32Control {
public:
    Edit(const FormControl& described, HWND parent, Win32ControlHost& host)
        : Win32Control(described, host), limit_(described.limit) {
        create(parent, L"EDIT", "", ES_AUTOHSCROLL | WS_TABSTOP | WS_GROUP, WS_EX_CLIENTEDGE);
        if (limit_) send(EM_LIMITTEXT, WPARAM(limit_));
        set_text(described.text);
    }
    std::string text() override { return window_text(); }
    void set_text(const std::string& text) override {
        SetWindowTextW(window_, cut_at(text, limit_).c_str());
    }
    bool takes_width() const override { return limit_ >= WIDEST_FIELD; }
    int wanted_width() const override { return field_width(scale(), limit_); }
    int wanted_height(int /*width*/) const override {
        return scale().line() + 2 * pixels(FIELD_MARGIN);
    }
    void commanded(WORD code) override {
        if (code == EN_CHANGE) host_.raise(*this, FormEvent::Kind::changed);
    }

private:
    int limit_;
};

/// Opens at the end, where the newest lines are, or at the line that it gets as its value.
class TextView final : public Win32Control {
public:
    TextView(const FormControl& described, HWND parent, Win32ControlHost& host)
        : Win32Control(described, host) {
        create(parent, L"EDIT", with_carriage_returns(text_),
               ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL | WS_TABSTOP | WS_GROUP,
               WS_EX_CLIENTEDGE);
    }
    void set_value(int line) override {
        const LRESULT start = send(EM_LINEINDEX, WPARAM(line));
        is_at_line_ = true;
        send(EM_SETSEL, WPARAM(start), LPARAM(start));
    }
    bool takes_width() const override { return true; }
    bool takes_height() const override { return true; }
    int wanted_width() const override {
        return scale().digit() * VIEW.width + GetSystemMetrics(SM_CXVSCROLL);
    }
    int wanted_height(int /*width*/) const override { return scale().line() * VIEW.height; }
    void move(const RECT& place) override {
        Win32Control::move(place);
        if (std::exchange(is_at_line_, true)) return;
        send(EM_SETSEL, WPARAM(GetWindowTextLengthW(window_)), LPARAM(-1));
        send(EM_SCROLLCARET);
    }

protected:
    /// Tab, Enter and Escape are the form's.
    std::optional<LRESULT> handle(UINT message, WPARAM /*wparam*/, LPARAM /*lparam*/) override {
        if (message != WM_GETDLGCODE) return std::nullopt;
        return DLGC_WANTARROWS | DLGC_WANTCHARS;
    }

private:
    bool is_at_line_ = false;
};

/// A list that opens, with a text field or without.
class OpeningList final : public Win32Control {
public:
    OpeningList(const FormControl& described, HWND parent, Win32ControlHost& host)
        : Win32Control(described, host), is_edited_(kind_ == ControlKind::combo),
          limit_(described.limit) {
        const DWORD style = is_edited_ ? CBS_DROPDOWN | CBS_AUTOHSCROLL : CBS_DROPDOWNLIST;
        create(parent, L"COMBOBOX", "", style | WS_VSCROLL | WS_TABSTOP | WS_GROUP);
        if (limit_) send(CB_LIMITTEXT, WPARAM(limit_));
        set_items(described.items);
        if (is_edited_) set_text(described.text);
    }
    int value() override {
        if (!is_edited_) return int(send(CB_GETCURSEL));
        const std::wstring shown = wide(window_text());
        return int(send(CB_FINDSTRINGEXACT, WPARAM(-1), reinterpret_cast<LPARAM>(shown.c_str())));
    }
    void set_value(int value) override { send(CB_SETCURSEL, WPARAM(value)); }
    std::string text() override { return is_edited_ ? window_text() : item(value()); }
    void set_text(const std::string& text) override {
        if (is_edited_) SetWindowTextW(window_, cut_at(text, limit_).c_str());
    }
    void set_items(const std::vector<std::string>& items) override {
        if (items == items_ && !items.empty()) return choose_first();
        const std::string before = is_edited_ ? window_text() : std::string();
        items_ = items;
        send(WM_SETREDRAW, FALSE);
        send(CB_RESETCONTENT);
        for (const std::string& each : items) {
            send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wide(each).c_str()));
        }
        send(CB_SETMINVISIBLE, WPARAM(std::clamp(int(items.size()), 1, LIST_LINES)));
        choose_first();
        if (is_edited_) set_text(before);
        send(WM_SETREDRAW, TRUE);
        InvalidateRect(window_, nullptr, TRUE);
    }
    bool takes_width() const override { return true; }
    int wanted_width() const override {
        int text = is_edited_ ? field_width(scale(), limit_) : 0;
        for (const std::string& each : items_) {
            text = std::max(text, scale().text_size(each).width);
        }
        return std::min(text, scale().digit() * WIDEST_LIST) + pixels(ARROW);
    }
    int wanted_height(int /*width*/) const override {
        RECT closed{};
        GetWindowRect(window_, &closed);
        return int(closed.bottom - closed.top);
    }
    void move(const RECT& place) override {
        RECT with_list = place; // the height of one of these includes the open list
        const int lines = std::clamp(int(items_.size()), 1, LIST_LINES);
        with_list.bottom += lines * int(send(CB_GETITEMHEIGHT)) + pixels(FIELD_MARGIN);
        Win32Control::move(with_list);
        int widest = int(place.right - place.left);
        for (const std::string& each : items_) {
            widest = std::max(widest, scale().text_size(each).width + pixels(ARROW));
        }
        send(CB_SETDROPPEDWIDTH, WPARAM(widest));
        if (is_edited_) send(CB_SETEDITSEL, 0, MAKELPARAM(-1, 0));
    }
    void commanded(WORD code) override {
        if (code == CBN_EDITCHANGE) return host_.raise(*this, FormEvent::Kind::changed);
        if (code != CBN_SELCHANGE) return;
        // The field gets the item's text only after this message.
        if (is_edited_) set_window_text(item(int(send(CB_GETCURSEL))));
        host_.raise(*this, FormEvent::Kind::changed);
    }

private:
    void choose_first() {
        if (!is_edited_) send(CB_SETCURSEL, items_.empty() ? WPARAM(-1) : 0);
    }
    std::string item(int number) const {
        return number >= 0 && size_t(number) < items_.size() ? items_[size_t(number)] : "";
    }
    bool is_edited_;
    int limit_;
    std::vector<std::string> items_;
};

class Slider final : public Win32Control {
public:
    Slider(const FormControl& described, HWND parent, Win32ControlHost& host)
        : Win32Control(described, host) {
        create(parent, TRACKBAR_CLASSW, "",
               TBS_HORZ | TBS_BOTH | TBS_NOTICKS | WS_TABSTOP | WS_GROUP);
        send(TBM_SETRANGEMIN, FALSE, described.lowest);
        send(TBM_SETRANGEMAX, FALSE, described.highest);
        send(TBM_SETPAGESIZE, 0, described.page);
        send(TBM_SETLINESIZE, 0, 1);
        told_ = value();
    }
    int value() override { return int(send(TBM_GETPOS)); }
    void set_value(int value) override {
        send(TBM_SETPOS, TRUE, value);
        told_ = this->value();
    }
    bool takes_width() const override { return true; }
    int wanted_width() const override { return scale().digit() * SLIDER_LENGTH; }
    int wanted_height(int /*width*/) const override { return pixels(SLIDER_HEIGHT); }
    void scrolled() override {
        if (std::exchange(told_, value()) != value()) {
            host_.raise(*this, FormEvent::Kind::changed);
        }
    }

private:
    int told_ = 0;
};

// ---- of the program's own boxes -----------------------------------------------------------------

class IconPicture final : public Win32Control {
public:
    IconPicture(HICON icon, int points, HWND parent, Win32ControlHost& host)
        : Win32Control({.kind = ControlKind::label}, host), points_(points) {
        create(parent, L"STATIC", "", SS_ICON | SS_REALSIZECONTROL);
        send(STM_SETICON, reinterpret_cast<WPARAM>(icon));
    }
    bool is_focusable() const override { return false; }
    int wanted_width() const override { return pixels(points_); }
    int wanted_height(int /*width*/) const override { return pixels(points_); }

private:
    int points_;
};

/// Can be clicked, and pressed by Enter and the space bar.
class Link final : public Win32Control {
public:
    Link(const std::string& text, std::string target, HWND parent, Win32ControlHost& host)
        : Win32Control({.kind = ControlKind::label, .text = text}, host),
          target_(std::move(target)) {
        create(parent, L"STATIC", text, SS_LEFT | SS_NOPREFIX | SS_NOTIFY | WS_TABSTOP | WS_GROUP);
    }
    void take_font() override {
        send(WM_SETFONT, reinterpret_cast<WPARAM>(scale().font(FormFont::link)), TRUE);
    }
    int wanted_width() const override { return scale().text_size(text_, 0, FormFont::link).width; }
    int wanted_height(int /*width*/) const override {
        return scale().text_size(text_, 0, FormFont::link).height;
    }
    void commanded(WORD code) override {
        if (code == STN_CLICKED) open();
    }

protected:
    std::optional<LRESULT> handle(UINT message, WPARAM wparam, LPARAM lparam) override {
        const auto* key = reinterpret_cast<const MSG*>(lparam);
        switch (message) {
        case WM_SETCURSOR: SetCursor(LoadCursorW(nullptr, IDC_HAND)); return TRUE;
        case WM_GETDLGCODE:
            return key && key->message == WM_KEYDOWN && key->wParam == VK_RETURN ? DLGC_WANTMESSAGE
                                                                                 : DLGC_WANTCHARS;
        case WM_KEYDOWN:
            if (wparam == VK_RETURN || wparam == VK_SPACE) open();
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS: InvalidateRect(window_, nullptr, TRUE); return std::nullopt;
        case WM_PAINT: {
            const LRESULT result = DefSubclassProc(window_, message, wparam, lparam);
            if (GetFocus() == window_) draw_focus();
            return result;
        }
        default: return std::nullopt;
        }
    }

private:
    void open() const {
        ShellExecuteW(GetAncestor(window_, GA_ROOT), L"open", wide(target_).c_str(), nullptr,
                      nullptr, SW_SHOWNORMAL);
    }
    void draw_focus() const {
        RECT area{};
        GetClientRect(window_, &area);
        const HDC canvas = GetDC(window_);
        DrawFocusRect(canvas, &area);
        ReleaseDC(window_, canvas);
    }
    std::string target_;
};

} // namespace

std::unique_ptr<Win32Control> make_win32_control(const FormControl& described, HWND parent,
                                                 Win32ControlHost& host, bool first_of_group) {
    const DWORD group = first_of_group ? WS_GROUP : 0;
    switch (described.kind) {
    case ControlKind::heading:
    case ControlKind::label:
    case ControlKind::note: return std::make_unique<Words>(described, parent, host);
    case ControlKind::group: return std::make_unique<GroupFrame>(described, parent, host);
    case ControlKind::text_view: return std::make_unique<TextView>(described, parent, host);
    case ControlKind::radio:
    case ControlKind::check: return std::make_unique<MarkButton>(described, parent, host, group);
    case ControlKind::picture:
    case ControlKind::picture_button: return make_win32_picture(described, parent, host);
    case ControlKind::table:
    case ControlKind::list_box: return make_win32_table(described, parent, host);
    case ControlKind::list:
    case ControlKind::combo: return std::make_unique<OpeningList>(described, parent, host);
    case ControlKind::edit: return std::make_unique<Edit>(described, parent, host);
    case ControlKind::slider: return std::make_unique<Slider>(described, parent, host);
    default: return std::make_unique<PushButton>(described, parent, host, group);
    }
}

std::unique_ptr<Win32Control> make_win32_icon(HICON icon, int points, HWND parent,
                                              Win32ControlHost& host) {
    return std::make_unique<IconPicture>(icon, points, parent, host);
}

std::unique_ptr<Win32Control> make_win32_link(const std::string& text, const std::string& target,
                                              HWND parent, Win32ControlHost& host) {
    return std::make_unique<Link>(text, target, parent, host);
}
