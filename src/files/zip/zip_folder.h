#pragma once
/// Zip files, read as if they were folders: "games.zip/disks/work.dsk" is the path of a file in
/// games.zip. Nothing is written, neither to the zip file nor anywhere else.
///
/// The zip file is never trusted. One with more than MOST_ZIP_FILES files is refused. Files in it
/// whose name has a zero byte, more than LONGEST_ZIP_NAME bytes, a part ".." or begins with "/" are
/// left out. A zip file in a zip file is not opened.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

constexpr size_t MOST_ZIP_FILES = 5000;
constexpr size_t LONGEST_ZIP_NAME = 1000; ///< bytes
constexpr size_t LARGEST_ZIP = size_t(1) << 30;

struct ZipListing {
    std::string problem;            ///< why it cannot be read, in one line; else empty
    std::vector<std::string> files; ///< names in the bytes that they have there; no folders
};

/// Whether the path has the extension of a zip file.
bool is_zip_name(const std::string& path);
/// The files of a zip file, by name.
ZipListing zip_files(const std::string& archive);

/// The parts of a path of a file in a zip file.
struct ZipPath {
    std::string archive;
    std::string name;
};
/// Nothing for any other path.
std::optional<ZipPath> zip_path(const std::string& path);
/// The bytes of a file in a zip file. Nothing when the path is not that of one, when it is larger
/// than `limit`, encrypted or damaged.
std::optional<std::vector<uint8_t>> read_in_zip(const std::string& path, size_t limit);
/// Why the file in a zip file cannot be read, in one line without its path; empty when it can.
std::string zip_file_problem(const ZipPath& path, size_t limit);
