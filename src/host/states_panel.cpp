#include "host/states_panel.h"

#include "host/dialogs/ask.h"
#include "host/dialogs/dialogs.h"
#include "host/states.h"
#include "platform/platform.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace {

constexpr int COLUMNS = 5;

enum StatesControl : int {
    STATES_LOAD = 1,
    STATES_CLOSE = 2,
    STATES_SAVE,
    STATES_DELETE,
    STATES_UNDO_SLOT,
    STATES_UNDO_LOAD,
    STATES_SAVE_AS,
    STATES_OPEN,
    STATES_HINT,
    STATES_SLOT = 100 ///< + slot
};

FormControl slot_control(int slot) {
    return {.kind = ControlKind::picture, .id = STATES_SLOT + slot, .picture_area = {160, 120}};
}

FormDescription states_form() {
    using enum ControlKind;
    FormControl slots = {.kind = grid};
    for (int slot = 0; slot < STATE_SLOTS; ++slot) {
        if (slot % COLUMNS == 0) slots.children.push_back({.kind = row});
        slots.children.back().children.push_back(slot_control(slot));
    }
    return {"States",
            {slots,
             {.kind = label, .id = STATES_HINT},
             {.kind = buttons,
              .children = {{.kind = default_button, .id = STATES_LOAD, .text = "&Load"},
                           {.kind = button, .id = STATES_SAVE, .text = "&Save"},
                           {.kind = button, .id = STATES_DELETE, .text = "&Delete"},
                           {.kind = button, .id = STATES_UNDO_SLOT, .text = "&Undo save"},
                           {.kind = button, .id = STATES_UNDO_LOAD, .text = "U&ndo load"},
                           {.kind = button, .id = STATES_SAVE_AS, .text = "Save &as..."},
                           {.kind = button, .id = STATES_OPEN, .text = "&Open..."},
                           {.kind = cancel_button, .id = STATES_CLOSE, .text = "&Close"}}}}};
}

FormPicture picture_of(const SlotContent& content) {
    const auto& [width, height, rgb] = content.description.picture;
    FormPicture shown = {int(width), int(height)};
    shown.pixels.reserve(rgb.size() / 3);
    for (size_t n = 0; n + 2 < rgb.size(); n += 3) {
        shown.pixels.push_back(Colour(rgb[n]) << 16 | Colour(rgb[n + 1]) << 8 | rgb[n + 2]);
    }
    return shown;
}

std::string caption_of(int slot, const SlotContent& content) {
    const std::string number = std::to_string(slot);
    switch (content.kind) {
    case SlotContent::Kind::empty: return number + "\nempty";
    case SlotContent::Kind::unreadable: return number + "\ncannot be read";
    case SlotContent::Kind::full: break;
    }
    return number + "  " + content.description.running + "\n" + state_time(content.description);
}

/// What the panel knows of the slots while it is open.
struct Panel {
    std::array<SlotContent, STATE_SLOTS> slots;
    /// What is done to the machine once the panel is closed.
    std::function<void()> behind;
};

/// Buttons and hint for the slot that is chosen.
void show_chosen(Form& form, const Panel& panel) {
    using enum SlotContent::Kind;
    const SlotContent& chosen = panel.slots[size_t(current_slot())];
    form.set_enabled(STATES_LOAD, chosen.kind == full);
    form.set_enabled(STATES_DELETE, chosen.kind != empty);
    const bool undoable = slot_can_be_undone(current_slot());
    form.set_enabled(STATES_UNDO_SLOT, undoable);
    form.set_text(STATES_UNDO_SLOT,
                  undoable && chosen.kind == empty ? "&Undo delete" : "&Undo save");
    form.set_enabled(STATES_UNDO_LOAD, load_can_be_undone());
    form.set_text(STATES_HINT, "Slot " + std::to_string(current_slot()) + ": " + slot_text(chosen));
}

void show_slot(Form& form, Panel& panel, int slot) {
    SlotContent& content = panel.slots[size_t(slot)];
    content = slot_content(slot);
    form.set_picture(STATES_SLOT + slot, picture_of(content));
    form.set_text(STATES_SLOT + slot, caption_of(slot, content));
}

void show_changed(Form& form, Panel& panel) {
    show_slot(form, panel, current_slot());
    show_chosen(form, panel);
}

void close_and(Form& form, Panel& panel, std::function<void()> behind) {
    panel.behind = std::move(behind);
    form.close();
}

void ask_to_delete(Form& form, Panel& panel) {
    const int slot = current_slot();
    ask("States", "Delete the state in slot " + std::to_string(slot) + "?",
        {"&Keep it", "&Delete it"}, [&form, &panel, slot](int answer) {
            constexpr int DELETE = 1; // Enter keeps it
            if (answer != DELETE) return;
            delete_slot(slot);
            show_changed(form, panel);
        });
}

void user_acts(Form& form, Panel& panel, const FormEvent& event) {
    switch (event.control) {
    case STATES_LOAD: panel.behind = [] { load_slot(current_slot()); }; return;
    case STATES_SAVE: save_slot(current_slot()); return show_changed(form, panel);
    case STATES_DELETE: return ask_to_delete(form, panel);
    case STATES_UNDO_SLOT: undo_slot(current_slot()); return show_changed(form, panel);
    case STATES_UNDO_LOAD: return close_and(form, panel, undo_load);
    case STATES_SAVE_AS:
        return ui_select_file(DIALOG_SAVE_STATE, [](const std::optional<std::string>& path) {
            if (path) save_state_as(*path);
        });
    case STATES_OPEN:
        return ui_select_file(DIALOG_LOAD_STATE,
                              [&form, &panel](const std::optional<std::string>& path) {
                                  if (path) close_and(form, panel, [path] { load_state(*path); });
                              });
    default: break;
    }
    if (event.control < STATES_SLOT) return;
    choose_slot(event.control - STATES_SLOT);
    show_chosen(form, panel);
}

} // namespace

void ui_states() {
    const auto panel = std::make_shared<Panel>();
    const std::shared_ptr<Form> form =
        platform().forms().create(states_form(), [panel](Form& shown, const FormEvent& event) {
            user_acts(shown, *panel, event);
        });
    for (int slot = 0; slot < STATE_SLOTS; ++slot) show_slot(*form, *panel, slot);
    form->set_value(STATES_SLOT + current_slot(), 1);
    show_chosen(*form, *panel);
    run_form(form, [panel](int) {
        if (panel->behind) panel->behind();
    });
}
