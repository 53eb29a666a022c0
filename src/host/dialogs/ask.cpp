#include "host/dialogs/ask.h"

#include "host/dialogs/hold.h"
#include "platform/platform.h"

#include <utility>

void ask(const std::string& title, const std::string& text, const std::vector<std::string>& answers,
         std::function<void(int)> done) {
    platform().dialogs().choose(title, text, answers, held_until(std::move(done)));
}

void ask_for_file(const FileDialog& dialog, std::function<void(std::optional<FileChoice>)> done) {
    platform().dialogs().choose_file(dialog, held_until(std::move(done)));
}

void show_message(const std::string& title, const std::string& text, MessageIcon icon) {
    hold_shell();
    platform().dialogs().message(title, text, icon, release_shell);
}

void show_beside_window(Form& form) {
    Window& window = platform().window();
    const Rectangle owner = window.outer_rectangle();
    const bool fits = owner.right + form.size().width < window.screen_size().width;
    form.move(fits ? owner.right + 1 : owner.left, owner.top);
    form.show();
}

void run_form(const std::shared_ptr<Form>& form, std::function<void(int)> done) {
    const std::function<void(int)> answered = [form, done = std::move(done)](int closing_id) {
        done(closing_id);
    };
    form->run(held_until(answered));
}
