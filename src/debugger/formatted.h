#pragma once

#include <string>

/// Text by the rules of printf, up to 255 characters.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);
