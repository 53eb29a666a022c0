#include "media/files/media_files.h"

#include "media/files/cassette_files.h"
#include "media/files/printer_file.h"
#include "media/files/tape_sound_files.h"
#include "wall/machine_host.h"

namespace {

int write(output_stream stream, uint64_t position, const uint8_t* bytes, size_t count) {
    switch (stream) {
    case STREAM_PRINTER: return printer_file_write(bytes, count);
    case STREAM_TAPE: return tape_file_write(position, bytes, count);
    case STREAM_TAPE_SOUND: return tape_sound_write(position, bytes, count);
    }
    return 0;
}

void end(output_stream stream) {
    if (stream == STREAM_TAPE) tape_file_end();
    if (stream == STREAM_TAPE_SOUND) tape_sound_end();
}

} // namespace

void connect_media_files() {
    machine_host.write = write;
    machine_host.stream_ends = end;
    machine_host.read_tape = tape_sound_read;
}
