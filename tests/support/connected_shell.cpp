#include "host/machine_callbacks.h"

namespace {
/// Before main, for tests that use parts of the shell without starting it.
const bool connected = (connect_machine(), true);
} // namespace
