#include "platform/web/web_dialogs.h"

#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

#include <map>

namespace {

struct {
    int last = 0;
    std::map<int, std::function<void(int)>> open; ///< what is done with the answer
} boxes;

int new_box(std::function<void(int)> done) {
    boxes.open[++boxes.last] = std::move(done);
    return boxes.last;
}

} // namespace

void WebDialogs::message(const std::string& title, const std::string& text, MessageIcon icon,
                         std::function<void()> done) {
    call_page("dialogs.message", new_box([done](int /*answer*/) { done(); }), title, text,
              int(icon));
}

void WebDialogs::choose(const std::string& title, const std::string& text,
                        const std::vector<std::string>& answers, std::function<void(int)> done) {
    call_page("dialogs.choose", new_box(std::move(done)), title, text, answers);
}

void WebDialogs::choose_file(const FileDialog& /*dialog*/,
                             std::function<void(std::optional<FileChoice>)> done) {
    done({});
}

void WebDialogs::about(const std::string& title, const std::vector<std::string>& lines,
                       const std::string& link, const std::string& target,
                       std::function<void()> done) {
    call_page("dialogs.about", new_box([done](int /*answer*/) { done(); }), title, lines, link,
              target);
}

bool WebDialogs::open_page(const std::string& url) {
    return call_page("dialogs.openPage", url) != 0;
}

/// The user has answered: the place of the button, or NO_ANSWER.
extern "C" EMSCRIPTEN_KEEPALIVE void tarvelin_answer(int box, int answer) {
    const auto found = boxes.open.extract(box);
    if (found) found.mapped()(answer);
}
