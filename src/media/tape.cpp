#include "media/tape.h"

#include "cgenie/memory/memory.h"
#include "files/file_handle.h"
#include "files/whole_file.h"
#include "media/tape_audio.h"
#include "media/traps.h"
#include "wall/machine_host.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool tape_ready = false;

namespace {

constexpr size_t EXPORT_LEADER_SIZE = 256;
constexpr uint32_t BLOCK_SIZE = 256;
constexpr uint8_t UPPER_CASE = 0xDF;
constexpr uint8_t PAST_THE_END = 0xFF;

constexpr std::string_view CGT_TEXT = "Colour Genie - Virtual Tape File";

// What a tokenized BASIC file becomes: a leader, sync and marks of the firmware's other format.
constexpr int TOKENIZED_MARK = 0xFF;
constexpr size_t BASIC_LEADER_SIZE = 256;
constexpr std::string_view BASIC_SYNC_AND_MARKS = "\xA5\xD3\xD3\xD3";
constexpr char BASIC_END = 0x1A;

FileHandle cas;
std::string casfilename;
int cas_header_size = 0; ///< where the tape's first byte stands in the file
bool saving = false;     ///< `cas` takes bytes

/// Regular files only: a folder holds no tape, and a pipe would hold up the machine.
FileHandle open_regular_file(const std::string& path, int flags, const char* mode) {
    constexpr mode_t OWNERS_CHOICE = 0666;
    const int descriptor = open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC, OWNERS_CHOICE);
    if (descriptor < 0) return {};
    FileHandle file = stream_of(descriptor, mode);
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) return {};
    if (!S_ISREG(status.st_mode) || uintmax_t(status.st_size) > LARGEST_FILE) return {};
    return file;
}

FileHandle open_image(const std::string& path) { return open_regular_file(path, O_RDONLY, "rb"); }

/// Has no name any more, so nothing is left of it when the program is killed.
FileHandle open_temporary_file() {
    std::error_code error;
    const auto folder = std::filesystem::temp_directory_path(error);
    if (error) return {};
    std::string name = folder / "tarvelin-XXXXXX";
    const int descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (descriptor < 0) return {};
    unlink(name.c_str());
    return stream_of(descriptor, "w+b");
}

/// A saved tape survives a crash of the host from here on. Not every file system can promise it.
void finish_saving() {
    if (!saving) return;
    saving = false;
    if (fdatasync(fileno(cas.get())) != 0 && errno != EINVAL) report(unwritable(casfilename));
}

void put_in(FileHandle image, std::string path) {
    cas = std::move(image);
    casfilename = std::move(path);
    tape_ready = true;
}

/// The first byte that is not `skipped`, or EOF.
int skip_run(std::FILE* file, int skipped) {
    int byte = skipped;
    while (byte == skipped) byte = std::fgetc(file);
    return byte;
}

/// `wanted` when the file has it from here on, `byte` counted in; else EOF.
int find_byte(std::FILE* file, int byte, int wanted) {
    while (byte != wanted && byte != EOF) byte = std::fgetc(file);
    return byte;
}

int kind_of_tape(std::FILE* file, char* name) {
    int byte = std::fgetc(file);
    if (byte == TAPE_LEADER) {
        byte = skip_run(file, TAPE_LEADER);
    } else if (byte != TAPE_SYNC) {
        byte = find_byte(file, byte, 0);
        byte = find_byte(file, byte, TAPE_SYNC);
    }
    if (byte == 0 || byte == EOF) return TAPE_UNKNOWN;
    if (std::fgetc(file) != TAPE_MACHINE_CODE_MARK) return TAPE_BASIC;
    const int first = std::fgetc(file);
    *name = char(first == EOF ? PAST_THE_END : first);
    return TAPE_MACHINE_CODE;
}

/// Everything behind the file's present position; 0 when reading or writing failed.
int copy_rest(std::FILE* from, std::FILE* to) {
    std::array<char, 4096> bytes;
    while (const size_t count = std::fread(bytes.data(), 1, bytes.size(), from)) {
        if (std::fwrite(bytes.data(), 1, count, to) != count) return 0;
    }
    return std::ferror(from) == 0 ? 1 : 0;
}

char upper_case(char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; }

int write_basic_stream(std::FILE* program, char name, std::FILE* stream) {
    std::string head(BASIC_LEADER_SIZE, '\0');
    head += BASIC_SYNC_AND_MARKS;
    head += upper_case(name);
    std::fgetc(program); // the mark
    return std::fwrite(head.data(), 1, head.size(), stream) == head.size() &&
           copy_rest(program, stream) && std::fputc(BASIC_END, stream) != EOF &&
           std::fflush(stream) == 0;
}

/// Nothing that reads as a number counts as 0.
uint16_t hexadecimal(const std::string& text) {
    uint16_t value = 0;
    return std::sscanf(text.c_str(), "%4hx", &value) == 1 ? value : uint16_t(0);
}

void append_word(std::string& bytes, uint16_t value) {
    bytes += char(value & 0xFF);
    bytes += char(value >> 8);
}

void append_name(std::string& bytes, std::string_view file_name) {
    std::string name(file_name.substr(0, std::min(file_name.find('.'), TAPE_NAME_SIZE)));
    for (char& c : name) c = char(c & UPPER_CASE);
    name.resize(TAPE_NAME_SIZE, ' ');
    bytes += name;
}

