#include "platform/win32/win32_form.h"

#include "platform/win32/win32_spoken.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int SMALLEST_PICTURE = 40; ///< percent, on a small screen
constexpr int PICTURE_STEP = 5;
constexpr int LEAST_LINES = 6;     ///< of a part that scrolls
constexpr int FIRST_ID = 100;      ///< of the windows of controls
constexpr int TITLE_BUTTONS = 140; ///< points
constexpr int TIP_WIDTH = 400;     ///< points

bool has_text_view(const std::vector<FormControl>& controls) {
    return std::ranges::any_of(controls, [](const FormControl& control) {
        return control.kind == ControlKind::text_view || has_text_view(control.children);
    });
}

bool is_picture(const Win32Control& control) {
    return control.kind() == ControlKind::picture || control.kind() == ControlKind::picture_button;
}

/// To a screen reader, too.
bool has_own_text(ControlKind kind) {
    switch (kind) {
    case ControlKind::radio:
    case ControlKind::picture:
    case ControlKind::picture_button:
    case ControlKind::check: return true;
    default: return kind >= ControlKind::button;
    }
}

/// While the program sets something, no event is raised.
class Silence {
public:
    explicit Silence(int& depth) : depth_(depth) { ++depth_; }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;
    ~Silence() { --depth_; }

private:
    int& depth_;
};

} // namespace

// ---- what it consists of ------------------------------------------------------------------------

Win32Form::Win32Form(Win32Context& context, Win32Keyboard* keyboard,
                     const FormDescription& description, FormHandler handler,
                     const Win32FormExtras& extras)
    : context_(context), keyboard_(keyboard), handler_(std::move(handler)), tick_(description.tick),
      scale_(std::make_unique<Win32FormScale>(context.ratio)),
      window_(context, description.title, has_text_view(description.controls)),
      area_(window_.window()), is_sizable_(has_text_view(description.controls)) {
    const Silence silence(silent_);
    contents_.panel = &area_;
    tips_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP, 0, 0,
                            0, 0, window_.window(), nullptr, context.instance, nullptr);
    SendMessageW(tips_, TTM_SETMAXTIPWIDTH, 0, scale_->pixels(TIP_WIDTH));
    window_.on_message = [this](UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) {
        return obey(message, wparam, lparam, result);
    };
    Naming naming;
    add_extras(extras);
    FormNode& contents = extras.icon ? contents_.children.front().children.back() : contents_;
    for (const FormControl& described : description.controls) {
        if (&described == &description.controls.back() && described.kind == ControlKind::buttons) {
            if (!extras.link.empty()) {
                Win32Control& link =
                    enter(make_win32_link(extras.link, extras.target, area_.window(), *this));
                contents.children.push_back({.kind = ControlKind::label, .control = &link});
                link_ = &link;
            }
            Naming of_buttons;
            add_all(described.children, buttons_, window_.window(), of_buttons);
        } else {
            contents.children.push_back(make(described, area_.window(), naming));
        }
    }
    for (FormNode& node : contents_.children) {
        if (node.kind == ControlKind::scroll) scroll_node_ = &node;
    }
}

Win32Form::~Win32Form() = default;

void Win32Form::add_extras(const Win32FormExtras& extras) {
    if (!extras.icon) return;
    Win32Control& icon =
        enter(make_win32_icon(extras.icon, extras.icon_size, area_.window(), *this));
    FormNode picture{.kind = ControlKind::column};
    picture.children.push_back({.kind = ControlKind::label, .control = &icon});
    FormNode row{.kind = ControlKind::row};
    row.children.push_back(std::move(picture));
    row.children.push_back({.kind = ControlKind::column});
    contents_.children.push_back(std::move(row));
}

void Win32Form::add_all(const std::vector<FormControl>& controls, FormNode& node, HWND parent,
                        Naming& naming) {
    for (const FormControl& described : controls) {
        node.children.push_back(make(described, parent, naming));
    }
}

