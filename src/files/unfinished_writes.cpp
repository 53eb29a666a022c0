#include "files/unfinished_writes.h"

#include "files/user_paths.h"
#include "files/whole_file.h"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <utility>

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// A note holds one of these, the path of the temporary file, a zero byte, and that of the target.
constexpr char TEMPORARY = 'T'; ///< is of no use any more
constexpr char COMPLETE = 'C';  ///< is what the target was to become

constexpr int TRIES = 10; ///< another program may remove an empty folder at the wrong moment

std::string notes_folder() { return user_data_directory() + "/unfinished"; }
std::string rescue_folder() { return user_data_directory() + "/rescue"; }

/// Makes the folder and those above it that are missing. Returns those it has made, outermost
/// first.
std::vector<std::string> make_folders(const fs::path& folder) {
    std::vector<std::string> made;
    std::error_code error;
    if (folder.empty() || fs::exists(folder, error)) return made;
    made = make_folders(folder.parent_path());
    if (mkdir(folder.c_str(), S_IRWXU) == 0) made.push_back(folder.string());
    return made;
}

/// Locks the file with an operation of flock. False when another program holds it, or removed it
/// before the lock was there.
bool lock(std::FILE* file, int operation) {
    struct stat status = {};
    while (flock(fileno(file), operation) != 0) {
        if (errno != EINTR) return false;
    }
    return fstat(fileno(file), &status) == 0 && status.st_nlink > 0;
}

struct NoteText {
    char kind = 0;
    std::string temporary, target;
};

std::optional<NoteText> read_note(const std::string& path) {
    const auto bytes = read_whole_file(path);
    if (!bytes || bytes->empty()) return {};
    const std::string text(bytes->begin() + 1, bytes->end());
    const size_t middle = text.find('\0');
    if (middle == std::string::npos) return {};
    return NoteText{char(bytes->front()), text.substr(0, middle), text.substr(middle + 1)};
}

struct LeftNote {
    std::string path;
    FileHandle lock; ///< keeps other programs off it
    NoteText text;
};

/// The notes that no running program holds. One that cannot be read was never finished, and then
/// its temporary file had not been made yet.
std::vector<LeftNote> left_notes() {
    std::vector<LeftNote> notes;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(notes_folder(), error)) {
        FileHandle file = open_file(entry.path().string(), "r+e");
        if (!file || !lock(file.get(), LOCK_EX | LOCK_NB)) continue;
        if (auto text = read_note(entry.path().string())) {
            notes.push_back({entry.path().string(), std::move(file), std::move(*text)});
        } else {
            fs::remove(entry.path(), error);
        }
    }
    return notes;
}

/// Removes the folders of this module that are empty; the others stay.
void remove_empty_folders() {
    for (const std::string& folder : {notes_folder(), rescue_folder(), user_data_directory()}) {
        rmdir(folder.c_str());
    }
}

bool is_rescue_copy(const std::string& path) {
    return fs::path(path).parent_path() == fs::path(rescue_folder());
}

/// Removes the file, but only if its name is one that this module gives, whatever the note says.
/// False when it could not be removed.
bool remove_temporary(const std::string& path) {
    const bool own = is_temporary_name(fs::path(path).filename().string()) || is_rescue_copy(path);
    return !own || unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

} // namespace

WriteNote::WriteNote(const std::string& temporary, const std::string& target) {
    const std::string text = TEMPORARY + temporary + '\0' + target;
    const int error = errno;
    for (int n = 0; n < TRIES && !file_; ++n) {
        make_folder(notes_folder());
        if (is_rescue_copy(temporary)) make_folder(rescue_folder());
        path_ = notes_folder() + "/" + random_name();
        file_ = open_file(path_, "wxe");
        if (!file_ && errno != ENOENT && errno != EEXIST) break;
        if (file_ && !lock(file_.get(), LOCK_EX)) give_up(); // taken for one that was left
    }
    if (file_) std::setvbuf(file_.get(), nullptr, _IONBF, 0);
    if (file_ && std::fwrite(text.data(), text.size(), 1, file_.get()) != 1) give_up();
    errno = error;
}

WriteNote::~WriteNote() {
    const int error = errno;
    if (file_ && !path_.empty()) give_up();
    rmdir(notes_folder().c_str()); // fails while it is in use, as the others do
    for (size_t n = made_folders_.size(); n-- > 0;) rmdir(made_folders_[n].c_str());
    errno = error;
}

void WriteNote::make_folder(const std::string& folder) {
    for (std::string& made : make_folders(folder)) made_folders_.push_back(std::move(made));
}

void WriteNote::give_up() {
    unlink(path_.c_str());
    file_.reset();
}

bool WriteNote::temporary_is_complete() {
    return file_ && pwrite(fileno(file_.get()), &COMPLETE, 1, 0) == 1;
}

std::string rescue_copy_name(const std::string& target) {
    constexpr size_t LONGEST = 200; ///< bytes of the name, which leaves room for what is appended
    const std::string name = fs::path(target).filename().string();
    return rescue_folder() + "/" + name.substr(0, LONGEST) + "-" + random_name();
}

void remove_unfinished_files() {
    for (const LeftNote& note : left_notes()) {
        if (note.text.kind == COMPLETE || !remove_temporary(note.text.temporary)) continue;
        unlink(note.path.c_str());
    }
    remove_empty_folders();
}

std::vector<InterruptedWrite> interrupted_writes() {
    std::vector<InterruptedWrite> writes;
    for (const LeftNote& note : left_notes()) {
        if (note.text.kind != COMPLETE) continue;
        const InterruptedWrite write = {note.text.target, note.text.temporary, note.path};
        const auto copy = read_whole_file(write.copy);
        if (copy && copy != read_whole_file(write.target)) {
            writes.push_back(write);
        } else {
            unlink(write.copy.c_str()); // the target was finished
            leave_unfinished(write);
        }
    }
    return writes;
}

bool finish_write(const InterruptedWrite& write) {
    const auto copy = read_whole_file(write.copy);
    if (!copy || !replace_whole_file(write.target, *copy)) return false;
    unlink(write.copy.c_str());
    leave_unfinished(write);
    return true;
}

void leave_unfinished(const InterruptedWrite& write) {
    unlink(write.note.c_str());
    remove_empty_folders();
}
