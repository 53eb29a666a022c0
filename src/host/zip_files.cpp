#include "host/zip_files.h"

#include "files/file_names.h"
#include "files/whole_file.h"
#include "files/zip/zip_folder.h"
#include "host/dialogs/ask.h"
#include "platform/platform.h"
#include "wall/report.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace {

enum ZipControl : int { ZIP_OPEN = 1, ZIP_CANCEL = 2, ZIP_LIST = 3 };

/// The files with one of the roles, or the zip file's problem.
ZipListing files_with(const std::string& archive, uint8_t roles) {
    ZipListing listing;
    listing.problem = file_problem(archive, LARGEST_ZIP);
    if (!listing.problem.empty()) return listing;
    listing = zip_files(archive);
    std::erase_if(listing.files,
                  [roles](const std::string& name) { return (roles_of(name) & roles) == 0; });
    if (listing.problem.empty() && listing.files.empty()) {
        listing.problem = "has no file that can be used here";
    }
    if (!listing.problem.empty()) listing.problem = archive + ": " + listing.problem;
    return listing;
}

std::string several_problem(const std::string& archive, const std::vector<std::string>& files) {
    return archive + ": has " + std::to_string(files.size()) + " files to choose from, such as " +
           archive + "/" + files.front();
}

/// A line of the list: a name may hold anything.
std::string shown(std::string name) {
    std::ranges::replace_if(
        name, [](char c) { return uint8_t(c) < ' ' || c == '\x7F'; }, '?');
    return name;
}

void ask_which(const std::string& archive, const std::vector<std::string>& files,
               const std::function<void(const std::string&)>& done) {
    using enum ControlKind;
    std::vector<std::string> lines;
    std::ranges::transform(files, std::back_inserter(lines), shown);
    const std::string name = shown(file_name_of(archive));
    const FormDescription description = {
        "Open zip file",
        {{.kind = label, .text = "&Files in " + name + ":"},
         {.kind = list, .id = ZIP_LIST, .items = lines},
         {.kind = buttons,
          .children = {{.kind = default_button, .id = ZIP_OPEN, .text = "&Open"},
                       {.kind = cancel_button, .id = ZIP_CANCEL, .text = "Cancel"}}}}};
    const std::shared_ptr<Form> form =
        platform().forms().create(description, [](Form&, const FormEvent&) {});
    Form& open = *form;
    run_form(form, [=, &open](int closing_id) {
        const int chosen = open.value(ZIP_LIST);
        if (closing_id != ZIP_OPEN || chosen < 0) return;
        done(archive + "/" + files[size_t(chosen)]);
    });
}

} // namespace

void connect_zip_files() { read_in_archive = read_in_zip; }

void with_file_of_zip(const std::string& path, uint8_t roles,
                      const std::function<void(const std::string&)>& done) {
    if (!is_zip_name(path)) return done(path);
    const ZipListing listing = files_with(path, roles);
    if (!listing.problem.empty()) return report({.text = listing.problem});
    if (listing.files.size() == 1) return done(path + "/" + listing.files.front());
    if (shell_state.start.unattended) return report({.text = several_problem(path, listing.files)});
    ask_which(path, listing.files, done);
}

std::string zip_problem(const std::string& archive, uint8_t roles) {
    const ZipListing listing = files_with(archive, roles);
    const bool unclear = listing.files.size() > 1 && shell_state.start.unattended;
    return unclear ? several_problem(archive, listing.files) : listing.problem;
}
