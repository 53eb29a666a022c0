#include "platform/headless/headless_forms.h"

#include <algorithm>
#include <utility>

namespace {

bool is_button(const FormControl& control) {
    return control.kind >= ControlKind::button || control.kind == ControlKind::picture_button;
}

} // namespace

HeadlessForm::HeadlessForm(const FormDescription& form, FormHandler handler, HeadlessForms& forms)
    : description(form), handler_(std::move(handler)), forms_(forms), values_(form.controls) {
    forms_.forms.push_back(this);
}

HeadlessForm::~HeadlessForm() { std::erase(forms_.forms, this); }

void HeadlessForm::set_picture(int id, const FormPicture& picture) {
    if (auto* const control = values_.find(id)) control->described.picture = picture;
}

FormPicture HeadlessForm::picture(int id) {
    const auto* const control = values_.find(id);
    return control ? control->described.picture : FormPicture();
}

void HeadlessForm::run(std::function<void(int)> done) {
    open_ = true;
    closing_id_ = FORM_CLOSED;
    forms_.answers.give([this, done = std::move(done)] {
        while (open_ && !forms_.acts.empty()) {
            const auto act = std::move(forms_.acts.front());
            forms_.acts.pop_front();
            act(*this);
        }
        if (open_) press_escape();
        done(closing_id_);
    });
}

bool HeadlessForm::user_reaches(int id) { return open_ && is_enabled(id); }

void HeadlessForm::choose(int id, int value) {
    if (!user_reaches(id)) return;
    set_value(id, value);
    handler_(*this, {FormEvent::Kind::changed, id});
}

void HeadlessForm::type(int id, const std::string& text) {
    if (!user_reaches(id) || !is_text_field(values_.find(id)->described)) return;
    set_text(id, text);
    handler_(*this, {FormEvent::Kind::changed, id});
}

void HeadlessForm::activate(int id) {
    if (!user_reaches(id) || value(id) < 0) return;
    handler_(*this, {FormEvent::Kind::activated, id});
}

void HeadlessForm::press(int id) {
    if (!user_reaches(id) || !is_button(values_.find(id)->described)) return;
    handler_(*this, {FormEvent::Kind::pressed, id});
    if (values_.find(id)->described.kind > ControlKind::button) finish(id);
}

bool HeadlessForm::press_key(uint8_t key) {
    if (!open_ || !std::exchange(awaits_key_, false)) return false;
    handler_(*this, {FormEvent::Kind::key, 0, key});
    return true;
}

void HeadlessForm::tick() {
    if (open_ && description.tick) handler_(*this, {FormEvent::Kind::ticked});
}

void HeadlessForm::press_escape() {
    const int cancel = button_of(ControlKind::cancel_button);
    if (!cancel) return press_close_button();
    press(cancel);
}

void HeadlessForm::press_close_button() {
    if (!open_) return;
    handler_(*this, {FormEvent::Kind::closed, FORM_CLOSED});
    finish(FORM_CLOSED);
}

int HeadlessForm::button_of(ControlKind kind) {
    const auto found = std::ranges::find_if(values_.controls(), [kind](const auto& control) {
        return control.second.described.kind == kind;
    });
    return found == values_.controls().end() ? 0 : found->first;
}

void HeadlessForm::finish(int closing_id) {
    closing_id_ = closing_id;
    open_ = false;
}

std::unique_ptr<Form> HeadlessForms::create(const FormDescription& description,
                                            FormHandler handler) {
    return std::make_unique<HeadlessForm>(description, std::move(handler), *this);
}

HeadlessForm* HeadlessForms::find(const std::string& title) {
    const auto found = std::find_if(forms.rbegin(), forms.rend(), [&title](HeadlessForm* form) {
        return form->description.title == title;
    });
    return found == forms.rend() ? nullptr : *found;
}
