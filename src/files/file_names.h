#pragma once
/// Parts of file names.

#include <cstddef>
#include <string>

/// Where the extension's point stands, or npos; a point in a folder's name does not count.
size_t extension_point(const std::string& path);
/// The extension in small letters, without its point; empty where there is none.
std::string lower_case_extension(const std::string& path);
/// The path as it is, or with "." and the extension where the file's name has no point.
std::string with_extension(const std::string& path, const std::string& extension);