FormNode Win32Form::make(const FormControl& described, HWND parent, Naming& naming) {
    FormNode node{.kind = described.kind};
    switch (described.kind) {
    case ControlKind::column:
    case ControlKind::row:
    case ControlKind::buttons:
    case ControlKind::grid: {
        Naming inner = naming;
        add_all(described.children, node, parent, inner);
        return node;
    }
    case ControlKind::scroll:
        scroll_ = std::make_unique<Win32Panel>(parent);
        node.panel = scroll_.get();
        add_all(described.children, node, scroll_->window(), naming);
        return node;
    default: break;
    }
    if (described.kind > ControlKind::text_view) give_name(described, parent, naming);
    const ControlKind before = controls_.empty() ? ControlKind::label : controls_.back()->kind();
    const bool is_radio = described.kind == ControlKind::radio;
    const bool is_button = described.kind >= ControlKind::button;
    const bool goes_on =
        (is_radio && before == ControlKind::radio) || (is_button && before >= ControlKind::button);
    Win32Control& control = enter(make_win32_control(described, parent, *this, !goes_on));
    node.control = &control;
    if (!described.tip.empty()) set_tip(control.window(), described.tip);
    if (!described.name.empty()) set_spoken_name(control.window(), described.name);
    if (described.kind == ControlKind::label) naming = {&control, spoken_text(described.text)};
    if (described.kind == ControlKind::group) {
        Naming inner{nullptr, spoken_text(described.text)};
        add_all(described.children, node, parent, inner);
    }
    return node;
}

/// A screen reader takes the text before a control for its name, whether it is seen or not.
void Win32Form::give_name(const FormControl& described, HWND parent, Naming& naming) {
    if (naming.label) { // its access key leads to this control
        set_window_style(std::exchange(naming.label, nullptr)->window(), SS_NOPREFIX, false);
        if (described.name.empty()) return;
    }
    const std::string& name = described.name.empty() ? naming.name : described.name;
    if (has_own_text(described.kind) || name.empty()) return;
    CreateWindowExW(0, L"STATIC", wide(name).c_str(), WS_CHILD | SS_NOPREFIX, 0, 0, 0, 0, parent,
                    nullptr, context_.instance, nullptr);
}

Win32Control& Win32Form::enter(std::unique_ptr<Win32Control> made) {
    Win32Control& control = *made;
    controls_.push_back(std::move(made));
    by_window_[control.window()] = &control;
    if (control.id()) by_id_[control.id()] = &control;
    int window_id = FIRST_ID + int(controls_.size());
    if (control.kind() == ControlKind::default_button) window_id = IDOK;
    if (control.kind() == ControlKind::cancel_button) window_id = IDCANCEL;
    SetWindowLongPtrW(control.window(), GWLP_ID, window_id);
    if (window_id == IDOK) SendMessageW(window_.window(), DM_SETDEFID, IDOK, 0);
    return control;
}

Win32Control* Win32Form::control(int id) const {
    const auto found = by_id_.find(id);
    return found == by_id_.end() ? nullptr : found->second;
}

Win32Control* Win32Form::control_of(HWND window) const {
    const auto found = by_window_.find(window);
    return found == by_window_.end() ? nullptr : found->second;
}

void Win32Form::set_tip(HWND window, const std::string& text) {
    std::wstring shown = wide(text);
    TTTOOLINFOW tip{};
    tip.cbSize = TTTOOLINFOW_V1_SIZE;
    tip.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tip.hwnd = GetParent(window);
    tip.uId = reinterpret_cast<UINT_PTR>(window);
    tip.lpszText = shown.data();
    SendMessageW(tips_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tip));
    if (!text.empty()) SendMessageW(tips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tip));
}

// ---- what the program reads and sets ------------------------------------------------------------

int Win32Form::value(int id) {
    Win32Control* const found = control(id);
    return found ? found->value() : 0;
}

void Win32Form::set_value(int id, int value) {
    const Silence silence(silent_);
    Win32Control* const found = control(id);
    if (!found) return;
    found->set_value(value);
    if (value && excludes_others(found->kind())) choose(*found);
}

