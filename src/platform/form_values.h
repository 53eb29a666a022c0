#pragma once
/// What stands in the controls of a form, for hosts that have no controls, or none that answer at
/// once.

#include "platform/forms.h"

#include <map>
#include <string>
#include <vector>

bool is_text_field(const FormControl& control);
bool has_rows(const FormControl& control); ///< of which one is chosen

class FormValues {
public:
    struct Control {
        FormControl described; ///< with text and items of now, and without children
        int value = 0;
        bool enabled = true;
    };

    explicit FormValues(const std::vector<FormControl>& controls) { add(controls); }

    Control* find(int id); ///< nullptr without one
    const std::map<int, Control>& controls() const { return controls_; }

    // As the functions of Form.
    int value(int id);
    void set_value(int id, int value);
    std::string text(int id);
    void set_text(int id, const std::string& text);
    void set_items(int id, const std::vector<std::string>& items);
    bool is_enabled(int id);
    void set_enabled(int id, bool enabled);

private:
    void add(const std::vector<FormControl>& controls);

    std::map<int, Control> controls_;
};
