#include "wall/report.h"

#include <cctype>
#include <cerrno>
#include <cstring>

namespace {

std::string without_end(std::string text, const char* characters) {
    text.erase(text.find_last_not_of(characters) + 1);
    return text;
}

std::string as_sentence(std::string text) {
    text[0] = char(std::toupper(uint8_t(text[0])));
    return text.ends_with('.') ? text : text + ".";
}

/// "FILE: REASON", or what there is of it.
std::string file_and_reason(const Report& told) {
    const bool known = told.file.empty() || told.text.find(told.file) != std::string::npos;
    if (known) return told.reason;
    return told.reason.empty() ? told.file : told.file + ": " + told.reason;
}

} // namespace

std::string report_line(const Report& told) {
    std::string line = without_end(told.text, "\n");
    const std::string why = file_and_reason(told);
    if (!why.empty()) line = without_end(line, ".:") + ": " + why;
    if (!told.remedy.empty()) line = without_end(line, ".") + ". " + told.remedy;
    return line;
}

std::string report_details(const Report& told) {
    std::string why = file_and_reason(told);
    if (!why.empty() && why == told.reason) why = as_sentence(why);
    return why.empty() || told.remedy.empty() ? why + told.remedy : why + "\n" + told.remedy;
}

Report unwritable(const std::string& file) {
    return {.text = file + ": cannot be written",
            .file = file,
            .reason = errno ? std::strerror(errno) : ""};
}
