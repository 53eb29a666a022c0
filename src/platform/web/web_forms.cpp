#include "platform/web/web_forms.h"

#include "platform/form_values.h"
#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

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

class WebForm;
std::map<int, WebForm*> forms; ///< by their numbers
int last_number = 0;

class WebForm final : public Form {
public:
    WebForm(const FormDescription& description, FormHandler handler);
    ~WebForm() override;
    WebForm(const WebForm&) = delete;
    WebForm& operator=(const WebForm&) = delete;

    int value(int id) override { return values_.value(id); }
    void set_value(int id, int value) override;
    std::string text(int id) override { return values_.text(id); }
    void set_text(int id, const std::string& text) override;
    void set_items(int id, const std::vector<std::string>& items) override;
    void set_picture(int id, const FormPicture& picture) override;
    bool is_enabled(int id) override { return values_.is_enabled(id); }
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
    void show_pixels(const std::vector<FormControl>& described);
    void hide();
    void answer();

    int number_ = ++last_number;
    FormHandler handler_;
    FormValues values_;
    std::function<void(int)> done_;
    int closing_id_ = FORM_CLOSED;
    bool open_ = false;
    bool handles_ = false; ///< an event, just now
};

WebForm::WebForm(const FormDescription& description, FormHandler handler)
    : handler_(std::move(handler)), values_(description.controls) {
    forms[number_] = this;
    call_page("forms.create", number_,
              Json::object({{"title", description.title},
                            {"controls", Json::array(description.controls, as_json)},
                            {"tick", description.tick}}));
    show_pixels(description.controls);
}

WebForm::~WebForm() {
    forms.erase(number_);
    call_page("forms.remove", number_);
}

void WebForm::show_pixels(const std::vector<FormControl>& described) {
    for (const FormControl& control : described) {
        if (!control.picture.pixels.empty()) set_picture(control.id, control.picture);
        show_pixels(control.children);
    }
}

// ---- for the program ---------------------------------------------------------------------------

void WebForm::set_value(int id, int value) {
    values_.set_value(id, value);
    call_page("forms.setValue", number_, id, value);
}

void WebForm::set_text(int id, const std::string& text) {
    values_.set_text(id, text);
    call_page("forms.setText", number_, id, values_.text(id));
}

void WebForm::set_items(int id, const std::vector<std::string>& items) {
    const auto* const control = values_.find(id);
    if (!control) return;
    const bool differ = control->described.items != items;
    values_.set_items(id, items);
    if (differ) call_page("forms.setItems", number_, id, items);
    if (has_rows(control->described)) set_value(id, control->value);
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

void WebForm::set_enabled(int id, bool enabled) {
    if (values_.is_enabled(id) == enabled) return;
    values_.set_enabled(id, enabled);
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
    const auto* const control = values_.find(event.control);
    if (control && event.kind == FormEvent::Kind::changed) {
        is_text_field(control->described) ? values_.set_text(event.control, text)
                                          : values_.set_value(event.control, value);
    }
    const bool closes = event.kind == FormEvent::Kind::closed ||
                        (event.kind == FormEvent::Kind::pressed && control &&
                         control->described.kind > ControlKind::button);
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