/// Of the radio buttons, or of the pictures. Tab leads to this one.
void Win32Form::choose(Win32Control& chosen) {
    const Silence silence(silent_);
    for (const auto& each : controls_) {
        if (each->kind() != chosen.kind()) continue;
        const bool is_this = each.get() == &chosen;
        if (each->value() != int(is_this)) each->set_value(is_this);
        set_window_style(each->window(), WS_TABSTOP, is_this);
    }
}

std::string Win32Form::text(int id) {
    Win32Control* const found = control(id);
    return found ? found->text() : std::string();
}

void Win32Form::set_text(int id, const std::string& text) {
    const Silence silence(silent_);
    Win32Control* const found = control(id);
    if (!found) return;
    found->set_text(text);
    fit_again(*found);
}

void Win32Form::set_items(int id, const std::vector<std::string>& items) {
    const Silence silence(silent_);
    Win32Control* const found = control(id);
    if (!found) return;
    found->set_items(items);
    fit_again(*found);
}

void Win32Form::set_picture(int id, const FormPicture& picture) {
    if (Win32Control* const found = control(id)) found->set_picture(picture);
}

bool Win32Form::is_enabled(int id) {
    const Win32Control* const found = control(id);
    return found && IsWindowEnabled(found->window());
}

/// A control that has the focus hands it on, or the keyboard would be without effect.
void Win32Form::set_enabled(int id, bool enabled) {
    const Silence silence(silent_);
    const Win32Control* const found = control(id);
    if (!found) return;
    if (!enabled && GetFocus() == found->window()) {
        SendMessageW(window_.window(), WM_NEXTDLGCTL, 0, FALSE);
    }
    EnableWindow(found->window(), enabled);
}

// ---- opening and closing ------------------------------------------------------------------------

void Win32Form::run(std::function<void(int)> done) {
    closing_id_ = FORM_CLOSED;
    fit();
    if (!is_placed_) window_.move_to_owner();
    if (tick_) SetTimer(window_.window(), FORM_TICK, UINT(tick_), nullptr);
    ++silent_;
    window_.run([this] {
        focus_first();
        --silent_;
    });
    waiting_ = Waiting::no;
    if (tick_) KillTimer(window_.window(), FORM_TICK);
    const int closing_id = closing_id_;
    done(closing_id); // may remove the form
}

void Win32Form::show() {
    const bool was_open = is_open();
    const Silence silence(silent_);
    if (!was_open) {
        fit();
        if (!std::exchange(is_placed_, true)) window_.move_to_owner();
        if (tick_) SetTimer(window_.window(), FORM_TICK, UINT(tick_), nullptr);
    }
    window_.show();
    if (!was_open) focus_first();
}

void Win32Form::end(int closing_id) {
    closing_id_ = closing_id;
    waiting_ = Waiting::no;
    least_ = {};
    if (tick_) KillTimer(window_.window(), FORM_TICK);
    window_.end();
}

/// Gives the focus to the table, or to the first control. Of radio buttons and pictures that is the
/// chosen one, or the arrow keys would start at another.
void Win32Form::focus_first() {
    const auto can_have = [](const auto& each) {
        return each->is_focusable() && IsWindowEnabled(each->window());
    };
    const Win32Control* first = nullptr;
    for (const auto& each : controls_) {
        if (!can_have(each)) continue;
        if (!first && each.get() != link_) first = each.get();
        if (each->kind() == ControlKind::table) first = each.get();
    }
    if (first && excludes_others(first->kind())) {
        for (const auto& each : controls_) {
            if (each->kind() == first->kind() && each->value()) first = each.get();
        }
    }
    if (first) SetFocus(first->window());
}

Size Win32Form::size() {
    if (!is_open()) fit();
    RECT outer{};
    GetWindowRect(window_.window(), &outer);
    return {context_.points(int(outer.right - outer.left)),
            context_.points(int(outer.bottom - outer.top))};
}

void Win32Form::move(int left, int top) {
    MONITORINFO screen{};
    screen.cbSize = sizeof screen;
    const HWND at = context_.window ? context_.window : window_.window();
    GetMonitorInfoW(MonitorFromWindow(at, MONITOR_DEFAULTTONEAREST), &screen);
    if (!is_open()) fit();
    is_placed_ = true;
    window_.move(int(screen.rcMonitor.left) + context_.pixels(left),
                 int(screen.rcMonitor.top) + context_.pixels(top));
}

