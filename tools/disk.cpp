/// tarvelin-disk: looks into disk images and brings files to and from them.
#include "files/file_names.h"
#include "files/unfinished_writes.h"
#include "files/whole_file.h"
#include "media/basic/basic_tokens.h"
#include "media/disk_system.h"
#include "tools/host_files.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <getopt.h>
#include <unistd.h>

namespace {

constexpr char USAGE[] = R"(usage: tarvelin-disk create [OPTION]... IMAGE
       tarvelin-disk list IMAGE
       tarvelin-disk get [OPTION]... IMAGE NAME [FILE]
       tarvelin-disk put [OPTION]... IMAGE FILE [NAME]
       tarvelin-disk delete IMAGE NAME
       tarvelin-disk rename IMAGE OLD NEW
       tarvelin-disk check IMAGE

Works on images of Colour Genie disks, as the disk ROM writes them.

  create          a new image with an empty directory
  list            the files: name, type, bytes, blocks; then what is free
  get             a file of the disk to the host, "-" for the standard output
  put             a file of the host, "-" for the standard input, to the disk
  delete          deletes a file
  rename          gives a file another name
  check           looks for faults, one in a line

  --tracks N      create: tracks (40; 76 with cgd)
  --sectors N     create: sectors of a track, 10 (as usual) or 18
  --layout KIND   create: plain (as usual), jv3 or cgd
  --blank         create: a disk never formatted, without a directory
  --type TYPE     put: basic, code or data, whatever the file looks like
  --text          get, put: as text; ends of lines and BASIC are converted
  --force         create, get, put: replace what is there
  --help          print this summary and exit
  --version       print the version and exit

NAME is as in BASIC, NAME/EXT, or NAME.EXT; \xNN in it is the byte NN.
Exit status: 0 done, 1 a file or a disk is at fault, 2 wrong arguments.
)";

enum : int { DONE = 0, FAILED = 1, WRONG_ARGUMENTS = 2 };

constexpr size_t LARGEST_CONTENTS = 1 << 20; ///< bytes, more than any disk holds
constexpr uint8_t TOKENIZED = 0xFF;          ///< first byte of a tokenized file of the host
constexpr char RETURN = '\r';
constexpr unsigned TRACKS = 40, SECTORS = 10, CGD_TRACKS = 76;

constexpr const char* TYPES[] = {"basic", "code", "data"}; ///< in the order of DiskFileType
struct layout_name {
    const char* name;
    disk_layout layout;
};
constexpr layout_name LAYOUTS[] = {{"plain", DISK_PLAIN}, {"jv3", DISK_JV3}, {"cgd", DISK_FIXED}};

enum option : int {
    TRACKS_OPTION = 1,
    SECTORS_OPTION,
    LAYOUT,
    BLANK,
    TYPE,
    TEXT,
    FORCE,
    HELP,
    VERSION
};
constexpr ::option OPTIONS[] = {{"tracks", required_argument, nullptr, TRACKS_OPTION},
                                {"sectors", required_argument, nullptr, SECTORS_OPTION},
                                {"layout", required_argument, nullptr, LAYOUT},
                                {"blank", no_argument, nullptr, BLANK},
                                {"type", required_argument, nullptr, TYPE},
                                {"text", no_argument, nullptr, TEXT},
                                {"force", no_argument, nullptr, FORCE},
                                {"help", no_argument, nullptr, HELP},
                                {"version", no_argument, nullptr, VERSION},
                                {}};

struct Arguments {
    std::vector<std::string> words; ///< behind the command
    std::optional<unsigned> tracks;
    unsigned sectors = SECTORS;
    disk_layout layout = DISK_PLAIN;
    std::optional<DiskFileType> type;
    unsigned given = 0; ///< bit n: option n
    bool has(int option) const { return given >> option & 1; }
};

int fail(const std::string& message, int status = FAILED) {
    std::fprintf(stderr, "tarvelin-disk: %s\n", message.c_str());
    return status;
}

// Files of the host.

int write_file(const std::string& path, const DiskBytes& bytes, bool force) {
    const std::string problem = write_host_file(path, bytes, force);
    return problem.empty() ? DONE : fail(problem);
}

