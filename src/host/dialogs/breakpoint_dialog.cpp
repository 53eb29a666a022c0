#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "monitor/monitor.h"
#include "platform/platform.h"
#include "wall/report.h"
#include "z80/z80.h"

#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr int DIGITS = 4;
constexpr int HEXADECIMAL = 16;
constexpr const char* TITLE = "Set breakpoint";

enum BreakpointControl : int { BREAKPOINT_OK = 1, BREAKPOINT_CANCEL = 2, BREAKPOINT_EDIT = 3 };

const FormDescription& breakpoint_form() {
    using enum ControlKind;
    static const FormDescription form = {
        TITLE,
        {{.kind = label, .text = "Set breakpoint to address:"},
         {.kind = edit, .id = BREAKPOINT_EDIT, .limit = DIGITS},
         {.kind = buttons,
          .children = {{.kind = default_button, .id = BREAKPOINT_OK, .text = "OK"},
                       {.kind = cancel_button, .id = BREAKPOINT_CANCEL, .text = "Cancel"}}}}};
    return form;
}

/// One to four hexadecimal digits and nothing else.
std::optional<uint16_t> address_in(const std::string& text) {
    uint16_t address = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, address, HEXADECIMAL);
    const bool whole = error == std::errc() && stop == end && text.size() <= DIGITS;
    return whole ? std::optional(address) : std::nullopt;
}

void refuse_bad_address(Form& form, const FormEvent& event) {
    if (event.control != BREAKPOINT_OK || address_in(form.text(BREAKPOINT_EDIT))) return;
    report({.text = "An address has one to four hexadecimal digits.",
            .title = TITLE,
            .icon = MessageIcon::error});
}

/// Arms the breakpoint; one that is armed at this address stays so (setting it again would disarm
/// it).
void arm(uint16_t address) {
    if (z80_state.breakpoint_enabled && z80_state.breakpoint == address) return;
    z80_cpu_set_breakpoint(address);
}

/// Runs the form. OK closes it in any case; after a refusal it is opened again as it was.
void ask_for_address(const std::shared_ptr<Form>& form, std::function<void()> done) {
    run_form(form, [form, done = std::move(done)](int button) {
        if (button != BREAKPOINT_OK) return;
        const std::optional<uint16_t> address = address_in(form->text(BREAKPOINT_EDIT));
        if (!address) return ask_for_address(form, done);
        arm(*address);
        done();
    });
}

} // namespace

void ui_machine_set_breakpoint(std::function<void()> done) {
    char shown[8];
    std::snprintf(shown, sizeof shown, "%04X", unsigned{monitor_get_current_pc()});
    const std::shared_ptr<Form> form =
        platform().forms().create(breakpoint_form(), refuse_bad_address);
    form->set_text(BREAKPOINT_EDIT, shown);
    ask_for_address(form, std::move(done));
}
