#pragma once

/// Connects the machine's media with the files of this folder: sets the callbacks write,
/// stream_ends and read_tape of machine_host.
void connect_media_files();
