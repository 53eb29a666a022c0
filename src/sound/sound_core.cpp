#include "sound/sound_core.h"

void sound_update(int64_t /*cycles*/) {}
void sound_flush(int64_t cycles) { sound_update(cycles); }
void sound_init() {}
void sound_reset() {}
void sound_close() {}
void sound_pause() {}
void sound_resume() {}
int sound_create_wav(const std::string& /*path*/) { return 0; }
void sound_close_wav() {}
int64_t sound_is_saving() { return 0; }
