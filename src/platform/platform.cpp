#include "platform/platform.h"

#include <cassert>

namespace {
Platform* installed = nullptr;
}

Platform& platform() {
    assert(installed && "install_platform comes first");
    return *installed;
}

void install_platform(Platform& implementation) { installed = &implementation; }