/// Mounts the disk in an image file, or tells why not.
std::optional<DiskSystem> open_disk(const std::string& path) {
    std::optional<DiskBytes> bytes = read_whole_file(path);
    if (!bytes) return fail("cannot read " + path), std::nullopt;
    std::string problem;
    std::optional<disk_image> image = disk_image_of(std::move(*bytes), problem);
    std::optional<DiskSystem> disk;
    if (image) {
        image->write_protected = access(path.c_str(), W_OK) != 0;
        disk = disk_mount(std::move(*image), problem);
    }
    if (!disk) fail(path + ": " + problem);
    return disk;
}

int save_disk(const DiskSystem& disk, const std::string& path) {
    return write_file(path, disk.image.image, true);
}

std::optional<DiskFile> find_file(const DiskSystem& disk, const Arguments& given) {
    std::optional<DiskFile> file = disk_find(disk, given.words[1]);
    if (!file) fail(given.words[0] + ": no file " + given.words[1]);
    return file;
}

std::optional<DiskName> new_name(const std::string& text) {
    const std::optional<DiskName> name = disk_name(text);
    if (!name) fail("\"" + text + "\" is no name for a file of the disk", WRONG_ARGUMENTS);
    return name;
}

// Contents of files on the disk and on the host.

DiskBytes lines_to_host(DiskBytes bytes) {
    std::ranges::replace(bytes, uint8_t(RETURN), uint8_t('\n'));
    return bytes;
}

/// Ends of lines LF, CR LF, and CR become CR.
DiskBytes lines_to_disk(const DiskBytes& bytes) {
    DiskBytes lines;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\n' && i > 0 && bytes[i - 1] == RETURN) continue;
        lines.push_back(bytes[i] == '\n' ? uint8_t(RETURN) : bytes[i]);
    }
    return lines;
}

/// What `get` hands out; nothing when that cannot be, and `problem`.
std::optional<DiskBytes> to_host(const DiskFile& file, DiskBytes bytes, bool text,
                                 std::string& problem) {
    if (file.type == FILE_PROGRAM) bytes.insert(bytes.begin(), TOKENIZED);
    if (!text) return bytes;
    if (file.type == FILE_DATA) return lines_to_host(std::move(bytes));
    problem = "no text";
    if (file.type != FILE_PROGRAM) return {};
    BasicProblem basic;
    const std::optional<std::string> listing = basic_decode(bytes, basic);
    problem = (basic.line ? "line " + std::to_string(basic.line) + ": " : "") + basic.text;
    if (!listing) return {};
    return DiskBytes(listing->begin(), listing->end());
}

/// A program, tokenized or as text, without the mark before it.
std::optional<DiskBytes> program_of(const DiskBytes& bytes, std::string& problem) {
    BasicProblem basic;
    std::optional<DiskBytes> program = bytes;
    const bool tokenized = !bytes.empty() && bytes[0] == TOKENIZED;
    if (!tokenized) program = basic_encode(std::string(bytes.begin(), bytes.end()), basic);
    if (tokenized && !basic_decode(bytes, basic)) program.reset();
    problem = (basic.line ? std::to_string(basic.line) + ": " : "") + basic.text;
    if (program) program->erase(program->begin());
    return program;
}

DiskFileType type_of(const std::string& extension) {
    return extension == "bas" ? FILE_PROGRAM : extension == "cmd" ? FILE_CODE : FILE_DATA;
}

/// A name for the host that stays in the present folder, whatever the disk says.
std::string host_name(const DiskName& name) {
    std::string text = disk_name_text(name);
    const size_t stroke = text.rfind('/');
    for (char& c : text) {
        const bool plain = std::isalnum(uint8_t(c)) || std::strchr("_+-#$%!@~", c);
        c = plain ? char(std::tolower(uint8_t(c))) : '_';
    }
    if (stroke != std::string::npos && stroke > 0) text[stroke] = '.';
    if (text.empty() || text[0] == '-') text.insert(0, "_");
    return text;
}

// Commands.

int create(const Arguments& given) {
    const unsigned tracks = given.tracks.value_or(given.layout == DISK_FIXED ? CGD_TRACKS : TRACKS);
    std::string problem;
    auto image = disk_blank(given.layout, tracks, given.sectors, problem);
    if (!image) return fail(problem);
    if (!given.has(BLANK) && !disk_format(*image, problem))
        return fail(problem + "; only --blank makes such an image");
    return write_file(given.words[0], image->image, given.has(FORCE));
}

