#include "host/recording/video_codec.h"

std::vector<video_codec_kind> libav_codecs() { return {}; }
