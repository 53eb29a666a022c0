#include "platform/form_values.h"

#include "platform/utf8.h"

#include <algorithm>
#include <cstdint>

namespace {

bool has_item(const FormControl& control, int value) {
    return value >= 0 && size_t(value) < control.items.size();
}

} // namespace

bool is_text_field(const FormControl& control) {
    return control.kind == ControlKind::edit || control.kind == ControlKind::combo;
}

bool has_rows(const FormControl& control) {
    return control.kind == ControlKind::list || control.kind == ControlKind::list_box ||
           control.kind == ControlKind::table;
}

void FormValues::add(const std::vector<FormControl>& controls) {
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

FormValues::Control* FormValues::find(int id) {
    const auto found = controls_.find(id);
    return found == controls_.end() ? nullptr : &found->second;
}

int FormValues::value(int id) {
    const Control* control = find(id);
    if (!control) return 0;
    if (control->described.kind != ControlKind::combo) return control->value;
    const std::vector<std::string>& items = control->described.items;
    const auto found = std::find(items.begin(), items.end(), control->described.text);
    return found == items.end() ? -1 : int(found - items.begin());
}

void FormValues::set_value(int id, int value) {
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

std::string FormValues::text(int id) {
    const Control* control = find(id);
    if (!control) return {};
    const FormControl& described = control->described;
    if (!has_rows(described)) return described.text;
    return has_item(described, control->value) ? described.items[size_t(control->value)] : "";
}

void FormValues::set_text(int id, const std::string& text) {
    Control* control = find(id);
    if (!control || has_rows(control->described)) return;
    FormControl& described = control->described;
    const bool cut = is_text_field(described) && described.limit;
    described.text = cut ? text.substr(0, end_of_characters(text, described.limit)) : text;
}

void FormValues::set_items(int id, const std::vector<std::string>& items) {
    Control* control = find(id);
    if (!control) return;
    control->described.items = items;
    const bool stays = control->described.kind == ControlKind::table;
    control->value = std::min(stays ? std::max(control->value, 0) : 0, int(items.size()) - 1);
}

bool FormValues::is_enabled(int id) {
    const Control* control = find(id);
    return control && control->enabled;
}

void FormValues::set_enabled(int id, bool enabled) {
    if (Control* control = find(id)) control->enabled = enabled;
}
