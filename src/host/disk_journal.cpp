#include "host/disk_journal.h"

#include "files/file_names.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <span>
#include <utility>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::array<char, 8> MARK = {'T', 'V', 'N', 'J', 'R', 'N', 'L', '1'};
constexpr const char* EXTENSION = ".journal";
constexpr size_t LARGEST_JOURNAL = 4 * LARGEST_FILE;
/// Size of all batches, in images, at which the journal is written anew.
constexpr uint64_t GROWTH = 2;

struct Head {
    std::array<char, 8> mark = MARK;
    uint64_t file_hash = 0;
    FileIdentity file;
    uint64_t path_bytes = 0;
    uint64_t path_hash = 0;
};
struct Batch {
    uint64_t bytes = 0; ///< of its pieces
    uint64_t hash = 0;  ///< of its pieces
};
struct Piece {
    uint32_t offset = 0; ///< in the image
    uint32_t bytes = 0;
};

template <typename Record>
void put(Bytes& to, const Record& record) {
    const auto* const bytes = reinterpret_cast<const uint8_t*>(&record);
    to.insert(to.end(), bytes, bytes + sizeof record);
}

/// Takes a record, or `count` bytes, off the front. False when there are not so many.
template <typename Record>
bool take(std::span<const uint8_t>& from, Record& record) {
    if (from.size() < sizeof record) return false;
    std::memcpy(&record, from.data(), sizeof record);
    from = from.subspan(sizeof record);
    return true;
}
bool take(std::span<const uint8_t>& from, uint64_t count, std::span<const uint8_t>& bytes) {
    if (from.size() < count) return false;
    bytes = from.first(count);
    from = from.subspan(count);
    return true;
}

using Pieces = std::vector<std::span<const uint8_t>>;

void put_batch(Bytes& to, std::span<const uint8_t> image, const Pieces& pieces) {
    const size_t start = to.size();
    size_t size = start + sizeof(Batch);
    for (const auto& piece : pieces) size += sizeof(Piece) + piece.size();
    to.reserve(size);
    put(to, Batch());
    for (const auto& piece : pieces) {
        put(to, Piece{uint32_t(piece.data() - image.data()), uint32_t(piece.size())});
        to.insert(to.end(), piece.begin(), piece.end());
    }
    const auto content = std::span(to).subspan(start + sizeof(Batch));
    const Batch head = {content.size(), content_hash(content)};
    std::memcpy(to.data() + start, &head, sizeof head);
}

/// The parts of the image that differ from before, in pieces of the length of a sector.
Pieces differences(std::span<const uint8_t> before, std::span<const uint8_t> image) {
    Pieces pieces;
    for (size_t at = 0; at < image.size(); at += SECTOR_SIZE) {
        const size_t count = std::min<size_t>(SECTOR_SIZE, image.size() - at);
        const auto piece = image.subspan(at, count);
        if (!std::ranges::equal(piece, before.subspan(at, count))) pieces.push_back(piece);
    }
    return pieces;
}

/// Applies the next batch to the image; the first batch is the image. False at the end of the
/// journal.
bool take_batch(std::span<const uint8_t>& from, Bytes& image) {
    Batch batch;
    std::span<const uint8_t> content;
    if (!take(from, batch) || !take(from, batch.bytes, content)) return false;
    if (content_hash(content) != batch.hash) return false;
    Piece piece;
    std::span<const uint8_t> bytes;
    while (take(content, piece) && take(content, piece.bytes, bytes)) {
        if (image.empty() && piece.offset == 0) image.resize(piece.bytes);
        if (uint64_t(piece.offset) + piece.bytes > image.size()) return false;
        std::ranges::copy(bytes, image.begin() + piece.offset);
    }
    return content.empty();
}

std::string journal_folder() { return path_in(platform().paths().data_directory(), "journal"); }

std::string journal_path(const disk_file& file) {
    char name[17];
    std::snprintf(name, sizeof name, "%016" PRIx64, content_hash(canonical_path(file.path)));
    return path_in(journal_folder(), std::string(name) + EXTENSION);
}

/// One program at a time writes to a journal.
bool lock(std::FILE* file) { return lock_file(file, LockWait::no); }

