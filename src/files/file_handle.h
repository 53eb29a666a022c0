#pragma once
/// A file of the standard library that closes itself.

#include <cstdio>
#include <memory>
#include <string>

#include <unistd.h>

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

/// Opens `path` with a mode of fopen; empty when that fails. To learn whether buffered data
/// reached the file, call fflush before the handle goes.
inline FileHandle open_file(const char* path, const char* mode) {
    return FileHandle(std::fopen(path, mode));
}
inline FileHandle open_file(const std::string& path, const char* mode) {
    return open_file(path.c_str(), mode);
}
/// Takes over an open descriptor, or none (-1): empty then, and when it fails.
inline FileHandle stream_of(int descriptor, const char* mode) {
    FileHandle file(descriptor < 0 ? nullptr : fdopen(descriptor, mode));
    if (!file && descriptor >= 0) close(descriptor);
    return file;
}