void append_block(std::string& bytes, uint32_t address, uint32_t count) {
    bytes += char(TAPE_BLOCK);
    bytes += char(count & 0xFF);
    append_word(bytes, uint16_t(address));
    uint8_t sum = uint8_t(address) + uint8_t(address >> 8);
    for (uint32_t n = 0; n < count; ++n) {
        const uint8_t value = mem_read(address + n);
        bytes += char(value);
        sum += value;
    }
    bytes += char(sum);
}

void append_program(std::string& bytes, uint32_t first, uint32_t last, uint16_t entry) {
    for (uint32_t address = first; address <= last; address += BLOCK_SIZE) {
        append_block(bytes, address, std::min(BLOCK_SIZE, last - address + 1));
    }
    bytes += char(TAPE_ENTRY);
    append_word(bytes, entry);
}

} // namespace

int tape_attach_cas(const std::string& path) {
    std::string wanted = path; // may be the name that detaching clears
    tape_detach_cas();
    FileHandle image = open_image(wanted);
    if (!image) return 0;
    put_in(std::move(image), std::move(wanted));
    tape_close_wav();
    cas_header_size = cg_get_header_size(cas.get());
    tape_place_traps(rom_pointer());
    return 1;
}

void tape_detach_cas() {
    if (cas) {
        finish_saving();
        cas.reset();
        casfilename.clear();
        cas_header_size = 0;
    }
    tape_reset();
}

int tape_cas_is_attached() { return cas ? 1 : 0; }

void tape_cas_rewind() {
    if (cas) std::rewind(cas.get());
}

int tape_cas_type(char* name) {
    if (!cas) return TAPE_UNKNOWN;
    tape_cas_rewind();
    const int kind = kind_of_tape(cas.get(), name);
    tape_cas_rewind();
    return kind;
}

std::string& tape_get_cas_name() { return casfilename; }

int cg_get_header_size(std::FILE* file) {
    std::array<char, CGT_TEXT.size()> text = {};
    const size_t length = std::fread(text.data(), 1, text.size(), file);
    if (std::string_view(text.data(), length) != CGT_TEXT) {
        std::rewind(file);
        return 0;
    }
    find_byte(file, std::fgetc(file), 0);
    const long position = std::ftell(file);
    if (std::fgetc(file) != TAPE_SYNC) return 0;
    std::fseek(file, position, SEEK_SET);
    return int(position);
}

void tape_cas_skip_header() {
    if (cas && std::ftell(cas.get()) < cas_header_size) {
        std::fseek(cas.get(), cas_header_size, SEEK_SET);
    }
}

uint8_t tape_read_one_byte() {
    if (!cas) return 0;
    if (saving) std::fseek(cas.get(), 0, SEEK_CUR); // a stream turns round only at a seek
    const int byte = std::fgetc(cas.get());
    return byte == EOF ? PAST_THE_END : uint8_t(byte);
}

void tape_create_cas() {
    std::string path;
    if (!machine_host.save_file_name(&path) || path.empty()) return;
    tape_close_wav();
    tape_detach_cas();
    tape_place_traps(rom_pointer());
    FileHandle image = open_regular_file(path, O_RDWR | O_CREAT | O_TRUNC | O_APPEND, "a+b");
    if (!image) return report(unwritable(path));
    std::setvbuf(image.get(), nullptr, _IONBF, 0); // a killed program has saved every byte
    put_in(std::move(image), path);
    saving = true;
}

void tape_write_case_header() {
    if (tape_ready) tape_create_cas();
}

void tape_write_one_byte(uint8_t value) {
    if (!saving) return;
    std::fseek(cas.get(), 0, SEEK_END); // wherever reading has left a rewound tape
    if (std::fputc(value, cas.get()) != EOF) return;
    saving = false;
    report(unwritable(casfilename));
}

int is_tokenized_bas(const std::string& path) {
    const FileHandle file = open_image(path);
    return file && std::fgetc(file.get()) == TOKENIZED_MARK ? 1 : 0;
}

int bas_to_cas_open(const std::string& path) {
    std::string wanted = path; // may be the name that detaching clears
    tape_close_wav();
    tape_detach_cas();
    tape_place_traps(rom_pointer());
    tape_ready = true;
    const FileHandle program = open_image(wanted);
    if (!program) return 0;
    FileHandle stream = open_temporary_file();
    if (!stream || !write_basic_stream(program.get(), wanted.front(), stream.get())) return 0;
    std::rewind(stream.get());
    put_in(std::move(stream), std::move(wanted));
    return 1;
}

int tape_dump_cas(const std::string& path, const std::string& start, const std::string& end,
                  const std::string& entry) {
    const uint32_t first = hexadecimal(start);
    const uint32_t last = hexadecimal(end);
    if (last < first) {
        report({.text = path + ": not written, the end is below the start"});
        return 0;
    }
    std::string bytes(EXPORT_LEADER_SIZE, char(TAPE_LEADER));
    bytes += char(TAPE_SYNC);
    bytes += char(TAPE_MACHINE_CODE_MARK);
    const size_t separator = path.find_last_of("/\\");
    const bool named = separator != std::string::npos;
    if (named) {
        append_name(bytes, std::string_view(path).substr(separator + 1));
        append_program(bytes, first, last, hexadecimal(entry));
    }
    if (!replace_whole_file(path, bytes)) {
        report(unwritable(path));
        return 0;
    }
    if (!named) report({.text = path + ": is empty, since its path names no folder"});
    return named ? 1 : 0;
}