int list(const Arguments& given) {
    const auto disk = open_disk(given.words[0]);
    if (!disk) return FAILED;
    int status = DONE;
    for (const DiskFile& file : disk_files(*disk)) {
        const std::string name = disk_name_text(file.name);
        const char* const type = file.type <= FILE_DATA ? TYPES[file.type] : "?";
        if (file.whole) {
            std::printf("%-12s  %-5s  %6zu  %3zu\n", name.c_str(), type, file.bytes,
                        file.blocks.size());
            continue;
        }
        std::printf("%-12s  %-5s  %6s  %3zu\n", name.c_str(), type, "?", file.blocks.size());
        status = fail(given.words[0] + ": " + name + " is damaged");
    }
    const unsigned blocks = disk_free_blocks(*disk);
    std::printf("%zu bytes in %u blocks free\n", blocks * disk_block_bytes(*disk), blocks);
    return status;
}

int get(const Arguments& given) {
    const auto disk = open_disk(given.words[0]);
    if (!disk) return FAILED;
    const auto file = find_file(*disk, given);
    if (!file) return FAILED;
    const std::string name = given.words[0] + ": " + disk_name_text(file->name);
    auto bytes = disk_contents(*disk, *file);
    if (!bytes) return fail(name + " is damaged");
    std::string problem;
    bytes = to_host(*file, std::move(*bytes), given.has(TEXT), problem);
    if (!bytes) return fail(name + ": " + problem);
    return write_file(given.words.size() > 2 ? given.words[2] : host_name(file->name), *bytes,
                      given.has(FORCE));
}

int put(const Arguments& given) {
    const std::string& path = given.words[1];
    if (path == "-" && given.words.size() == 2)
        return fail("the standard input has no name", WRONG_ARGUMENTS);
    const std::string wanted =
        given.words.size() > 2 ? given.words[2] : std::filesystem::path(path).filename().string();
    const auto name = new_name(wanted);
    if (!name) return WRONG_ARGUMENTS;
    auto disk = open_disk(given.words[0]);
    if (!disk) return FAILED;
    const std::vector<DiskFile> files = disk_files(*disk);
    if (!given.has(FORCE) && std::ranges::count(files, *name, &DiskFile::name))
        return fail(given.words[0] + ": " + disk_name_text(*name) + " exists; --force replaces it");
    auto bytes = read_host_file(path, LARGEST_CONTENTS);
    if (!bytes) return fail("cannot read " + path);
    const std::string extension = lower_case_extension(path == "-" ? host_name(*name) : path);
    const DiskFileType type = given.type.value_or(type_of(extension));
    const bool text =
        given.has(TEXT) || (!given.type && (extension == "txt" || extension == "asc"));
    std::string problem;
    if (type == FILE_PROGRAM) bytes = program_of(*bytes, problem);
    if (!bytes) return fail(path + ":" + problem);
    if (type == FILE_DATA && text) bytes = lines_to_disk(*bytes);
    if (!disk_put(*disk, *name, type, *bytes, problem))
        return fail(given.words[0] + ": " + problem);
    return save_disk(*disk, given.words[0]);
}

int remove(const Arguments& given) {
    auto disk = open_disk(given.words[0]);
    if (!disk) return FAILED;
    const auto file = find_file(*disk, given);
    if (!file) return FAILED;
    std::string problem;
    if (!disk_delete(*disk, *file, problem)) return fail(given.words[0] + ": " + problem);
    return save_disk(*disk, given.words[0]);
}

int rename(const Arguments& given) {
    const auto name = new_name(given.words[2]);
    if (!name) return WRONG_ARGUMENTS;
    auto disk = open_disk(given.words[0]);
    if (!disk) return FAILED;
    const auto file = find_file(*disk, given);
    if (!file) return FAILED;
    std::string problem;
    if (!disk_rename(*disk, *file, *name, problem)) return fail(given.words[0] + ": " + problem);
    return save_disk(*disk, given.words[0]);
}

