#include "platform/headless/headless_forms.h"

#include <algorithm>
#include <utility>

namespace {

bool is_text_field(const FormControl& control) {
    return control.kind == ControlKind::edit || control.kind == ControlKind::combo;
}

bool has_rows(const FormControl& control) {
    return control.kind == ControlKind::list || control.kind == ControlKind::list_box ||
           control.kind == ControlKind::table;
}

bool is_button(const FormControl& control) {
    return control.kind >= ControlKind::button || control.kind == ControlKind::picture_button;
}

int index_of(const std::vector<std::string>& items, const std::string& text) {
    const auto found = std::ranges::find(items, text);
    return found == items.end() ? -1 : int(found - items.begin());
}

bool has_item(const FormControl& control, int value) {
    return value >= 0 && size_t(value) < control.items.size();
}

} // namespace

HeadlessForm::HeadlessForm(const FormDescription& form, FormHandler handler, HeadlessForms& forms)
    : description(form), handler_(std::move(handler)), forms_(forms) {
    add(description.controls);
    forms_.forms.push_back(this);
}

HeadlessForm::~HeadlessForm() { std::erase(forms_.forms, this); }

void HeadlessForm::add(const std::vector<FormControl>& controls) {
    for (const FormControl& control : controls) {
        if (control.id) {
            Control& added = controls_[control.id];
            added.described = control;
            added.described.children.clear();
            if (has_rows(control)) set_items(control.id, control.items);
            if (control.kind == ControlKind::slider) added.value = control.lowest;
            if (is_text_field(control)) set_text(control.id, control.text);
        }
        add(control.children);
    }
}

HeadlessForm::Control* HeadlessForm::find(int id) {
    const auto found = controls_.find(id);
    return found == controls_.end() ? nullptr : &found->second;
}

int HeadlessForm::value(int id) {
    const Control* control = find(id);
    if (!control) return 0;
    if (control->described.kind != ControlKind::combo) return control->value;
    return index_of(control->described.items, control->described.text);
}

void HeadlessForm::set_value(int id, int value) {
    Control* control = find(id);
    if (!control) return;
    const FormControl& described = control->described;
    switch (described.kind) {
    case ControlKind::radio:
    case ControlKind::picture:
        if (!value) return;
        for (auto& [other, state] : controls_) {
            if (state.described.kind == described.kind) state.value = other == id;
        }
        return;
    case ControlKind::check: control->value = value != 0; return;
    case ControlKind::list:
    case ControlKind::list_box:
    case ControlKind::table: control->value = has_item(described, value) ? value : -1; return;
    case ControlKind::combo:
        return set_text(id, has_item(described, value) ? described.items[size_t(value)] : "");
    case ControlKind::slider:
        control->value = std::clamp(value, described.lowest, described.highest);
        return;
    default: return;
    }
}

std::string HeadlessForm::text(int id) {
    const Control* control = find(id);
    if (!control) return {};
    const FormControl& described = control->described;
    if (!has_rows(described)) return described.text;
    return has_item(described, control->value) ? described.items[size_t(control->value)] : "";
}

void HeadlessForm::set_text(int id, const std::string& text) {
    Control* control = find(id);
    if (!control) return;
    FormControl& described = control->described;
    const bool cut = is_text_field(described) && described.limit;
    described.text = cut ? text.substr(0, size_t(described.limit)) : text;
}

void HeadlessForm::set_items(int id, const std::vector<std::string>& items) {
    Control* control = find(id);
    if (!control) return;
    control->described.items = items;
    const bool stays = control->described.kind == ControlKind::table;
    control->value = std::min(stays ? std::max(control->value, 0) : 0, int(items.size()) - 1);
}

void HeadlessForm::set_picture(int id, const FormPicture& picture) {
    Control* control = find(id);
    if (control) control->described.picture = picture;
}

FormPicture HeadlessForm::picture(int id) {
    const Control* control = find(id);
    return control ? control->described.picture : FormPicture();
}

bool HeadlessForm::is_enabled(int id) {
    const Control* control = find(id);
    return control && control->enabled;
}

void HeadlessForm::set_enabled(int id, bool enabled) {
    if (Control* control = find(id)) control->enabled = enabled;
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
    if (!user_reaches(id) || !is_text_field(find(id)->described)) return;
    set_text(id, text);
    handler_(*this, {FormEvent::Kind::changed, id});
}

void HeadlessForm::activate(int id) {
    if (!user_reaches(id) || value(id) < 0) return;
    handler_(*this, {FormEvent::Kind::activated, id});
}

void HeadlessForm::press(int id) {
    if (!user_reaches(id) || !is_button(find(id)->described)) return;
    handler_(*this, {FormEvent::Kind::pressed, id});
    if (find(id)->described.kind > ControlKind::button) finish(id);
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
    const auto found = std::ranges::find_if(
        controls_, [kind](const auto& control) { return control.second.described.kind == kind; });
    return found == controls_.end() ? 0 : found->first;
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
