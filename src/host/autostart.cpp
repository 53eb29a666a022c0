#include "host/autostart.h"

#include "cgenie/memory.h"
#include "core/frame_driver.h"
#include "media/cmd_loader.h"
#include "media/snapshot.h"
#include "platform/file_handle.h"
#include "platform/host_services.h"
#include "z80/z80.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

bool g_bAutoStart = true;

namespace {

/// Where the extension's point stands, or npos; a point in a folder's name does not count.
size_t extension_point(const std::string& path) {
    const size_t point = path.rfind('.');
    const size_t separator = path.rfind('/');
    const bool in_folder = separator != std::string::npos && point < separator;
    return in_folder ? std::string::npos : point;
}

std::string lower_case_extension(const std::string& path) {
    const size_t point = extension_point(path);
    if (point == std::string::npos) return {};
    std::string extension = path.substr(point + 1);
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return char(std::tolower(c)); });
    return extension;
}

void start_cmd(const std::string& path) {
    const FileHandle file = open_file(path.c_str(), "rb");
    if (!file) return;
    uint16_t entry = 0;
    load_cmd(file.get(), &entry);
    if (g_bAutoStart) z80_state.pc = entry;
}

void start_snapshot(const std::string& path) { snapshot_load(path.c_str(), memory_get_ram()); }

struct Loader {
    std::string_view extension;
    void (*start)(const std::string& path);
};
constexpr std::array<Loader, 2> loaders = {{{"cmd", start_cmd}, {"jzs", start_snapshot}}};

const Loader* loader_of(const std::string& path) {
    const std::string extension = lower_case_extension(path);
    const auto* found = std::ranges::find(loaders, extension, &Loader::extension);
    return found == loaders.end() ? nullptr : found;
}

} // namespace

bool autostart_knows(const std::string& path) { return loader_of(path) != nullptr; }

void autostart_file(const std::string& path) {
    const size_t point = extension_point(path);
    last_file_name = point == std::string::npos ? std::string() : path.substr(0, point);
    if (const Loader* loader = loader_of(path)) loader->start(path);
    StatusBarText("Autoloaded: %s", path.c_str());
}
