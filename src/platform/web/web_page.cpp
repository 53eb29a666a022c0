#include "platform/web/web_page.h"

#include <cstdlib>

// In web_page.js, which is linked into the program.
extern "C" {
double tarvelin_call(const char* function, const char* arguments);
/// Allocated with malloc; null for nothing.
char* tarvelin_ask(const char* function, const char* arguments);
double tarvelin_give(const char* function, const char* arguments, const uint8_t* bytes,
                     size_t count);
}

namespace {

constexpr char DIGITS[] = "0123456789abcdef";

} // namespace

Json::Json(std::string_view utf8) : text("\"") {
    for (const char letter : utf8) {
        if (letter == '"' || letter == '\\') {
            text += '\\';
            text += letter;
        } else if (uint8_t(letter) < 0x20) {
            text += "\\u00";
            text += DIGITS[letter >> 4];
            text += DIGITS[letter & 15];
        } else {
            text += letter;
        }
    }
    text += '"';
}

Json Json::object(std::initializer_list<std::pair<const char*, Json>> members) {
    Json whole(0);
    whole.text = '{';
    for (const auto& [name, value] : members) {
        if (whole.text.size() > 1) whole.text += ',';
        whole.text += Json(name).text + ':' + value.text;
    }
    whole.text += '}';
    return whole;
}

void Json::append(const Json& value) {
    if (text.size() > 1) text += ',';
    text += value.text;
}

double call_page_with(const char* function, const Json& arguments) {
    return tarvelin_call(function, arguments.text.c_str());
}

std::optional<std::string> ask_page_with(const char* function, const Json& arguments) {
    char* const answer = tarvelin_ask(function, arguments.text.c_str());
    if (!answer) return {};
    std::string text = answer;
    std::free(answer);
    return text;
}

double give_page_with(const char* function, const Json& arguments, std::span<const uint8_t> bytes) {
    return tarvelin_give(function, arguments.text.c_str(), bytes.data(), bytes.size());
}
