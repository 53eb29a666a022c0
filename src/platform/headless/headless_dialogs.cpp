#include "platform/headless/headless_dialogs.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

/// Takes the next answer, or gives `otherwise` when none is left.
template <typename Answer>
Answer next_answer(std::deque<Answer>& answers, Answer otherwise) {
    if (answers.empty()) return otherwise;
    Answer answer = std::move(answers.front());
    answers.pop_front();
    return answer;
}

/// The fields that the user has left alone, and those as long as they can be.
void fill_fields(const std::vector<FileDialogField>& fields, std::vector<std::string>& texts) {
    for (size_t n = 0; n < fields.size(); ++n) {
        if (n == texts.size()) texts.push_back(fields[n].text);
        texts[n].resize(std::min(texts[n].size(), size_t(fields[n].limit)));
    }
}

} // namespace

void HeadlessDialogs::message(const std::string& title, const std::string& text, MessageIcon icon) {
    messages.push_back({title, text, icon});
}

int HeadlessDialogs::choose(const std::string& title, const std::string& text,
                            const std::vector<std::string>& offered) {
    questions.push_back({title, text, MessageIcon::none, offered});
    return next_answer(answers, NO_ANSWER);
}

std::optional<FileChoice> HeadlessDialogs::choose_file(const FileDialog& dialog) {
    file_dialogs.push_back(dialog);
    auto choice = next_answer<std::optional<FileChoice>>(choices, {});
    if (choice) fill_fields(dialog.fields, choice->field_texts);
    return choice;
}

void HeadlessDialogs::about(const std::string& title, const std::vector<std::string>& lines,
                            const std::string& link, const std::string& target) {
    abouts.push_back({title, lines, link, target});
}

bool HeadlessClipboard::set_text(const std::string& text) {
    if (available) content = text;
    return available;
}
