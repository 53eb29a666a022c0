/// The settings file: any contents, looked at and changed; then the program starts with what was
/// found in it.

#include "platform/settings_file.h"

#include "core/frame_driver.h"
#include "host/command_table.h"
#include "support/files.h"
#include "support/input.h"
#include "support/shell.h"
#include "wall/machine_host.h"

#include <filesystem>
#include <vector>

namespace {

constexpr const char* NAME = "settings.toml";

/// Of all settings. Made at the first use: the table may not be there before main.
const std::vector<const char*>& setting_names() {
    static const std::vector<const char*> names = [] {
        std::vector<const char*> found;
        for (const CommandRow& row : command_table()) {
            if (row.setting.name) found.push_back(row.setting.name);
        }
        return found;
    }();
    return names;
}

/// What earlier runs have left.
void remove_files() {
    use_own_folder();
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(".", error)) {
        std::filesystem::remove_all(entry.path(), error);
    }
}

void change(SettingsFile& store, std::span<const uint8_t> bytes) {
    Input input(bytes.data(), bytes.size());
    const uint32_t number = input.dword();
    const char* const name = setting_names()[input.byte() % setting_names().size()];
    const std::string text = input.text(64);
    if (store.set_number(name, number)) require(store.number(name) == number, "a number is kept");
    if (store.set_text(name, text)) require(store.text(name) == text, "a text is kept");
    require(store.complaint().empty(), "a file of its own is not damaged");
}

void start_with(SettingsFile& store) {
    constexpr int32_t LONGEST_FRAME = 500'000; ///< cycles; a fast processor takes its time
    FuzzShell shell;
    for (const char* name : setting_names()) {
        if (const auto value = store.number(name)) shell.host.settings().set_number(name, *value);
        if (const auto value = store.text(name)) shell.host.settings().set_text(name, *value);
    }
    shell.start();
    const int32_t budget = frame_budget();
    require(budget > 0, "a frame has a length");
    if (budget < LONGEST_FRAME) machine_run();
    update_screen(1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    remove_files();
    write_file(NAME, {data, size});
    SettingsFile store(NAME);
    require(store.open(), "any file can be opened, or is put aside");
    store.complaint();
    start_with(store);
    change(store, {data, size});
    return 0;
}
