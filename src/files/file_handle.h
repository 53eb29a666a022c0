#pragma once
/// A file of the standard library that closes itself.

#include <cstdio>
#include <memory>
#include <string>

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

/// Opens `path` with a mode of fopen, also "x" (it must not be there yet); empty when that fails,
/// with the reason in errno. No program that is started gets the file, and no line end is
/// translated. To learn whether buffered data reached the file, call fflush before the handle goes.
FileHandle open_file(const std::string& path, const char* mode);
