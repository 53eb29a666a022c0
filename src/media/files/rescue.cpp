#include "media/files/rescue.h"

#include "files/file_names.h"
#include "files/system_file.h"
#include "platform/platform.h"

#include <algorithm>

namespace {

constexpr int MOST_RESCUES = 1000;       ///< of one name
constexpr size_t LONGEST_NAME = 255 - 7; ///< leaves room for the end that a file being written has

} // namespace

std::string rescue_path(const std::string& path) {
    const std::string folder = path_in(platform().paths().data_directory(), "rescue");
    const std::string name = file_name_of(path);
    const std::string stem = file_stem_of(name);
    const std::string extension = name.substr(stem.size());
    make_folders(folder);
    for (int n = 0; n < MOST_RESCUES; ++n) {
        const std::string ending = (n ? "-" + std::to_string(n) : "") + extension;
        const size_t room = LONGEST_NAME - std::min(LONGEST_NAME, ending.size());
        std::string rescue = path_in(folder, stem.substr(0, room) + ending);
        if (!name_is_taken(rescue)) return rescue;
    }
    return {};
}
