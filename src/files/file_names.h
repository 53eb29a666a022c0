#pragma once
/// Paths and the parts of file names. Paths are UTF-8, with the separators that the user or the
/// system gave: "/", on Windows "\" as well.

#include <cstddef>
#include <filesystem>
#include <string>

/// For the standard library's file functions, and back; what is no UTF-8 or no UTF-16 is replaced
/// where the system's names are UTF-16, and never fails. Other sources leave paths as text.
std::filesystem::path system_path(const std::string& path);
std::string path_text(const std::filesystem::path& path);

/// What separates folders here.
extern const char* const path_separators;
/// Whether the path holds whatever the current folder is.
bool is_absolute_path(const std::string& path);
/// Behind the last separator; empty for a path that ends with one.
std::string file_name_of(const std::string& path);
/// The same without its extension.
std::string file_stem_of(const std::string& path);
/// Before the last separator; empty without one.
std::string folder_of(const std::string& path);
/// The path of `name`, which may be a path itself, in the folder.
std::string path_in(const std::string& folder, const std::string& name);

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
