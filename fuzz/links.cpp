/// What stands behind the "#" of a page's address.

#include "host/links.h"

#include "support/input.h"

#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const Link link = read_link({reinterpret_cast<const char*>(data), size});
    require(link.problem.empty() || (link.name.empty() && link.bytes.empty()), "either or");
    require(link.problem.find('\n') == std::string::npos, "a problem is one line");
    if (!link.name.ends_with(".tvr")) return 0;
    const Link again = read_link(link_for_replay(link.bytes));
    require(again.bytes == link.bytes, "what was read is written");
    return 0;
}
