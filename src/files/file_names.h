#pragma once
/// Parts of file names.

#include <cstddef>
#include <string>

/// Where the extension's point stands, or npos; a point in a folder's name does not count.
size_t extension_point(const std::string& path);
std::string lower_case(std::string text);
/// The file of this name in the folder, else one whose name differs in the case of its letters only
/// (of several, the first by name); empty without any.
std::string find_in_any_case(const std::string& folder, const std::string& name);
/// The extension in small letters, without its point; empty where there is none.
std::string lower_case_extension(const std::string& path);
/// The path as it is, or with "." and the extension where the file's name has no point.
std::string with_extension(const std::string& path, const std::string& extension);
