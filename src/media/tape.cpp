#include "media/tape.h"

#include "platform/file_handle.h"

namespace {
std::string cas_name;
constexpr int TOKENIZED_MARK = 0xFF;
} // namespace

int tape_attach_cas(const std::string& /*path*/) { return 0; }
void tape_detach_cas() { cas_name.clear(); }
int tape_cas_type(char* /*name*/) { return TAPE_UNKNOWN; }
int tape_dump_cas(const std::string& /*path*/, const std::string& /*start*/,
                  const std::string& /*end*/, const std::string& /*entry*/) {
    return 0;
}
std::string& tape_get_cas_name() { return cas_name; }

int is_tokenized_bas(const std::string& path) {
    const FileHandle file = open_file(path, "rb");
    return file && std::fgetc(file.get()) == TOKENIZED_MARK ? 1 : 0;
}

int bas_to_cas_open(const std::string& /*path*/) { return 0; }
