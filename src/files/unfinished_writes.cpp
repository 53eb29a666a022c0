#include "files/unfinished_writes.h"

#include "files/file_names.h"
#include "files/system_file.h"
#include "files/user_paths.h"
#include "files/whole_file.h"

#include <cerrno>
#include <optional>
#include <utility>

namespace {

// A note holds one of these, the path of the temporary file, a zero byte, and that of the target.
constexpr char TEMPORARY = 'T'; ///< is of no use any more
constexpr char COMPLETE = 'C';  ///< is what the target was to become

constexpr int TRIES = 10; ///< another program may remove an empty folder at the wrong moment

std::string notes_folder() { return user_data_directory() + "/unfinished"; }
std::string rescue_folder() { return user_data_directory() + "/rescue"; }

/// Makes the folder and those above it that are missing. Returns those it has made, outermost
/// first.
std::vector<std::string> make_missing_folders(const std::string& folder) {
    std::vector<std::string> made;
    if (folder.empty() || path_exists(folder)) return made;
    made = make_missing_folders(folder_of(folder));
    if (make_private_folder(folder)) made.push_back(folder);
    return made;
}

/// Locks the file. False when another program holds it, or removed it before the lock was there.
bool lock(std::FILE* file, LockWait wait) {
    if (!lock_file(file, wait)) return false;
    const auto facts = facts_of(file);
    return facts && facts->has_name;
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
    for (const std::string& name : names_in(notes_folder())) {
        const std::string path = notes_folder() + "/" + name;
        FileHandle file = open_file(path, "r+");
        if (!file || !lock(file.get(), LockWait::no)) continue;
        if (auto text = read_note(path)) {
            notes.push_back({path, std::move(file), std::move(*text)});
        } else {
            remove_file(path);
        }
    }
    return notes;
}

/// Removes the folders of this module that are empty; the others stay.
void remove_empty_folders() {
    for (const std::string& folder : {notes_folder(), rescue_folder(), user_data_directory()}) {
        remove_folder(folder);
    }
}

bool is_rescue_copy(const std::string& path) {
    return system_path(folder_of(path)) == system_path(rescue_folder());
}

/// Removes the file, but only if its name is one that this module gives, whatever the note says.
/// False when it could not be removed.
bool remove_temporary(const std::string& path) {
    const bool own = is_temporary_name(file_name_of(path)) || is_rescue_copy(path);
    return !own || remove_file(path) || errno == ENOENT || errno == ENOTDIR;
}

} // namespace

WriteNote::WriteNote(const std::string& temporary, const std::string& target) {
    const std::string text = TEMPORARY + temporary + '\0' + target;
    const int error = errno;
    for (int n = 0; n < TRIES && !file_; ++n) {
        make_folder(notes_folder());
        if (is_rescue_copy(temporary)) make_folder(rescue_folder());
        path_ = notes_folder() + "/" + random_name();
        file_ = open_file(path_, "wx");
        if (!file_ && errno != ENOENT && errno != EEXIST) break;
        if (file_ && !lock(file_.get(), LockWait::yes)) give_up(); // taken for one that was left
    }
    if (file_) std::setvbuf(file_.get(), nullptr, _IONBF, 0);
    if (file_ && std::fwrite(text.data(), text.size(), 1, file_.get()) != 1) give_up();
    errno = error;
}

WriteNote::~WriteNote() {
    const int error = errno;
    if (file_ && !path_.empty()) give_up();
    remove_folder(notes_folder()); // fails while it is in use, as the others do
    for (size_t n = made_folders_.size(); n-- > 0;) remove_folder(made_folders_[n]);
    errno = error;
}

void WriteNote::make_folder(const std::string& folder) {
    for (std::string& made : make_missing_folders(folder)) made_folders_.push_back(std::move(made));
}

void WriteNote::give_up() {
    remove_file(path_);
    file_.reset();
}

bool WriteNote::temporary_is_complete() {
    return file_ && write_at(file_.get(), 0, {reinterpret_cast<const uint8_t*>(&COMPLETE), 1}) == 1;
}

std::string rescue_copy_name(const std::string& target) {
    constexpr size_t LONGEST = 200; ///< bytes of the name, which leaves room for what is appended
    const std::string name = file_name_of(target);
    return rescue_folder() + "/" + name.substr(0, LONGEST) + "-" + random_name();
}

void remove_unfinished_files() {
    for (const LeftNote& note : left_notes()) {
        if (note.text.kind == COMPLETE || !remove_temporary(note.text.temporary)) continue;
        remove_file(note.path);
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
            remove_file(write.copy); // the target was finished
            leave_unfinished(write);
        }
    }
    return writes;
}

bool finish_write(const InterruptedWrite& write) {
    const auto copy = read_whole_file(write.copy);
    if (!copy || !replace_whole_file(write.target, *copy)) return false;
    remove_file(write.copy);
    leave_unfinished(write);
    return true;
}

void leave_unfinished(const InterruptedWrite& write) {
    remove_file(write.note);
    remove_empty_folders();
}
