#pragma once

/// Makes the files of this folder those of the machine's media: where its streams go
/// (machine_host.write and stream_ends), and the WAV file that it plays (read_tape).
void connect_media_files();
