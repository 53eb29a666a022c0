#include "media/tape_audio.h"

namespace {
int compare_level = 0;
}

int tape_load_wav(int64_t /*cycles*/) { return 0; }
void tape_save_wav(int64_t /*cycles*/, int /*bit*/) {}
void tape_update_counter(int64_t /*cycles*/) {}
int tape_open_wav(const std::string& /*path*/) { return 0; }
int tape_create_wav(const std::string& /*path*/, int /*rate*/) { return 0; }
void tape_close_wav() {}
void tape_rewind() {}
void tape_set_motor(int /*on*/, int64_t /*cycles*/) {}
int tape_get_compare_level() { return compare_level; }
void tape_set_compare_level(int level) { compare_level = level; }
