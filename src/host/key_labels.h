#pragma once
/// What the keys of the host that press a key of the machine are called, in letters that can be
/// engraved.

#include <string>

/// Those of the position row x 8 + column, as short as possible: two with a blank between them
/// where the key's two characters are on two keys of the host. Empty when no key presses it.
std::string host_key_label(unsigned position, bool symbolic);
