#include "cgenie/palette.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <utility>

namespace {

constexpr uint32_t HIGHEST = HIGHEST_DISPLAY_PARAMETER;
constexpr int PAGE = 7;
constexpr int DIGITS = 3;

enum VideoControl : int { VIDEO_OK = 1, VIDEO_CANCEL = 2, VIDEO_DEFAULT = 147 };

struct VideoParameter {
    const char* label;
    int slider, edit;
    uint32_t display_parameters::*value;
};

constexpr std::array<VideoParameter, 5> video_parameters = {{
    {"Saturation", 1031, 1032, &display_parameters::saturation},
    {"Brightness", 40113, 40114, &display_parameters::brightness},
    {"Gamma", 40108, 40107, &display_parameters::gamma},
    {"Contrast", 40118, 40119, &display_parameters::contrast},
    {"Interlaced line", 40111, 40112, &display_parameters::interlaced_line},
}};

std::unique_ptr<Form> mWnd;             ///< made once, then hidden and shown
display_parameters display_params_copy; ///< as they were when it was opened
std::function<void()> palette_changed;  ///< given by the last call of ui_display_setup

FormDescription video_form() {
    using enum ControlKind;
    FormControl sliders = {.kind = grid};
    for (const auto& [text, slider_id, edit_id, value] : video_parameters) {
        sliders.children.push_back(
            {.kind = row,
             .children = {{.kind = label, .text = text},
                          {.kind = slider, .id = slider_id, .highest = int(HIGHEST), .page = PAGE},
                          {.kind = edit, .id = edit_id, .limit = DIGITS}}});
    }
    return {"Video setup",
            {sliders,
             {.kind = buttons,
              .children = {{.kind = button, .id = VIDEO_DEFAULT, .text = "&Default"},
                           {.kind = default_button, .id = VIDEO_OK, .text = "&OK"},
                           {.kind = cancel_button, .id = VIDEO_CANCEL, .text = "&Cancel"}}}}};
}

void show_parameters(Form& form) {
    for (const VideoParameter& parameter : video_parameters) {
        const uint32_t value = display_params.*parameter.value;
        form.set_value(parameter.slider, int(std::min(value, HIGHEST)));
        form.set_number(parameter.edit, value);
    }
}

void slider_moved(Form& form, const VideoParameter& parameter) {
    const auto position = uint32_t(form.value(parameter.slider));
    display_params.*parameter.value = position;
    form.set_number(parameter.edit, position);
}

void edit_changed(Form& form, const VideoParameter& parameter) {
    const uint32_t typed = form.number(parameter.edit);
    const uint32_t value = std::min(typed, HIGHEST);
    if (value != typed) form.set_number(parameter.edit, value);
    display_params.*parameter.value = value;
    form.set_value(parameter.slider, int(value));
}

void user_acts(Form& form, const FormEvent& event) {
    switch (event.control) {
    case FORM_CLOSED: return; // what has been set stays
    case VIDEO_OK: display_params_copy = display_params; break;
    case VIDEO_CANCEL: display_params = display_params_copy; break;
    case VIDEO_DEFAULT:
        palette_get_default_config(&display_params);
        show_parameters(form);
        break;
    default:
        for (const VideoParameter& parameter : video_parameters) {
            if (event.control == parameter.slider) slider_moved(form, parameter);
            if (event.control == parameter.edit) edit_changed(form, parameter);
        }
    }
    palette_update();
    palette_changed();
}

} // namespace

void ui_display_setup(std::function<void()> changed) {
    palette_changed = std::move(changed);
    if (!mWnd) mWnd = platform().forms().create(video_form(), user_acts);
    if (!mWnd->is_open()) display_params_copy = display_params;
    show_parameters(*mWnd);
    show_beside_window(*mWnd);
}

void ui_free_forms() { mWnd.reset(); }
