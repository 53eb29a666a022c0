#include "files/zip/zip_folder.h"

#include "files/file_handle.h"
#include "files/file_names.h"
#include "files/system_file.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include <unzip.h>

namespace {

constexpr const char* DAMAGED = "is damaged";
constexpr const char* END = ".zip";
constexpr uint32_t ENCRYPTED = 1; ///< flag of a file

struct ZipCloser {
    void operator()(void* zip) const { unzClose(zip); }
};
using ZipHandle = std::unique_ptr<void, ZipCloser>;

// How minizip reads: it knows names of the standard library only, which Windows has in another
// code.

void* ZCALLBACK open_archive(void* /*opaque*/, const void* name, int /*mode*/) {
    return open_file(static_cast<const char*>(name), "rb").release();
}
uLong ZCALLBACK read_archive(void* /*opaque*/, void* file, void* to, uLong size) {
    return uLong(std::fread(to, 1, size, static_cast<std::FILE*>(file)));
}
uLong ZCALLBACK write_archive(void* /*opaque*/, void* /*file*/, const void* /*from*/,
                              uLong /*size*/) {
    return 0;
}
ZPOS64_T ZCALLBACK place_in_archive(void* /*opaque*/, void* file) {
    return ZPOS64_T(std::ftell(static_cast<std::FILE*>(file)));
}
long ZCALLBACK seek_in_archive(void* /*opaque*/, void* file, ZPOS64_T offset, int origin) {
    static constexpr int ORIGINS[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    return std::fseek(static_cast<std::FILE*>(file), long(offset), ORIGINS[origin]);
}
int ZCALLBACK close_archive(void* /*opaque*/, void* file) {
    return std::fclose(static_cast<std::FILE*>(file));
}
int ZCALLBACK archive_error(void* /*opaque*/, void* file) {
    return std::ferror(static_cast<std::FILE*>(file));
}

ZipHandle open_handle(const std::string& archive) {
    zlib_filefunc64_def files = {open_archive,    read_archive,  write_archive, place_in_archive,
                                 seek_in_archive, close_archive, archive_error, nullptr};
    return ZipHandle(unzOpen2_64(archive.c_str(), &files));
}

struct OpenZip {
    ZipHandle handle;
    std::string problem;
    size_t files = 0;
};

OpenZip open_zip(const std::string& archive) {
    if (!is_plain_file(archive)) return {{}, "no such file"};
    if (size_of_file(archive) > LARGEST_ZIP) return {{}, "is too large"};
    ZipHandle handle = open_handle(archive);
    unz_global_info64 about = {};
    if (!handle || unzGetGlobalInfo64(handle.get(), &about) != UNZ_OK) {
        return {{}, "is damaged, or no zip file"};
    }
    if (about.number_entry > MOST_ZIP_FILES) return {{}, "has too many files"};
    return {std::move(handle), {}, size_t(about.number_entry)};
}

bool is_harmless(std::string_view name) {
    if (name.empty() || name.front() == '/' || name.find('\0') != name.npos) return false;
    for (size_t begin = 0; begin <= name.size();) {
        const size_t end = std::min(name.find_first_of("/\\", begin), name.size());
        if (name.substr(begin, end - begin) == "..") return false;
        begin = end + 1;
    }
    return true;
}

/// The name of the file that the zip stands at; empty for a folder, and for a file that is left
/// out.
std::string name_here(void* zip, unz_file_info64& about) {
    std::string name(LONGEST_ZIP_NAME, '\0');
    if (unzGetCurrentFileInfo64(zip, &about, name.data(), uLong(name.size()), nullptr, 0, nullptr,
                                0) != UNZ_OK) {
        return {};
    }
    if (about.size_filename > name.size()) return {};
    name.resize(about.size_filename);
    return is_harmless(name) && name.back() != '/' ? name : std::string();
}

/// The bytes of a file, or nothing and `problem`.
std::optional<std::vector<uint8_t>> read_here(void* zip, const unz_file_info64& about, size_t limit,
                                              std::string& problem) {
    if (about.flag & ENCRYPTED) return problem = "is encrypted", std::nullopt;
    if (about.uncompressed_size > limit) return problem = "is too large", std::nullopt;
    problem = DAMAGED;
    if (unzOpenCurrentFile(zip) != UNZ_OK) return {};
    std::vector<uint8_t> bytes;
    uint8_t block[16384];
    int count = 0;
    while (bytes.size() <= limit && (count = unzReadCurrentFile(zip, block, sizeof block)) > 0) {
        bytes.insert(bytes.end(), block, block + count);
    }
    // Closing compares the check sum.
    const bool whole =
        unzCloseCurrentFile(zip) == UNZ_OK && count == 0 && bytes.size() == about.uncompressed_size;
    if (!whole) return {};
    problem.clear();
    return bytes;
}

std::optional<std::vector<uint8_t>> read(const ZipPath& path, size_t limit, std::string& problem) {
    const OpenZip zip = open_zip(path.archive);
    problem = zip.problem;
    if (!zip.handle) return {};
    int found = unzGoToFirstFile(zip.handle.get());
    for (size_t n = 0; n < zip.files && found == UNZ_OK; ++n) {
        unz_file_info64 about = {};
        if (name_here(zip.handle.get(), about) == path.name) {
            return read_here(zip.handle.get(), about, limit, problem);
        }
        found = unzGoToNextFile(zip.handle.get());
    }
    problem = "no such file";
    return {};
}

} // namespace

bool is_zip_name(const std::string& path) { return lower_case_extension(path) == "zip"; }

ZipListing zip_files(const std::string& archive) {
    const OpenZip zip = open_zip(archive);
    ZipListing listing = {zip.problem, {}};
    if (!zip.handle || zip.files == 0) return listing;
    int found = unzGoToFirstFile(zip.handle.get());
    for (size_t n = 0; n < zip.files && found == UNZ_OK; ++n) {
        unz_file_info64 about = {};
        std::string name = name_here(zip.handle.get(), about);
        if (!name.empty()) listing.files.push_back(std::move(name));
        found = unzGoToNextFile(zip.handle.get());
    }
    if (found != UNZ_OK && found != UNZ_END_OF_LIST_OF_FILE) listing.problem = DAMAGED;
    std::ranges::sort(listing.files);
    return listing;
}

std::optional<ZipPath> zip_path(const std::string& path) {
    for (size_t slash = path.find_first_of(path_separators); slash != path.npos;
         slash = path.find_first_of(path_separators, slash + 1)) {
        const std::string archive = path.substr(0, slash);
        if (!lower_case(archive).ends_with(END) || !is_plain_file(archive)) continue;
        return ZipPath{archive, path.substr(slash + 1)};
    }
    return {};
}

std::optional<std::vector<uint8_t>> read_in_zip(const std::string& path, size_t limit) {
    std::string problem;
    const auto parts = zip_path(path);
    return parts ? read(*parts, limit, problem) : std::nullopt;
}

std::string zip_file_problem(const ZipPath& path, size_t limit) {
    std::string problem;
    read(path, limit, problem);
    return problem;
}
