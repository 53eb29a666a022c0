#include "host/options.h"

#include "host/menu.h"
#include "host/settings/prefs.h"
#include "platform/platform.h"

#include <charconv>

namespace {

/// Where the row's setting is: its own place, or the flag of the command.
SettingPlace place_of(const CommandRow& row) {
    const bool own = !std::holds_alternative<std::monostate>(row.setting.place);
    return own || !row.flag ? row.setting.place : row.flag;
}

struct GetNumber {
    uint32_t operator()(bool* flag) const { return *flag ? 1 : 0; }
    uint32_t operator()(uint32_t* number) const { return *number; }
    uint32_t operator()(const NumberAccess& access) const { return access.get(); }
    uint32_t operator()(const auto& /*no number*/) const { return 0; }
};

struct SetNumber {
    uint32_t value;
    void operator()(bool* flag) const { *flag = value != 0; }
    void operator()(uint32_t* number) const { *number = value; }
    void operator()(const NumberAccess& access) const { access.set(value); }
    void operator()(const auto& /*no number*/) const {}
};

void mend(const Setting& setting, const SettingPlace& place, bool store) {
    const uint32_t number = std::visit(GetNumber(), place);
    const uint32_t possible = setting.possible(number);
    if (possible == number) return;
    std::visit(SetNumber{possible}, place);
    if (store) SetValueDword(setting.name, &possible);
}

void read(const Setting& setting, const SettingPlace& place) {
    if (const auto* text = std::get_if<TextAccess>(&place)) {
        std::string value;
        GetValueStr(setting.name, &value);
        return text->set(value);
    }
    uint32_t number = setting.initial.value_or(std::visit(GetNumber(), place));
    GetValueDword(setting.name, &number);
    std::visit(SetNumber{number}, place);
    if (setting.possible && setting.mended == StartStep::none) mend(setting, place, false);
}

void write(const Setting& setting, const SettingPlace& place) {
    if (const auto* text = std::get_if<TextAccess>(&place)) {
        SetValueStr(setting.name, text->get().c_str());
        return;
    }
    const uint32_t number = std::visit(GetNumber(), place);
    SetValueDword(setting.name, &number);
}

bool is_marked(const CommandRow& row) { return row.flag ? *row.flag : row.marked(); }

} // namespace

void read_options(StartStep step) {
    for (const CommandRow& row : command_table()) {
        const SettingPlace place = place_of(row);
        if (row.setting.read == step) read(row.setting, place);
        if (row.setting.mended == step) mend(row.setting, place, true);
    }
}

void write_options() {
    prefs_hold();
    for (const CommandRow& row : command_table()) {
        if (row.setting.name && row.setting.written) write(row.setting, place_of(row));
    }
    prefs_flush();
}

void set_check_marks() {
    for (const CommandRow& row : command_table()) {
        if (row.id && (row.flag != nullptr || row.marked)) check_menu_item(row.id, is_marked(row));
    }
}

void store_setting(const std::string& name, const std::string& text) {
    bool is_text = false;
    for (const CommandRow& row : command_table()) {
        if (!row.setting.name || row.setting.name != name) continue;
        is_text = std::holds_alternative<TextAccess>(row.setting.place);
    }
    uint32_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (!is_text && error == std::errc() && stop == end) {
        platform().settings().set_number(name, number);
    } else {
        platform().settings().set_text(name, text);
    }
}
