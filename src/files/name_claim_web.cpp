#include "files/name_claim.h"

#include <set>

/// 1 when this page is the one that has the store of files. The page's script has found that out by
/// a lock of the browser's before the program starts: only scripts can wait for it.
extern "C" int tarvelin_store_is_ours();

namespace {

/// Of this page. The place of a name is the handle.
std::set<std::string, std::less<>>& names() {
    static std::set<std::string, std::less<>> held;
    return held;
}

} // namespace

NameClaim::NameClaim(std::string_view name) {
    if (!tarvelin_store_is_ours()) {
        result_ = Result::taken;
        return;
    }
    const auto [place, is_new] = names().emplace(name);
    result_ = is_new ? Result::held : Result::taken;
    if (is_new) handle_ = intptr_t(&*place);
}

NameClaim::~NameClaim() {
    if (handle_ >= 0) names().erase(names().find(*reinterpret_cast<const std::string*>(handle_)));
}
