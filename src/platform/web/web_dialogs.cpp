#include "platform/web/web_dialogs.h"

#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string_view>

namespace {

struct FileBox {
    std::function<std::vector<std::string>(const std::string&)> preview;
    std::function<void(std::optional<FileChoice>)> done;
};

struct {
    int last = 0;
    std::map<int, std::function<void(int)>> open; ///< what is done with the answer
    std::map<int, FileBox> of_files;
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

void WebDialogs::choose_file(const FileDialog& dialog,
                             std::function<void(std::optional<FileChoice>)> done) {
    boxes.of_files[++boxes.last] = {dialog.preview, std::move(done)};
    const auto filter = [](const FileFilter& one) {
        return Json::object(
            {{"text", one.text}, {"pattern", one.pattern}, {"extension", one.extension}});
    };
    const auto field = [](const FileDialogField& one) {
        return Json::object({{"label", one.label}, {"limit", one.limit}, {"text", one.text}});
    };
    call_page("dialogs.chooseFile", boxes.last,
              Json::object({{"title", dialog.title},
                            {"filters", Json::array(dialog.filters, filter)},
                            {"filter", dialog.filter_index},
                            {"save", dialog.save},
                            {"fields", Json::array(dialog.fields, field)},
                            {"preview", dialog.preview != nullptr}}));
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

extern "C" {

/// The user has answered: the place of the button, or NO_ANSWER.
EMSCRIPTEN_KEEPALIVE void tarvelin_answer(int box, int answer) {
    const auto found = boxes.open.extract(box);
    if (found) found.mapped()(answer);
}

/// The user has chosen a file: its path and the texts of the fields, a line for each. An empty path
/// means none.
EMSCRIPTEN_KEEPALIVE void tarvelin_file_answer(int box, const char* lines, int filter) {
    const auto found = boxes.of_files.extract(box);
    if (!found) return;
    FileChoice choice{.path = {}, .filter_index = filter};
    std::string_view rest = lines;
    const auto next = [&rest] {
        const std::string line(rest.substr(0, rest.find('\n')));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        return line;
    };
    choice.path = next();
    const size_t fields = size_t(std::count(lines, lines + std::strlen(lines), '\n'));
    while (choice.field_texts.size() < fields) choice.field_texts.push_back(next());
    if (choice.path.empty()) return found.mapped().done({});
    found.mapped().done(std::move(choice));
}

/// Lines about a file; gone at the next call.
EMSCRIPTEN_KEEPALIVE const char* tarvelin_file_preview(int box, const char* path) {
    static std::string text;
    text.clear();
    const auto found = boxes.of_files.find(box);
    if (found == boxes.of_files.end() || !found->second.preview) return "";
    for (const std::string& line : found->second.preview(path)) text += line + '\n';
    return text.c_str();
}
}
