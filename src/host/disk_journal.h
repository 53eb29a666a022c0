#pragma once
/// The journal of a disk in a drive: a file in the user's data directory with the whole image as it
/// was some time ago, and after it what was written since. A program that is killed leaves it
/// behind. Nothing is synchronized with the storage device, so a power cut may cost it.
///
/// The file: a head, which names the image and its contents at the time of the attach, the image's
/// path, and batches. A batch is what was written up to the end of one frame, as pieces of the
/// image; the first batch is the whole image. All numbers are as the host's processor has them. A
/// batch that is not complete, or whose check sum is wrong, ends the journal.

#include "files/file_handle.h"
#include "media/files/drive_files.h"
#include "wall/shared_bytes.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// A journal that an earlier run has left behind.
struct LeftJournal {
    std::string path;           ///< of the journal
    std::vector<uint8_t> image; ///< the disk as it was at the end of that run
    uint64_t file_hash = 0;     ///< of the image's file when it was attached
    FileIdentity file;
    uint64_t end = 0; ///< bytes of the journal up to its last whole batch
};

class DiskJournal {
public:
    DiskJournal() = default;
    ~DiskJournal() { close(); }
    DiskJournal(DiskJournal&& other) noexcept { *this = std::move(other); }
    DiskJournal& operator=(DiskJournal&& other) noexcept;

    /// Starts with a disk of these contents, which are those of its file: nothing has to be kept
    /// yet.
    void begin(const shared_bytes& contents) { kept_ = contents; }
    /// Goes on with the journal of another run, from whose image the disk has its contents.
    /// False, with the reason in errno, when it cannot be written to.
    bool resume(const LeftJournal& left);
    /// Notes what is different on the disk since the last call, whether it was written there or the
    /// machine's state was replaced; while nothing is different, no file is made. False, with the
    /// reason in errno, when that fails. The next call tries again.
    bool keep(const disk_file& file, const shared_bytes& contents);
    /// Removes the file: the journal is no longer needed.
    void remove();
    /// Leaves the file for the next run.
    void close();

private:
    bool write_anew(const disk_file& file, std::span<const uint8_t> image);
    bool append(std::span<const uint8_t> image);

    shared_bytes kept_; ///< the disk at the last call
    std::string path_;
    FileHandle file_;
    uint64_t length_ = 0;
    uint64_t limit_ = 0; ///< in bytes: a journal that gets longer is written anew
};

/// The journal that belongs to the file, by its path or else by the file itself, unless a running
/// program writes to it.
std::optional<LeftJournal> find_left_journal(const disk_file& file);
/// Whether a running program writes to it.
bool journal_is_in_use(const disk_file& file);
void remove_left_journal(const LeftJournal& left);
