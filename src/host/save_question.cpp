#include "host/save_question.h"

#include "host/commands.h"
#include "media/files/cassette_files.h"

#include <utility>

namespace {

save_answer answer = SAVE_NOT_YET;
bool asking = false;   ///< the dialog is open
std::string next_file; ///< for the next save; else empty

} // namespace

save_answer take_save_answer() { return std::exchange(answer, SAVE_NOT_YET); }

void forget_save_answer() { answer = SAVE_NOT_YET; }

void save_next_to(const std::string& path) { next_file = path; }

const std::string& next_save_file() { return next_file; }

bool ask_save_question() {
    if (!asking && !next_file.empty()) {
        answer_save_question(std::exchange(next_file, {}));
        return true;
    }
    if (!std::exchange(asking, true)) get_ui_save_tape_filename(answer_save_question);
    return answer != SAVE_NOT_YET;
}

void answer_save_question(const std::optional<std::string>& path) {
    asking = false;
    if (!path || path->empty()) {
        answer = SAVE_REFUSED;
    } else {
        answer = tape_create_file(*path) ? SAVE_READY : SAVE_FAILED;
    }
}
