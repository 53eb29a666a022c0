#pragma once
/// State files (.tvs): a parked machine as bytes that any later version of the program can read.
///
/// A mark, the version of the format, a CRC-32 of all that follows, and chunks: name, version, size
/// and deflated contents. In this order: what the file is about, a small picture, what the host
/// adds, the user's ROM images that are needed, a chunk for each record of the machine, and one for
/// each medium whose contents are in the file. Numbers are little-endian, the records as they are
/// in memory.
///
/// A ROM image of the user's is never in the file: only its length and hash, and the patches of the
/// traps. Its bytes come from the machine, from the user's firmware folder, or are asked for.

#include "core/machine_state.h"
#include "wall/shared_bytes.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// Where a medium comes from. A medium with a path that is `unchanged` need not be in the file.
struct medium_origin {
    std::string path;
    uint64_t hash = 0; ///< content_hash of the machine's bytes; set by state_file_pack
    bool unchanged = false;
};

/// Red, green and blue of each pixel, line by line; all of it empty for none.
struct state_picture {
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> rgb;
};

struct state_description {
    std::string version; ///< of the program
    int64_t time = 0;    ///< seconds since 1970, UTC
    std::string running; ///< name of what is running
    state_picture picture;
    std::array<medium_origin, MACHINE_MEDIA> media;
    shared_bytes attachments; ///< the host's own
};

/// A piece of a ROM of the user's that a state needs: the first bytes of the area.
struct rom_piece {
    int area = 0; ///< a rom_file of wall/machine_host.h
    uint32_t bytes = 0;
    uint64_t hash = 0; ///< content_hash
};

/// What is not in a file is looked for here. Both functions give the contents of files that come
/// into question, of which the one with the right hash is taken; without them there are none.
struct state_sources {
    using Files = std::vector<std::vector<uint8_t>>;
    std::function<Files(size_t medium, const medium_origin&)> medium = {};
    /// ROM files may be longer than the piece, or shorter where the built-in one goes on.
    std::function<Files(const rom_piece&)> rom = {};
    /// Gets a name for what was in none of them.
    std::string* missing = nullptr;
};

/// Turns the contents of an older version of a chunk into those of the next one, `version` + 1.
/// Version 0 has no bytes: the chunk is missing.
struct state_converter {
    const char* chunk;
    uint32_t version;
    std::vector<uint8_t> (*convert)(std::vector<uint8_t> contents);
};
/// All that there have ever been.
std::span<const state_converter> state_converters();

/// The picture that the live machine shows, at half its size.
state_picture state_file_picture();
/// The file. With `whole`, the contents of all media are in it, so that it can be given to
/// somebody.
std::vector<uint8_t> state_file_pack(const machine_state& state, const state_description& about,
                                     bool whole);
/// Fills `state` and `about` from a file, and returns an empty text; or why that cannot be done, as
/// part of a sentence, and leaves both as they are. What it returns can be loaded.
std::string state_file_unpack(std::span<const uint8_t> file, machine_state& state,
                              state_description& about, const state_sources& sources = {},
                              std::span<const state_converter> converters = state_converters());
/// The same without the machine: what the file is about.
std::string state_file_describe(std::span<const uint8_t> file, state_description& about);
