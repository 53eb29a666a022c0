#include "host/settings/prefs.h"

#include "platform/platform.h"
#include "wall/report.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr size_t LONGEST_TEXT = 276; ///< longest text that is read, in bytes

bool store_open = false;
bool told = false; ///< it has been reported that something cannot be kept

void tell_trouble(const char* text) {
    report({.text = text,
            .file = platform().paths().config_directory(),
            .reason = errno ? std::strerror(errno) : ""});
}

/// The result of a change. Only the first failure is reported.
int kept(bool stored) {
    if (!stored && !std::exchange(told, true)) tell_trouble("The settings cannot be kept");
    return stored;
}

} // namespace

int prefs_init() {
    told = false;
    errno = 0;
    store_open = platform().settings().open();
    if (!store_open) tell_trouble("The settings cannot be read or kept; the defaults are used");
    return store_open;
}

void prefs_done() {
    if (store_open) platform().settings().close();
    store_open = false;
}

void prefs_hold() { platform().settings().hold(); }

int prefs_flush() { return kept(platform().settings().flush()); }

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
    errno = 0;
    return store_open && kept(platform().settings().set_number(name, *value));
}

int GetValueStr(const char* name, std::string* value) {
    const auto stored = platform().settings().text(name);
    if (!stored) return 0;
    if (stored->size() > LONGEST_TEXT) {
        report({.text = std::string(name) + ": a path of more than " +
                        std::to_string(LONGEST_TEXT) + " bytes is not taken from the settings",
                .file = *stored});
        return 0;
    }
    *value = stored->substr(0, stored->find('\0')); // a zero byte stands for no text
    return 1;
}

int SetValueStr(const char* name, const char* text) {
    if (!store_open) return 0;
    errno = 0;
    if (text && kept(platform().settings().set_text(name, text))) return 1;
    platform().settings().set_text(name, std::string(1, '\0'));
    return 0;
}
