#pragma once
/// What is asked before something on a disk is lost.

#include <cstdint>
#include <span>
#include <string>

struct LeftJournal;

enum class ChangesAnswer { save, discard, none };
/// Whether to save the changes.
ChangesAnswer ask_for_changes(unsigned drive);

enum class TroubleAnswer { elsewhere, mine, theirs, none };
/// The file was changed by someone else meanwhile.
TroubleAnswer ask_about_changed_file(unsigned drive);
/// Its file cannot be written. `mine` is to try again.
TroubleAnswer ask_about_failed_write(unsigned drive, const std::string& reason);

enum class JournalAnswer { take, discard, later };
/// What to do with the journal that another run has left. Where the image's file was changed since,
/// it cannot be taken; then `discard` comes after it was saved elsewhere, too.
JournalAnswer ask_about_journal(unsigned drive, const LeftJournal& left);

/// Asks for a file and writes the image to it. False when that was given up or fails, which is
/// reported.
bool save_disk_elsewhere(std::span<const uint8_t> image);
