#include "media/tape_audio.h"

int tape_load_wav(int64_t /*cycles*/) { return 0; }
void tape_save_wav(int64_t /*cycles*/, int /*bit*/) {}
void tape_update_counter(int64_t /*cycles*/) {}
