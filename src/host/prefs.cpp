#include "host/prefs.h"

#include "platform/platform.h"

namespace {

constexpr size_t LONGEST_TEXT = 276; ///< bytes that a read takes

bool store_open = false;

} // namespace

int prefs_init() {
    store_open = platform().settings().open();
    return store_open;
}

void prefs_done() {
    if (store_open) platform().settings().close();
    store_open = false;
}

int GetValueDword(const char* name, uint32_t* value) {
    if (!store_open) return 0;
    if (const auto stored = platform().settings().number(name)) {
        *value = *stored;
        return 1;
    }
    SetValueDword(name, value);
    return 0;
}

int SetValueDword(const char* name, const uint32_t* value) {
    return store_open && platform().settings().set_number(name, *value);
}

int GetValueStr(const char* name, std::string* value) {
    const auto stored = platform().settings().text(name);
    if (!stored || stored->size() > LONGEST_TEXT) return 0;
    *value = stored->substr(0, stored->find('\0')); // a zero byte stands for no text
    return 1;
}

int SetValueStr(const char* name, const char* text) {
    if (!store_open) return 0;
    if (text && platform().settings().set_text(name, text)) return 1;
    platform().settings().set_text(name, std::string(1, '\0'));
    return 0;
}
