#include "media/files/rescue.h"

#include "platform/platform.h"

#include <algorithm>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr int MOST_RESCUES = 1000;       ///< of one name
constexpr size_t LONGEST_NAME = 255 - 7; ///< leaves room for the end that a file being written has

} // namespace

std::string rescue_path(const std::string& path) {
    const fs::path folder = fs::path(platform().paths().data_directory()) / "rescue";
    const std::string name = fs::path(path).filename().string();
    const std::string extension = fs::path(name).extension().string();
    const std::string stem = name.substr(0, name.size() - extension.size());
    std::error_code error;
    fs::create_directories(folder, error);
    for (int n = 0; n < MOST_RESCUES; ++n) {
        const std::string ending = (n ? "-" + std::to_string(n) : "") + extension;
        const size_t room = LONGEST_NAME - std::min(LONGEST_NAME, ending.size());
        fs::path rescue = folder / (stem.substr(0, room) + ending);
        if (!fs::exists(fs::symlink_status(rescue, error))) return rescue.string();
    }
    return {};
}
