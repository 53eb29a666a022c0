#pragma once
/// What is being written is noted in the user's data directory, so that the next start finds what a
/// program that was killed has left behind. A note is a file of its own, locked by the program that
/// writes: a note without a lock is that of a program that has gone.

#include "files/file_handle.h"

#include <string>
#include <vector>

/// The note of one file that is being written. It is removed with the object.
class WriteNote {
public:
    /// To be called before `temporary` is made on the way to `target`, both absolute. Where the
    /// data directory cannot be used there is no note, and writing goes on without.
    WriteNote(const std::string& temporary, const std::string& target);
    ~WriteNote();
    WriteNote(const WriteNote&) = delete;
    WriteNote& operator=(const WriteNote&) = delete;

    /// The temporary file has all that the target is to hold, and the target is written to next.
    /// False without a note.
    bool temporary_is_complete();
    /// Leaves the note for the next start to find.
    void leave() { path_.clear(); }

private:
    void make_folder(const std::string& folder);
    void give_up();

    std::string path_;
    std::vector<std::string> made_folders_; ///< outermost first
    FileHandle file_;
};

/// Where a copy of what is written over `target` belongs: a name in the rescue folder of the user's
/// data directory that no file has. Its note makes the folder.
std::string rescue_copy_name(const std::string& target);

/// A file that was being written in place when its program went. It may hold anything.
struct InterruptedWrite {
    std::string target;
    std::string copy; ///< path of a file with what the target was to hold
    std::string note;
};

/// Removes the temporary files of programs that have gone.
void remove_unfinished_files();
/// The files whose contents are in doubt.
std::vector<InterruptedWrite> interrupted_writes();
/// Writes the copy over the target and removes it. False when that fails, with the reason in errno;
/// then all stays as it was.
bool finish_write(const InterruptedWrite& write);
/// Removes the note, so that the file is not offered again. The copy stays where it is.
void leave_unfinished(const InterruptedWrite& write);
