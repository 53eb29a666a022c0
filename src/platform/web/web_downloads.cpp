#include "platform/web/web_downloads.h"

#include "platform/web/web_context.h"
#include "platform/web/web_page.h"

#include <emscripten/emscripten.h>

#include <string_view>

bool WebDownloads::offer(const std::string& name, std::span<const uint8_t> bytes) {
    return give_page("files.offer", bytes, name) != 0;
}

void WebDownloads::saved(const std::string& path) { call_page("files.download", path); }

/// Files were dropped onto the page, which has put them into its file system: their paths, each
/// with a line end behind it.
extern "C" EMSCRIPTEN_KEEPALIVE void tarvelin_drop(const char* paths) {
    Event event{.kind = Event::Kind::drop};
    std::string_view rest = paths;
    for (size_t end = 0; (end = rest.find('\n')) != rest.npos; rest.remove_prefix(end + 1)) {
        std::string path(rest.substr(0, end));
        if (event.text.empty()) {
            event.text = std::move(path);
        } else {
            event.more.push_back(std::move(path));
        }
    }
    if (!event.text.empty()) web_context().post(std::move(event));
}
