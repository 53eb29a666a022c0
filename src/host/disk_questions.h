#pragma once
/// What is asked before something on a disk is lost. Each hands its answer to `done`, before the
/// call returns or later.

#include "wall/shared_bytes.h"

#include <functional>
#include <memory>
#include <string>

struct LeftJournal;

enum class ChangesAnswer { save, discard, none };
/// Whether to save the changes.
void ask_for_changes(unsigned drive, std::function<void(ChangesAnswer)> done);

enum class TroubleAnswer { elsewhere, mine, theirs, none };
/// The file was changed by someone else meanwhile.
void ask_about_changed_file(unsigned drive, const std::function<void(TroubleAnswer)>& done);
/// Its file cannot be written. `mine` is to try again.
void ask_about_failed_write(unsigned drive, const std::string& reason,
                            const std::function<void(TroubleAnswer)>& done);

enum class JournalAnswer { take, discard, later };
/// What to do with the journal that another run has left. Where the image's file was changed since,
/// it cannot be taken; then `discard` comes after it was saved elsewhere, too.
void ask_about_journal(unsigned drive, const std::shared_ptr<const LeftJournal>& left,
                       const std::function<void(JournalAnswer)>& done);

/// Asks for a file and writes the image to it. False when that was given up or fails, which is
/// reported.
void save_disk_elsewhere(const shared_bytes& image, const std::function<void(bool saved)>& done);
