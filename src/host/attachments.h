#pragma once
/// The files that the machine's media belong to: the images in the drives, the cassette's file, the
/// WAV file that plays, the printer's file; and which program runs. They are not in the machine's
/// state, so whoever keeps a state keeps these bytes beside it.

#include "wall/shared_bytes.h"

/// The files at this moment, by path and by the hash of what they held when they were read. The
/// same bytes on every host; as long as nothing has changed, always the same object.
shared_bytes attachments_now();
/// To be called before another state is loaded, or an earlier moment shown: what the present is
/// about to write to disk journals and to a tape recording is written.
void attachments_leave();
/// To be called after another state was loaded, before the machine goes on from it. The media
/// belong to these files as far as they are there, and nothing that was written to them is written
/// over: drives as main_disk_follow, a tape being saved as tape_file_follow has it; a WAV file that
/// is missing or has changed, or was being recorded, is taken out; the printer goes on at its
/// file's end. The keyboard's mapping is the user's, and keys are looked at anew. What that changes
/// in the machine are events. Bytes that make no sense, such as none at all, stand for no files.
void attachments_follow(const shared_bytes& attachments);

/// Instead, for a machine that a replay has, whose media belong to no files: nothing in it changes.
/// The drives are to be empty, and no tape in, before the state is loaded.
void attachments_are_none();

/// For the shell: another state was loaded, of which nobody has said what files it has.
void attachments_are_unknown();
/// When the shell turns: such a state has none. Completes what was left while an earlier moment was
/// looked at.
void attachments_settle();
