#include "host/save_question.h"

#include "host/commands.h"
#include "media/files/cassette_files.h"

#include <utility>

namespace {

save_answer answer = SAVE_NOT_YET;

} // namespace

save_answer take_save_answer() { return std::exchange(answer, SAVE_NOT_YET); }

bool ask_save_question() {
    std::string path;
    const bool chosen = get_ui_save_tape_filename(&path) != 0;
    answer_save_question(chosen ? &path : nullptr);
    return true;
}

void answer_save_question(const std::string* path) {
    if (!path || path->empty()) {
        answer = SAVE_REFUSED;
    } else {
        answer = tape_create_file(*path) ? SAVE_READY : SAVE_FAILED;
    }
}
