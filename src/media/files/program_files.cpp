#include "media/files/program_files.h"

#include "files/file_handle.h"
#include "files/whole_file.h"
#include "media/cmd_loader.h"
#include "media/snapshot.h"

#include <array>
#include <vector>

int load_cmd(std::FILE* file, uint16_t* entry) {
    std::vector<uint8_t> module;
    for (int byte = 0; (byte = std::getc(file)) != EOF;) module.push_back(uint8_t(byte));
    return load_cmd(module, entry);
}

int snapshot_save(const char* path, const uint8_t* ram) {
    std::array<uint8_t, SNAPSHOT_SIZE> snapshot;
    snapshot_pack(snapshot, ram);
    return replace_whole_file(path, snapshot) ? 1 : 0;
}

int snapshot_load(const char* path, uint8_t* ram) {
    const FileHandle file = open_file(path, "rb");
    std::array<uint8_t, SNAPSHOT_SIZE> snapshot;
    if (!file || std::fread(snapshot.data(), snapshot.size(), 1, file.get()) != 1) return 0;
    return snapshot_unpack(snapshot, ram);
}