bool is_in_use(const std::string& path) {
    const FileHandle file = open_file(path, "rb");
    return file && !lock(file.get());
}

std::optional<LeftJournal> read_journal(const std::string& path) {
    if (is_in_use(path)) return {};
    const auto bytes = read_whole_file(path, LARGEST_JOURNAL);
    if (!bytes) return {};
    std::span<const uint8_t> rest = *bytes;
    Head head;
    std::span<const uint8_t> image_path;
    if (!take(rest, head) || head.mark != MARK || !take(rest, head.path_bytes, image_path)) {
        return {};
    }
    if (content_hash(image_path) != head.path_hash) return {};
    LeftJournal left{path, {}, head.file_hash, head.file, 0};
    while (take_batch(rest, left.image)) left.end = bytes->size() - rest.size();
    return left.image.empty() ? std::nullopt : std::optional(left);
}

} // namespace

DiskJournal& DiskJournal::operator=(DiskJournal&& other) noexcept {
    std::swap(kept_, other.kept_);
    std::swap(path_, other.path_);
    std::swap(file_, other.file_);
    std::swap(length_, other.length_);
    std::swap(limit_, other.limit_);
    return *this;
}

bool DiskJournal::resume(const LeftJournal& left) {
    close();
    file_ = open_file(left.path, "r+b");
    if (!file_) return false;
    path_ = left.path;
    length_ = left.end;
    limit_ = left.end + GROWTH * left.image.size();
    if (lock(file_.get()) && set_length(file_.get(), length_)) return true;
    close();
    return false;
}

bool DiskJournal::keep(const disk_file& file, const shared_bytes& contents) {
    if (contents == kept_) return true;
    const auto image = contents.view();
    const bool anew = !file_ || length_ > limit_ || image.size() != kept_.size();
    if (!(anew ? write_anew(file, image) : append(image))) return false;
    kept_ = contents;
    return true;
}

/// The new journal takes the place of the old one at one stroke.
bool DiskJournal::write_anew(const disk_file& file, std::span<const uint8_t> image) {
    if (path_.empty()) path_ = journal_path(file);
    make_folders(journal_folder());
    const std::string image_path = canonical_path(file.path);
    Bytes bytes;
    const std::span path_bytes(reinterpret_cast<const uint8_t*>(image_path.data()),
                               image_path.size());
    Head head;
    head.file_hash = file.hash;
    head.file = file.identity;
    head.path_bytes = path_bytes.size();
    head.path_hash = content_hash(path_bytes);
    put(bytes, head);
    bytes.insert(bytes.end(), path_bytes.begin(), path_bytes.end());
    put_batch(bytes, image, {image});

    const std::string next = path_ + ".next";
    FileHandle made = open_private_file(next);
    if (!made) return false;
    if (!lock(made.get()) || write_at(made.get(), 0, bytes) < bytes.size() ||
        !rename_file(next, path_)) {
        const int reason = errno;
        remove_file(next);
        made.reset();
        errno = reason;
        return false;
    }
    file_ = std::move(made);
    length_ = bytes.size();
    limit_ = length_ + GROWTH * image.size();
    return true;
}

bool DiskJournal::append(std::span<const uint8_t> image) {
    Bytes bytes;
    put_batch(bytes, image, differences(kept_.view(), image));
    if (write_at(file_.get(), length_, bytes) < bytes.size()) return false;
    length_ += bytes.size();
    return true;
}

void DiskJournal::remove() {
    if (file_) remove_file(path_);
    close();
}

void DiskJournal::close() {
    file_.reset();
    path_.clear();
}

std::optional<LeftJournal> find_left_journal(const disk_file& file) {
    if (auto left = read_journal(journal_path(file))) return left;
    for (const std::string& name : names_in(journal_folder())) { // the image may have been moved
        if (!name.ends_with(EXTENSION)) continue;
        auto left = read_journal(path_in(journal_folder(), name));
        if (left && left->file == file.identity && left->file_hash == file.hash) return left;
    }
    return {};
}

bool journal_is_in_use(const disk_file& file) { return is_in_use(journal_path(file)); }

void remove_left_journal(const LeftJournal& left) { remove_file(left.path); }