// ---- sizes --------------------------------------------------------------------------------------

void Win32Form::take_scale(double ratio) {
    auto before = std::exchange(scale_, std::make_unique<Win32FormScale>(ratio));
    for (const auto& each : controls_) each->take_font(); // before its old one goes
    SendMessageW(tips_, TTM_SETMAXTIPWIDTH, 0, scale_->pixels(TIP_WIDTH));
}

/// With what else the title bar has.
int Win32Form::title_width() const {
    return scale_->text_size(title_).width + scale_->pixels(TITLE_BUTTONS);
}

/// Small screens get more rows of buttons, and smaller pictures.
void Win32Form::fit() {
    if (!is_open() && scale_->ratio() != context_.ratio) take_scale(context_.ratio);
    if (!is_open()) least_ = {};
    const SIZE all = window_.room();
    const int margins = 2 * Win32FormLayout(*scale_, 0).margin();
    const Size room = {int(all.cx) - margins, int(all.cy) - margins};
    const Win32FormLayout layout(*scale_, room.width);
    contents_.limit = 0;
    if (scroll_node_) scroll_node_->limit = 0;
    int width = 0;
    for (int percent = 100; percent >= SMALLEST_PICTURE; percent -= PICTURE_STEP) {
        for (const auto& each : controls_) {
            if (is_picture(*each)) set_picture_percent(*each, percent);
        }
        width = std::max(layout.wanted_width(contents_), layout.wanted_width(buttons_));
        if (width + GetSystemMetrics(SM_CXVSCROLL) <= room.width) break;
    }
    width = std::max(width, std::min(room.width, title_width()));
    int height = 0;
    fit_height(layout, width, height, room.height);
    least_ = {std::max(least_.width, std::min(width, room.width) + margins),
              std::max(least_.height, std::min(height, room.height) + margins)};
    window_.set_client_size(std::min(least_.width, int(all.cx)),
                            std::min(least_.height, int(all.cy)));
    place();
}

/// The part that scrolls becomes lower, and then all of it.
void Win32Form::fit_height(const Win32FormLayout& layout, int& width, int& height, int room) {
    const auto below = [&] {
        if (buttons_.children.empty()) return 0;
        return layout.wanted_height(buttons_, width) + layout.margin();
    };
    const auto widen = [&] { width = std::max(width, layout.wanted_width(contents_)); };
    height = layout.wanted_height(contents_, width) + below();
    if (height <= room) return;
    if (scroll_node_) {
        const int wanted = layout.wanted_height(*scroll_node_, width) - (height - room);
        scroll_node_->limit = std::max(wanted, LEAST_LINES * scale_->line());
        widen();
        height = layout.wanted_height(contents_, width) + below();
    }
    if (height <= room) return;
    contents_.limit = std::max(room - below(), LEAST_LINES * scale_->line());
    widen();
    height = layout.wanted_height(contents_, width) + below();
}

/// An open form becomes larger, where a text is too long for it now, and never smaller.
void Win32Form::fit_again(const Win32Control& changed) {
    if (!is_open()) return;
    RECT place{};
    GetClientRect(changed.window(), &place);
    const bool is_wide_enough = changed.takes_width() || changed.wanted_width() <= int(place.right);
    const bool is_high_enough =
        changed.takes_height() || changed.wanted_height(int(place.right)) <= int(place.bottom);
    if (!is_wide_enough || !is_high_enough) fit();
}

void Win32Form::place() {
    RECT inside{};
    GetClientRect(window_.window(), &inside);
    const int margin = Win32FormLayout(*scale_, 0).margin();
    InflateRect(&inside, -margin, -margin);
    const int width = int(inside.right - inside.left);
    const Win32FormLayout layout(*scale_, width);
    RECT contents = inside;
    if (!buttons_.children.empty()) {
        RECT below = inside;
        below.top = below.bottom - layout.wanted_height(buttons_, width);
        contents.bottom = below.top - margin;
        layout.place(buttons_, below);
    }
    layout.place(contents_, contents);
    RedrawWindow(window_.window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}
