#pragma once
/// The user's ROM images in a state. Bytes of the built-in firmware are kept as they are; of a
/// user's image there are only the length and the hash. The working copy of the BASIC ROM is kept
/// as the patches in it.

#include "time/byte_stream.h"
#include "time/state_file.h"

#include <cstdint>
#include <string>
#include <vector>

/// Takes the bytes of the user's images and the working copy out of saved records, and returns what
/// is needed to put them in again.
std::vector<uint8_t> take_roms_out(std::vector<uint8_t>& records);
/// Puts them in again. An empty text, or why that cannot be done.
std::string put_roms_in(std::vector<uint8_t>& records, std::span<const uint8_t> taken_out,
                        const state_sources& sources);
