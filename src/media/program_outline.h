#pragma once
/// What is in a program's file, found without loading it. The file is never trusted: what does not
/// fit together is damage, and every length is one of the bytes that are there.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct ProgramOutline {
    std::string name;    ///< in the file's own bytes, without the blanks behind it; may be empty
    uint32_t bytes = 0;  ///< of the program
    uint16_t lowest = 0; ///< address that is loaded to; of machine code with any bytes
    uint16_t highest = 0;
    std::optional<uint16_t> entry = {};
    std::string damage = {}; ///< in words; empty where all is there
};

enum class TapeContent : uint8_t {
    basic,
    machine_code,
    data ///< a record that PRINT#-1 has written
};

/// A program or a record on a cassette image.
struct TapeProgram : ProgramOutline {
    TapeContent content = TapeContent::basic;
    size_t start = 0; ///< of its leader in the image: from there the firmware finds it
};

constexpr size_t MOST_TAPE_PROGRAMS = 1000;

/// What is on a cassette image (media/tape.h), up to MOST_TAPE_PROGRAMS of it, in the order of the
/// tape. A program that another one loads without a leader of its own is not found.
std::vector<TapeProgram> tape_programs(std::span<const uint8_t> image);

/// A load module (media/cmd_loader.h). Its name is in a block that is not loaded.
ProgramOutline load_module_outline(std::span<const uint8_t> module);
