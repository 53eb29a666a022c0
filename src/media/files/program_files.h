#pragma once
/// Programs and states that the machine gets from files, and gives to them.

#include <cstdint>
#include <cstdio>

/// Loads the rest of the file as a load module, see media/cmd_loader.h.
int load_cmd(std::FILE* file, uint16_t* entry);

/// Replaces the file by a snapshot of the machine; `ram` is address 4000. 0 when that fails, with
/// the reason in errno.
int snapshot_save(const char* path, const uint8_t* ram);
/// Restores the machine. A missing or shorter file returns 0 and changes nothing.
int snapshot_load(const char* path, uint8_t* ram);
