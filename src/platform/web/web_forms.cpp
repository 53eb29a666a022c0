#include "platform/web/web_forms.h"

#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

#include <algorithm>
#include <map>
#include <utility>

namespace {

/// What the page calls the kinds, in their order.
constexpr const char* KINDS[] = {
    "column",         "row",    "buttons", "grid",           "group",        "scroll",
    "heading",        "label",  "note",    "text_view",      "radio",        "picture",
    "picture_button", "table",  "check",   "list",           "list_box",     "combo",
    "edit",           "slider", "button",  "default_button", "cancel_button"};
static_assert(std::size(KINDS) == size_t(ControlKind::cancel_button) + 1);

std::vector<int> as_pair(Size size) { return {size.width, size.height}; }

Json as_json(const FormControl& control) {
    return Json::object({{"kind", KINDS[size_t(control.kind)]},
                         {"id", control.id},
                         {"text", control.text},
                         {"name", control.name},
                         {"tip", control.tip},
                         {"limit", control.limit},
                         {"lowest", control.lowest},
                         {"highest", control.highest},
                         {"page", control.page},
                         {"items", control.items},
                         {"children", Json::array(control.children, as_json)},
                         {"file", control.picture.file},
                         {"area", as_pair(control.picture_area)},
                         {"headings", control.headings},
                         {"tableArea", as_pair(control.table_area)}});
}

/// So many characters of a text in UTF-8; all of it without a limit.
std::string cut(const std::string& text, int limit) {
    if (limit == 0) return text;
    int characters = 0;
    for (size_t n = 0; n < text.size(); ++n) {
        const bool begins = (uint8_t(text[n]) & 0xC0) != 0x80;
        if (begins && characters++ == limit) return text.substr(0, n);
    }
    return text;
}

class WebForm;
std::map<int, WebForm*> forms; ///< by their numbers
int last_number = 0;

class WebForm final : public Form {
public:
    WebForm(const FormDescription& description, FormHandler handler);
    ~WebForm() override;
    WebForm(const WebForm&) = delete;
    WebForm& operator=(const WebForm&) = delete;

    int value(int id) override;
    void set_value(int id, int value) override;
    std::string text(int id) override;
    void set_text(int id, const std::string& text) override;
    void set_items(int id, const std::vector<std::string>& items) override;
    void set_picture(int id, const FormPicture& picture) override;
    bool is_enabled(int id) override;
    void set_enabled(int id, bool enabled) override;
    void await_key() override { call_page("forms.awaitKey", number_); }
    void run(std::function<void(int)> done) override;
    void show() override;
    void close() override;
    bool is_open() override { return open_; }
    Size size() override;
    void move(int left, int top) override { call_page("forms.move", number_, left, top); }

    void heard(const FormEvent& event, int value, const char* text);

private:
    struct Control {
        ControlKind kind;
        int value = 0;
        std::string text;
        std::vector<std::string> items;
        int lowest, highest, limit;
        bool enabled = true;

        bool has_items() const {
            return kind == ControlKind::list || kind == ControlKind::list_box || is_table();
        }
        bool is_table() const { return kind == ControlKind::table; }
    };

    void take(const std::vector<FormControl>& described);
    Control* control(int id) {
        const auto found = controls_.find(id);
        return found == controls_.end() ? nullptr : &found->second;
    }
    void keep(Control& control, int value);
    void hide();
    void answer();

