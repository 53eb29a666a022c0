#pragma once
/// The questions that are asked before something on a disk is lost. Each hands the answer to
/// `done`, before the call returns or later; `none` and `later` stand for no answer.

#include "wall/shared_bytes.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

struct LeftJournal;

enum class ChangesAnswer { save, discard, none };
/// Asks whether to save the changes of the disk in the drive (0 to 3).
void ask_for_changes(unsigned drive, std::function<void(ChangesAnswer)> done);

enum class TroubleAnswer { elsewhere, mine, theirs, none };
/// Asks what to do when the disk's file was changed by someone else meanwhile: save the disk
/// elsewhere, overwrite the file (`mine`), or keep the file (`theirs`).
void ask_about_changed_file(unsigned drive, const std::function<void(TroubleAnswer)>& done);
/// Asks what to do when the disk's file cannot be written. `mine` means to try again.
void ask_about_failed_write(unsigned drive, const std::string& reason,
                            const std::function<void(TroubleAnswer)>& done);

enum class JournalAnswer { take, discard, later };
/// Asks what to do with the journal that an earlier run has left. When the image's file was changed
/// since, the journal cannot be taken; `discard` is then also the answer when the user has saved
/// its image elsewhere.
void ask_about_journal(unsigned drive, const std::shared_ptr<const LeftJournal>& left,
                       const std::function<void(JournalAnswer)>& done);

/// Asks for a file and writes the image to it. `done` gets its path, or nothing when that was given
/// up or fails, which is reported.
void save_disk_elsewhere(const shared_bytes& image,
                         const std::function<void(const std::optional<std::string>& path)>& done);
