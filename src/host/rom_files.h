#pragma once
/// Files of ROM contents, and files that memory is written to.

#include "wall/machine_host.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// Fills destination[first] to destination[last] from the file, as far as it goes. A file that
/// cannot be opened changes nothing. Returns the number of bytes read.
size_t memory_load_rom(uint8_t* destination, size_t first, size_t last, const char* path);
/// The machine's question for the contents of the file that a setting names.
int read_rom_file(rom_file which, uint8_t* to, size_t size);
/// Looks for the firmware's seven names in `directory`. A file of a wrong size or one that cannot
/// be read is refused with a warning, and the built-in image stays. Returns the number of images
/// taken.
int firmware_load_user_images(const std::string& directory);

/// Writes the whole address space to "memdump.bin" in the current directory. 0 when that fails,
/// with the reason in errno.
int mem_dump();
/// Replaces the file by the listing of all the memory. 0 when that fails, with the reason in errno.
int fulldisasm(const std::string& path);
/// Replaces the file by `size` bytes. 0 when that fails, with the reason in errno.
int save_binary(const char* path, const uint8_t* data, size_t size);
