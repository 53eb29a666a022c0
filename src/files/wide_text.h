#pragma once
/// Between the UTF-8 of this program and the UTF-16 of Windows. What is not valid becomes U+FFFD.

#include <string>
#include <string_view>

std::wstring wide(std::string_view text);
std::string narrow(std::wstring_view text);
