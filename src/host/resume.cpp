#include "host/resume.h"

#include "files/background.h"
#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/name_claim.h"
#include "files/system_file.h"
#include "files/whole_file.h"
#include "host/disks.h"
#include "host/messages.h"
#include "host/shell_state.h"
#include "host/state_files.h"
#include "host/states.h"
#include "media/wd1771.h"
#include "platform/platform.h"
#include "time/history.h"
#include "wall/machine_host.h"
#include "wall/report.h"
#include "z80/z80.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr int64_t DISK_INTERVAL = 1; ///< seconds, after something was written to a disk

struct {
    std::optional<NameClaim> claim; ///< on the file
    /// The state that is being written or was written last. The writing only reads it.
    parked_state kept;
    int64_t kept_cycle = -1;
    int64_t kept_at = 0; ///< by the host's clock
    Background writing;
    int problem = 0;     ///< the error of the writing that was done last
    bool failed = false; ///< which has been reported
} resume;

std::string resume_file() { return state_file_path("resume.tvs"); }

/// Whether this program uses the file.
bool is_ours() {
    return shell_state.start.resumes && shell_state.resume && resume.claim &&
           resume.claim->result() != NameClaim::Result::taken;
}

/// An earlier moment that is being looked at is not where the program is left.
bool is_kept_now() { return is_ours() && history_is_live(); }

/// Claims the file. On a host without such names, it is as if nobody else had it.
bool claim_file() {
    make_folders(folder_of(resume_file()));
    resume.claim.emplace("resume " + std::to_string(content_hash(canonical_path(resume_file()))));
    if (is_ours()) return true;
    report({.text = "Another running program keeps the state to resume",
            .remedy = "This one will not be resumed.",
            .severity = Severity::note});
    return false;
}

/// What has come of the writing; true when it was successful.
bool collect() {
    if (!resume.writing.has_work()) return false;
    std::exchange(resume.writing, {}).wait();
    if (resume.problem == 0) {
        resume.failed = false;
    } else if (!std::exchange(resume.failed, true)) {
        report({.text = "The state to resume cannot be written",
                .file = resume_file(),
                .reason = std::strerror(resume.problem),
                .severity = Severity::warning});
    }
    return resume.problem == 0;
}

bool is_writing() {
    if (!resume.writing.is_done()) return true;
    collect();
    return false;
}

void start_writing() {
    resume.kept = park_machine();
    resume.kept_cycle = z80_state.t_count;
    resume.kept_at = platform().clock().counter();
    resume.writing = Background([path = resume_file()] {
        resume.problem = replace_whole_file(path, pack_state(resume.kept)) ? 0 : errno;
    });
}

int64_t seconds_since_kept() {
    return (platform().clock().counter() - resume.kept_at) / platform().clock().frequency();
}

bool disks_have_changed() {
    return !std::ranges::equal(
        drive_contents, std::span(resume.kept.machine.media).first(std::size(drive_contents)));
}

/// The state stays for another version of the program, or for the user to look at.
void set_aside(const std::string& problem) {
    const std::string aside = state_file_path("not-resumed.tvs");
    rename_file(resume_file(), aside);
    const UserCommand failure_opens_a_box; // the start is the user's
    report({.text = "The program cannot go on where it was left",
            .file = resume_file(),
            .reason = problem,
            .remedy = "The state is now in " + aside + "."});
}

} // namespace

void resume_where_left() {
    if (!shell_state.start.resumes || !shell_state.resume || !claim_file()) return;
    resume.kept_at = platform().clock().counter();
    const CommandLine& line = shell_state.start.line;
    const bool has_other_task =
        !line.files.empty() || !line.load_state.empty() || !line.link.empty();
    if (has_other_task || !path_exists(resume_file())) return;
    parked_state state;
    const std::string problem = read_state_file(resume_file(), state);
    if (!problem.empty()) return set_aside(problem);
    unpark_machine(state);
    StatusBarText("Resumed: %s", description_text(state.about).c_str());
}

bool resume_has_state() {
    return shell_state.start.resumes && shell_state.resume && path_exists(resume_file());
}

void resume_keep_when_due() {
    if (!is_kept_now()) return;
    const int64_t seconds = seconds_since_kept();
    if (seconds < DISK_INTERVAL) return;
    if (seconds < shell_state.start.resume_interval && !disks_have_changed()) return;
    if (!is_writing()) start_writing();
}

void resume_keep_halted() {
    if (is_kept_now() && z80_state.t_count != resume.kept_cycle && !is_writing()) start_writing();
}

bool resume_keep_now() {
    if (!is_kept_now()) return false;
    collect();
    start_writing();
    return collect();
}

void resume_switched() {
    if (!shell_state.start.resumes) return;
    if (shell_state.resume) {
        if (claim_file()) start_writing();
        return;
    }
    collect();
    if (resume.claim && resume.claim->result() != NameClaim::Result::taken) {
        remove_file(resume_file());
    }
    resume.claim.reset();
}

void resume_end() {
    collect();
    resume = {};
}