int check(const Arguments& given) {
    const auto disk = open_disk(given.words[0]);
    if (!disk) return FAILED;
    const std::vector<DiskFault> faults = disk_check(*disk);
    for (const DiskFault& fault : faults) std::puts(fault.text.c_str());
    if (faults.empty()) std::puts("no faults");
    return faults.empty() ? DONE : FAILED;
}

struct command {
    const char* name;
    size_t least, most; ///< words
    unsigned options;   ///< bit n: option n
    int (*run)(const Arguments&);
};
constexpr unsigned CREATE_OPTIONS =
    1U << TRACKS_OPTION | 1U << SECTORS_OPTION | 1U << LAYOUT | 1U << BLANK | 1U << FORCE;
constexpr command COMMANDS[] = {
    {"create", 1, 1, CREATE_OPTIONS, create},
    {"list", 1, 1, 0, list},
    {"get", 2, 3, 1U << TEXT | 1U << FORCE, get},
    {"put", 2, 3, 1U << TYPE | 1U << TEXT | 1U << FORCE, put},
    {"delete", 2, 2, 0, remove},
    {"rename", 3, 3, 0, rename},
    {"check", 1, 1, 0, check},
};

// The command line.

std::optional<unsigned> number(const char* text) {
    unsigned value = 0;
    const char* const end = text + std::strlen(text);
    const auto [behind, error] = std::from_chars(text, end, value);
    if (error != std::errc() || behind != end) return {};
    return value;
}

bool take_sectors(Arguments& given, const char* text) {
    given.sectors = number(text).value_or(0);
    return given.sectors == 10 || given.sectors == 18;
}

bool take_layout(Arguments& given, const char* text) {
    const auto equal = [text](const layout_name& known) {
        return std::strcmp(known.name, text) == 0;
    };
    const auto* const found = std::ranges::find_if(LAYOUTS, equal);
    if (found != std::end(LAYOUTS)) given.layout = found->layout;
    return found != std::end(LAYOUTS);
}

bool take_type(Arguments& given, const char* text) {
    for (unsigned i = 0; i < std::size(TYPES); ++i) {
        if (std::strcmp(TYPES[i], text) == 0) given.type = DiskFileType(i);
    }
    return given.type.has_value();
}

bool take_value(Arguments& given, int option, const char* text) {
    switch (option) {
    case TRACKS_OPTION: given.tracks = number(text); return given.tracks.has_value();
    case SECTORS_OPTION: return take_sectors(given, text);
    case LAYOUT: return take_layout(given, text);
    case TYPE: return take_type(given, text);
    default: return true;
    }
}

/// False when an option is wrong, which has been told then.
bool read_options(int count, char** words, Arguments& given) {
    char program[] = "tarvelin-disk"; // begins getopt's messages
    words[0] = program;
    int which = 0;
    for (int option; (option = getopt_long(count, words, "", OPTIONS, &which)) != -1;) {
        if (option == '?') return false;
        given.given |= 1U << option;
        if (take_value(given, option, optarg)) continue;
        fail(std::string("bad value for --") + OPTIONS[which].name + ": " + optarg);
        return false;
    }
    given.words.assign(words + optind, words + count);
    return true;
}

int refuse(const std::string& message) {
    fail(message);
    std::fputs("Try 'tarvelin-disk --help'.\n", stderr);
    return WRONG_ARGUMENTS;
}

} // namespace

int main(int count, char** words) {
    Arguments given;
    if (!read_options(count, words, given)) return WRONG_ARGUMENTS;
    if (given.has(HELP)) return std::fputs(USAGE, stdout), DONE;
    if (given.has(VERSION)) return std::puts("tarvelin-disk " TARVELIN_VERSION), DONE;
    if (given.words.empty()) return refuse("no command");
    const std::string name = given.words[0];
    given.words.erase(given.words.begin());
    const auto* const found =
        std::ranges::find_if(COMMANDS, [&](const command& known) { return name == known.name; });
    if (found == std::end(COMMANDS)) return refuse("no command " + name);
    if (given.words.size() < found->least || given.words.size() > found->most)
        return refuse("wrong number of names for " + name);
    if (given.given & ~found->options) return refuse("an option is not for " + name);
    remove_unfinished_files();
    const int status = found->run(given);
    if (std::fflush(stdout) != 0) return fail("cannot write the standard output");
    return status;
}
