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

/// Completes the texts of the fields: those that the choice leaves out keep theirs, and each is cut
/// at its limit.
void fill_fields(const std::vector<FileDialogField>& fields, std::vector<std::string>& texts) {
    for (size_t n = 0; n < fields.size(); ++n) {
        if (n == texts.size()) texts.push_back(fields[n].text);
        texts[n].resize(std::min(texts[n].size(), size_t(fields[n].limit)));
    }
}

} // namespace

void HeadlessAnswers::give(std::function<void()> answer) {
    if (!later) return answer();
    waiting.push_back(std::move(answer));
}

bool HeadlessAnswers::deliver() {
    if (waiting.empty()) return false;
    const auto answer = std::move(waiting.front());
    waiting.pop_front();
    answer();
    return true;
}

void HeadlessDialogs::message(const std::string& title, const std::string& text, MessageIcon icon,
                              std::function<void()> done) {
    messages.push_back({title, text, icon});
    answers_.give(std::move(done));
}

void HeadlessDialogs::choose(const std::string& title, const std::string& text,
                             const std::vector<std::string>& offered,
                             std::function<void(int)> done) {
    questions.push_back({title, text, MessageIcon::none, offered});
    answers_.give(
        [done = std::move(done), answer = next_answer(answers, NO_ANSWER)] { done(answer); });
}

void HeadlessDialogs::choose_file(const FileDialog& dialog,
                                  std::function<void(std::optional<FileChoice>)> done) {
    file_dialogs.push_back(dialog);
    auto choice = next_answer<std::optional<FileChoice>>(choices, {});
    if (choice) fill_fields(dialog.fields, choice->field_texts);
    answers_.give([done = std::move(done), choice = std::move(choice)] { done(choice); });
}

void HeadlessDialogs::about(const std::string& title, const std::vector<std::string>& lines,
                            const std::string& link, const std::string& target,
                            std::function<void()> done) {
    abouts.push_back({title, lines, link, target});
    answers_.give(std::move(done));
}

bool HeadlessDialogs::open_page(const std::string& url) {
    if (has_browser) pages.push_back(url);
    return has_browser;
}

bool HeadlessClipboard::set_text(const std::string& text) {
    if (available) content = text;
    return available;
}