    int number_ = ++last_number;
    FormHandler handler_;
    std::map<int, Control> controls_;
    std::function<void(int)> done_;
    int closing_id_ = FORM_CLOSED;
    bool open_ = false;
    bool handles_ = false; ///< an event, just now
};

WebForm::WebForm(const FormDescription& description, FormHandler handler)
    : handler_(std::move(handler)) {
    forms[number_] = this;
    call_page("forms.create", number_,
              Json::object({{"title", description.title},
                            {"controls", Json::array(description.controls, as_json)},
                            {"tick", description.tick}}));
    take(description.controls);
}

WebForm::~WebForm() {
    forms.erase(number_);
    call_page("forms.remove", number_);
}

void WebForm::take(const std::vector<FormControl>& described) {
    for (const FormControl& one : described) {
        take(one.children);
        if (!one.id) continue;
        Control control{one.kind,    0,        cut(one.text, one.limit), one.items, one.lowest,
                        one.highest, one.limit};
        if (control.has_items() && control.items.empty()) control.value = -1;
        if (control.kind == ControlKind::slider) control.value = one.lowest;
        controls_[one.id] = std::move(control);
        if (!one.picture.pixels.empty()) set_picture(one.id, one.picture);
    }
}

// ---- what stands in the controls ---------------------------------------------------------------

int WebForm::value(int id) {
    const Control* const found = control(id);
    if (!found) return 0;
    if (found->kind != ControlKind::combo) return found->value;
    const auto item = std::find(found->items.begin(), found->items.end(), found->text);
    return item == found->items.end() ? -1 : int(item - found->items.begin());
}

/// Radio buttons exclude each other, and so do pictures; one of them stays chosen.
void WebForm::keep(Control& control, int value) {
    switch (control.kind) {
    case ControlKind::radio:
    case ControlKind::picture:
        if (!value) return;
        for (auto& [id, other] : controls_) {
            if (other.kind == control.kind) other.value = 0;
        }
        control.value = 1;
        return;
    case ControlKind::check: control.value = value != 0; return;
    case ControlKind::slider:
        control.value = std::clamp(value, control.lowest, control.highest);
        return;
    case ControlKind::combo:
        if (value >= 0 && value < int(control.items.size())) control.text = control.items[value];
        return;
    default:
        if (control.has_items()) {
            control.value = value >= 0 && value < int(control.items.size()) ? value : -1;
        }
    }
}

void WebForm::set_value(int id, int value) {
    Control* const found = control(id);
    if (!found) return;
    keep(*found, value);
    call_page("forms.setValue", number_, id, value);
}

std::string WebForm::text(int id) {
    const Control* const found = control(id);
    if (!found) return {};
    if (!found->has_items()) return found->text;
    return found->value < 0 ? std::string() : found->items[size_t(found->value)];
}

void WebForm::set_text(int id, const std::string& text) {
    Control* const found = control(id);
    if (!found || found->has_items()) return;
    found->text = cut(text, found->limit);
    call_page("forms.setText", number_, id, found->text);
}

void WebForm::set_items(int id, const std::vector<std::string>& items) {
    Control* const found = control(id);
    if (!found) return;
    if (found->items != items) {
        found->items = items;
        call_page("forms.setItems", number_, id, items);
    }
    if (!found->has_items()) return;
    const int before = found->is_table() ? std::max(found->value, 0) : 0;
    set_value(id, std::min(before, int(items.size()) - 1));
}

void WebForm::set_picture(int id, const FormPicture& picture) {
    const auto& [width, height, pixels, file] = picture;
    if (pixels.empty() || pixels.size() != size_t(width) * size_t(height)) {
        call_page("forms.setPicture", number_, id, file);
        return;
    }
    const auto* bytes = reinterpret_cast<const uint8_t*>(pixels.data());
    give_page("forms.setPixels", {bytes, pixels.size() * sizeof(Colour)}, number_, id, width,
              height);
}

bool WebForm::is_enabled(int id) {
    const Control* const found = control(id);
    return found && found->enabled;
}

void WebForm::set_enabled(int id, bool enabled) {
    Control* const found = control(id);
    if (!found || found->enabled == enabled) return;
    found->enabled = enabled;
    call_page("forms.enable", number_, id, enabled);
}

// ---- open and closed ---------------------------------------------------------------------------

void WebForm::run(std::function<void(int)> done) {
    done_ = std::move(done);
    closing_id_ = FORM_CLOSED;
    open_ = true;
    call_page("forms.open", number_, true);
}

void WebForm::show() {
    open_ = true;
    call_page("forms.open", number_, false);
}

void WebForm::hide() {
    open_ = false;
    call_page("forms.close", number_);
}

void WebForm::close() {
    if (!open_) return;
    hide();
    if (!handles_) answer();
}

/// The last that a form does: it may be gone afterwards.
void WebForm::answer() {
    if (const auto done = std::exchange(done_, nullptr)) done(closing_id_);
}

Size WebForm::size() {
    return {int(call_page("forms.width", number_)), int(call_page("forms.height", number_))};
}

void WebForm::heard(const FormEvent& event, int value, const char* text) {
    if (!open_) return;
    Control* const found = control(event.control);
    const bool is_field =
        found && (found->kind == ControlKind::edit || found->kind == ControlKind::combo);
    if (is_field) found->text = cut(text, found->limit);
    if (found && !is_field && event.kind == FormEvent::Kind::changed) keep(*found, value);
    const bool closes =
        event.kind == FormEvent::Kind::closed ||
        (event.kind == FormEvent::Kind::pressed && found && found->kind > ControlKind::button);
    const bool was_handling = std::exchange(handles_, true);
    handler_(*this, event);
    handles_ = was_handling;
    if (closes && open_) {
        closing_id_ = event.control;
        hide();
    }
    if (!open_ && !handles_) answer();
}

} // namespace

std::unique_ptr<Form> WebForms::create(const FormDescription& description, FormHandler handler) {
    return std::make_unique<WebForm>(description, std::move(handler));
}

/// The user has done something to a form: kind is a FormEvent::Kind, key a HostKey. Value and text
/// are those of the control now.
extern "C" EMSCRIPTEN_KEEPALIVE void tarvelin_form_event(int form, int kind, int control, int value,
                                                         const char* text, int key) {
    const auto found = forms.find(form);
    if (found == forms.end()) return;
    found->second->heard({FormEvent::Kind(kind), control, uint8_t(key)}, value, text);
}
