#include "host/dialogs/compression_dialog.h"

#include "host/dialogs/ask.h"
#include "platform/platform.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

namespace {

enum CompressionControl : int { COMPRESSION_OK = 1, COMPRESSION_CANCEL, COMPRESSION_LIST };

std::string answer;      ///< given in advance
std::string last_choice; ///< name

FormDescription compression_form(const std::vector<video_codec_kind>& kinds) {
    using enum ControlKind;
    std::vector<std::string> titles;
    titles.reserve(kinds.size());
    for (const video_codec_kind& kind : kinds) titles.emplace_back(kind.title);
    return {"Video Compression",
            {{.kind = label, .text = "&Compressor:"},
             {.kind = list, .id = COMPRESSION_LIST, .items = titles},
             {.kind = buttons,
              .children = {{.kind = default_button, .id = COMPRESSION_OK, .text = "OK"},
                           {.kind = cancel_button, .id = COMPRESSION_CANCEL, .text = "Cancel"}}}}};
}

} // namespace

void answer_video_compression(const std::string& name) { answer = name; }

bool video_compression_is_answered() { return !answer.empty(); }

std::string video_compression_problem(const bitmap_header& header) {
    if (answer.empty()) return {};
    const std::vector<video_codec_kind> kinds = video_codecs();
    const auto kind = std::ranges::find(kinds, answer, &video_codec_kind::name);
    const std::string name = "\"" + answer + "\"";
    if (kind == kinds.end()) return "there is no codec " + name;
    if (kind->can_do(header)) return {};
    return "the codec " + name + " takes no pictures of " + std::to_string(header.bits) + " bits";
}

void ui_choose_video_compression(const bitmap_header& header,
                                 std::function<void(std::optional<video_codec_kind>)> done) {
    std::vector<video_codec_kind> kinds = video_codecs();
    std::erase_if(kinds, [&](const video_codec_kind& kind) { return !kind.can_do(header); });
    const auto index_of = [&](const std::string& name) {
        return size_t(std::ranges::find(kinds, name, &video_codec_kind::name) - kinds.begin());
    };
    const auto chosen = [kinds, done = std::move(done)](size_t index) {
        if (index >= kinds.size()) return done({});
        last_choice = kinds[index].name;
        done(kinds[index]);
    };
    if (!answer.empty()) return chosen(index_of(answer));
    const std::shared_ptr<Form> form =
        platform().forms().create(compression_form(kinds), [](Form&, const FormEvent&) {});
    const size_t last = index_of(last_choice);
    form->set_value(COMPRESSION_LIST, last < kinds.size() ? int(last) : 0);
    run_form(form, [form, chosen](int button) {
        chosen(button == COMPRESSION_OK ? size_t(form->value(COMPRESSION_LIST)) : SIZE_MAX);
    });
}
