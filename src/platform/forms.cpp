#include "platform/forms.h"

#include <charconv>

uint32_t Form::number(int id) {
    const std::string content = text(id);
    const size_t start = content.find_first_not_of(' ');
    if (start == std::string::npos) return 0;
    uint32_t number = 0;
    std::from_chars(content.data() + start, content.data() + content.size(), number);
    return number;
}

void Form::set_number(int id, uint32_t number) { set_text(id, std::to_string(number)); }
