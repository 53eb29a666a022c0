/// The program in a browser's page. The page calls the shell's turns.

#include "apps/program.h"
#include "files/user_paths.h"
#include "host/dialogs/hold.h"
#include "host/links.h"
#include "host/messages.h"
#include "host/page_query.h"
#include "host/turn.h"
#include "platform/web/web_page.h"
#include "platform/web/web_platform.h"
#include "wall/report.h"

#include <emscripten/emscripten.h>

#include <cstring>
#include <utility>

namespace {

constexpr double ON_EVENT = -1, ENDED = -2;
constexpr uint32_t RESUME_INTERVAL = 5; ///< seconds: browsers end pages without a word
constexpr uint32_t HISTORY_LIMIT = 50;  ///< MB; a page shares its memory with others

/// What was running is there again when the page is, unless the user does not want that.
void go_on_by_default(Settings& settings) {
    constexpr const char* RESUME = "Resume";
    if (!settings.number(RESUME)) settings.set_number(RESUME, 1);
}

} // namespace

extern "C" {

/// Runs a turn. Returns the microseconds until the next one is due, 0 for at once, ON_EVENT for
/// when something happens, and ENDED.
EMSCRIPTEN_KEEPALIVE double tarvelin_turn() {
    const ShellTurn done = shell_turn();
    switch (done.next) {
    case ShellTurn::Next::now: return 0;
    case ShellTurn::Next::in_time: return double(done.microseconds);
    case ShellTurn::Next::on_event: return ON_EVENT;
    case ShellTurn::Next::end: return ENDED;
    }
    return ENDED;
}

/// The user has followed a link to another fragment of the page's address.
EMSCRIPTEN_KEEPALIVE void tarvelin_open_link(const char* fragment) {
    when_free([link = std::string(fragment)] { obey_user([&] { follow_link(link); }); });
}

/// Something in the page does not go as the user expects. Text, reason and remedy are behind each
/// other.
EMSCRIPTEN_KEEPALIVE void tarvelin_tell(const char* text) {
    const char* const reason = text + std::strlen(text) + 1;
    const char* const remedy = reason + std::strlen(reason) + 1;
    obey_user([&] { report({.text = text, .reason = reason, .remedy = remedy}); });
}
}

int main(int argc, char** argv) {
    static WebPlatform host; // the page outlives this function
    CommandLine line = read_command_line(program_arguments(argc, argv));
    if (!line.refusal.empty()) return fail(line.refusal);
    read_page_query(ask_page("links.query").value_or(""), line);
    // In another page's frame nothing is kept.
    if (call_page("links.isEmbedded") != 0) line.settings.emplace_back("Resume", "0");
    line.link = ask_page("links.fragment").value_or("");
    if (!line.settings.empty()) call_page("settings.keepNone");
    go_on_by_default(host.settings());
    ShellOptions options;
    options.touch_screen = call_page("links.touchScreen") != 0;
    options.resume_interval = RESUME_INTERVAL;
    options.history_limit = HISTORY_LIMIT;
    options.page_address = ask_page("links.address").value_or("");
    return start_in_window(host, line, options) ? 0 : 1;
}
