#include "core/machine_events.h"
#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "media/tape_audio.h"
#include "platform/platform.h"

#include <memory>
#include <utility>

namespace {

constexpr int LEVELS = 240;
constexpr int LEVEL_PAGE = 7;

enum TapeHeadControl : int {
    TAPE_HEAD_OK = 1,
    TAPE_HEAD_CANCEL = 2,
    TAPE_HEAD_EDIT = 1034,
    TAPE_HEAD_INVERT = 1035,
    TAPE_HEAD_SLIDER = 1036
};

const FormDescription& tape_head_form() {
    using enum ControlKind;
    static const FormDescription form = {
        "Tape head adjust",
        {{.kind = group,
          .text = "Signal hysteresis comparison level",
          .children = {{.kind = row,
                        .children = {{.kind = slider,
                                      .id = TAPE_HEAD_SLIDER,
                                      .highest = LEVELS,
                                      .page = LEVEL_PAGE},
                                     {.kind = edit, .id = TAPE_HEAD_EDIT}}},
                       {.kind = note,
                        .text = "Adjust here the trigger level of the sampling tape input when "
                                "using WAV samples (+/-)."}}},
         {.kind = check, .id = TAPE_HEAD_INVERT, .text = "Invert  tape sample input"},
         {.kind = buttons,
          .children = {{.kind = default_button, .id = TAPE_HEAD_OK, .text = "OK"},
                       {.kind = cancel_button, .id = TAPE_HEAD_CANCEL, .text = "Cancel"}}}}};
    return form;
}

void show_slider_position(Form& form, const FormEvent& event) {
    if (event.control != TAPE_HEAD_SLIDER) return;
    form.set_number(TAPE_HEAD_EDIT, uint32_t(form.value(TAPE_HEAD_SLIDER)));
}

} // namespace

void ui_tape_adjust_head(int level, std::function<void(int)> done) {
    const std::shared_ptr<Form> form =
        platform().forms().create(tape_head_form(), show_slider_position);
    form->set_value(TAPE_HEAD_SLIDER, level);
    form->set_number(TAPE_HEAD_EDIT, uint32_t(level));
    form->set_value(TAPE_HEAD_INVERT, tape_is_signal_inverted());
    run_form(form, [form, level, done = std::move(done)](int button) {
        if (button != TAPE_HEAD_OK) return done(level);
        machine_apply(event_kind::tape_inversion, form->value(TAPE_HEAD_INVERT));
        done(int(form->number(TAPE_HEAD_EDIT) % LEVELS));
    });
}
