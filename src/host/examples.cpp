#include "host/examples.h"

#include "core/machine_events.h"
#include "files/file_identity.h"
#include "files/file_names.h"
#include "files/system_file.h"
#include "host/autostart.h"
#include "host/menu.h"
#include "host/replays.h"
#include "host/screenshot.h"
#include "platform/platform.h"
#include "wall/report.h"

namespace {

/// Empty without such a file.
std::string installed_file(const std::string& name) {
    for (const char* place : {TARVELIN_EXAMPLES, "../examples"}) {
        const std::string folder = path_in(platform().paths().program_directory(), place);
        std::string path = canonical_path(path_in(folder, name));
        if (path_exists(path)) return path;
    }
    return {};
}

} // namespace

std::string example_path(const Example& example) { return installed_file(example.file); }

std::string example_picture(const Example& example) {
    return installed_file(file_stem_of(example.file) + ".png");
}

void start_example(const Example& example) {
    const std::string path = example_path(example);
    if (path.empty()) return report({.text = "The example is not installed", .file = example.file});
    end_replay();
    machine_apply(event_kind::restart);
    autostart_file(path);
    last_file_name = file_stem_of(path);
}

void show_examples() {
    Window& window = platform().window();
    for (size_t n = 0; n < examples.size(); ++n) {
        window.set_item_state(COMMAND_EXAMPLE + int(n), example_path(examples[n]).empty()
                                                            ? ItemState::greyed
                                                            : ItemState::usual);
    }
}
